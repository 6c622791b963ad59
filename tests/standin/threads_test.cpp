// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <atomic>
#include <thread>

#include <nlohmann/json.hpp>

#include "standin_test.h"

namespace {

class ThreadsTest : public StandInTest {
protected:
    /** Answers with the number that the request carries. */
    static void echo(Peer &peer, const std::string &line) {
        peer.send("[0,\"" + std::to_string(nlohmann::json::parse(line)[2].get<int>()) + "\"]\n");
    }

    /** Calls with a number. @return true when the answer is for this number */
    static bool isEchoed(void *cookie, int number) {
        char *text = nullptr;
        const zorva_core_status status =
            zorva_api_presets_tours_get_preset_id_for_quarnapi_id_send(cookie, kTarget, number, &text);
        const bool isRight = status == wire::kSuccess && text != nullptr && text == std::to_string(number);
        std::free(text);
        return isRight;
    }

    /** Waits until a handle has ended. A call without a target finds that out without waiting for its turn. */
    static bool endsEventually(void *cookie) {
        return eventually(
            [cookie] { return zorva_api_iris_set_position_send(cookie, nullptr, 0) == wire::kInvalidHandle; });
    }

    /** Answers as soon as a flag is set. */
    static ScriptedServer::Handler answerOnce(const std::atomic<bool> &mayAnswer) {
        return [&mayAnswer](Peer &peer, const std::string &) {
            eventually([&] { return mayAnswer.load(); });
            peer.send("[0,1,2,3]\n");
        };
    }

    static zorva_core_status readIris(void *cookie) {
        uint32_t current = 0;
        uint32_t min = 0;
        uint32_t max = 0;
        return zorva_api_iris_get_position_send(cookie, kTarget, &current, &min, &max);
    }
};

TEST_F(ThreadsTest, CallsOfDifferentServicesTakePlaceAtTheSameTime) {
    ScriptedServer power(directory(), "power", "[0,1]");
    // The iris answers once the other service was asked, which no single thread could bring about.
    const ScriptedServer iris(directory(), "iris", [&power](Peer &peer, const std::string &) {
        if (eventually([&power] { return !power.requests().empty(); })) {
            peer.send("[0,1,2,3]\n");
        }
    });
    void *const irisCookie = open(&zorva_api_iris_initiator_init);
    void *const powerCookie = open(&zorva_api_power_initiator_init);
    zorva_core_status status = wire::kFailed;
    std::thread caller([&] { status = readIris(irisCookie); });
    EXPECT_TRUE(eventually([&iris] { return !iris.requests().empty(); }));
    uint8_t state = 0;
    EXPECT_EQ(wire::kSuccess, zorva_api_power_get_power_state_send(powerCookie, kTarget, &state));
    caller.join();
    EXPECT_EQ(wire::kSuccess, status);
}

TEST_F(ThreadsTest, CallsOfOneServiceTakeTurns) {
    const ScriptedServer server(directory(), "presets_tours", echo);
    void *const cookie = open(&zorva_api_presets_tours_initiator_init);
    constexpr int kCalls = 500;
    std::atomic<int> echoed{0};
    inThreads(3, [&](int number) {
        for (int call = 0; call < kCalls; ++call) {
            echoed += isEchoed(cookie, number * kCalls + call) ? 1 : 0;
        }
    });
    EXPECT_EQ(3 * kCalls, echoed);
    EXPECT_EQ(1U, server.connectionCount());
}

TEST_F(ThreadsTest, HandleMayBeClosedDuringACall) {
    std::atomic<bool> mayAnswer{false};
    ScriptedServer server(directory(), "iris", answerOnce(mayAnswer));
    void *const cookie = open(&zorva_api_iris_initiator_init);
    zorva_core_status callStatus = wire::kFailed;
    std::thread caller([&] { callStatus = readIris(cookie); });
    ASSERT_TRUE(eventually([&] { return !server.requests().empty(); }));
    std::atomic<bool> isClosed{false};
    std::thread closer([&] {
        EXPECT_EQ(wire::kSuccess, zorva_api_iris_initiator_deinit(cookie));
        isClosed = true;
    });
    // The handle ends at once, the connection when the call under way is through.
    EXPECT_TRUE(endsEventually(cookie));
    EXPECT_EQ(wire::kInvalidHandle, readIris(cookie));
    EXPECT_EQ(wire::kInvalidHandle, zorva_api_iris_initiator_deinit(cookie));
    EXPECT_FALSE(isClosed);
    mayAnswer = true;
    caller.join();
    closer.join();
    EXPECT_EQ(wire::kSuccess, callStatus);
    EXPECT_EQ(1U, server.farewells());
    EXPECT_EQ(1U, server.requests().size());
}

TEST_F(ThreadsTest, CallThatWaitsForItsTurnFailsWhenTheHandleIsClosed) {
    std::atomic<bool> mayAnswer{false};
    ScriptedServer server(directory(), "iris", answerOnce(mayAnswer));
    void *const cookie = open(&zorva_api_iris_initiator_init);
    std::array<zorva_core_status, 8> statuses{};
    std::thread callers([&] {
        inThreads(static_cast<int>(statuses.size()),
                  [&](int number) { statuses[static_cast<std::size_t>(number)] = readIris(cookie); });
    });
    ASSERT_TRUE(eventually([&] { return !server.requests().empty(); }));
    std::thread closer([cookie] { zorva_api_iris_initiator_deinit(cookie); });
    EXPECT_TRUE(endsEventually(cookie));
    mayAnswer = true;
    closer.join();
    callers.join();
    for (const zorva_core_status status : statuses) {
        EXPECT_TRUE(status == wire::kSuccess || status == wire::kInvalidHandle) << status;
    }
    // The call under way when the handle was closed has got its answer.
    EXPECT_NE(statuses.end(), std::find(statuses.begin(), statuses.end(), wire::kSuccess));
}

TEST_F(ThreadsTest, EndOfTheLibraryEndsTheCallUnderWayAndThoseThatWait) {
    ScriptedServer server(directory(), "iris", [](Peer &, const std::string &) {});
    void *const cookie = open(&zorva_api_iris_initiator_init);
    std::array<zorva_core_status, 8> statuses{};
    std::atomic<std::size_t> begun{0};
    const std::chrono::milliseconds duration = durationOf([&] {
        std::thread callers([&] {
            inThreads(static_cast<int>(statuses.size()), [&](int number) {
                ++begun;
                statuses[static_cast<std::size_t>(number)] = readIris(cookie);
            });
        });
        EXPECT_TRUE(eventually([&] { return begun == statuses.size() && !server.requests().empty(); }));
        EXPECT_EQ(wire::kSuccess, zorva_core_deinit());
        callers.join();
    });
    EXPECT_LT(duration, std::chrono::milliseconds(1900));
    EXPECT_EQ(1, std::count(statuses.begin(), statuses.end(), wire::kConnectionLost));
    for (const zorva_core_status status : statuses) {
        // A thread that had not come as far as looking up the handle finds no library any more.
        EXPECT_TRUE(status == wire::kConnectionLost || status == wire::kInvalidHandle ||
                    status == wire::kNotInitialised)
            << status;
    }
    EXPECT_EQ(1U, server.connectionCount());
    EXPECT_TRUE(clientSockets(directory()).empty());
}

TEST_F(ThreadsTest, EverythingAtOnce) {
    const ScriptedServer presets(directory(), "presets_tours", echo);
    const ScriptedServer iris(directory(), "iris", "[0,1,2,3]");
    const ScriptedServer directoryServer(directory(), "directory", "[0,\"one\"]");
    void *const shared = open(&zorva_api_presets_tours_initiator_init);
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    threads.emplace_back([&] {
        for (int i = 0; i < 200; ++i) {
            failures += isEchoed(shared, i) ? 0 : 1;
        }
    });
    threads.emplace_back([&] {
        for (int i = 0; i < 100; ++i) {
            void *const cookie = open(&zorva_api_iris_initiator_init);
            failures += readIris(cookie) == wire::kSuccess ? 0 : 1;
            failures += zorva_api_iris_initiator_deinit(cookie) == wire::kSuccess ? 0 : 1;
            failures += readIris(cookie) == wire::kInvalidHandle ? 0 : 1;
        }
    });
    threads.emplace_back([&] {
        for (int i = 0; i < 200; ++i) {
            std::vector<std::string> ids;
            failures += zorva::core::getTargetIds("iris", ids) ? 0 : 1;
            void *log = nullptr;
            failures += zorva_core_logging_init("thread", &log);
            zorva_core_logging_log(log, 6, "line %d", i);
            failures += zorva_core_logging_deinit(log);
            failures += zorva_core_init() + zorva_core_deinit();
        }
    });
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(0, failures);
}

} // namespace
