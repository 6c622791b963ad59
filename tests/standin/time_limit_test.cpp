// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <atomic>
#include <cstring>
#include <thread>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "standin_test.h"

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kEarliest{1900};
// Two seconds, and as much again for a machine that is busy with other things.
constexpr milliseconds kLatest{3000};

/** No call takes longer than two seconds, in any state of the connection. */
class TimeLimitTest : public StandInTest {
protected:
    static void keepSilent(Peer & /*peer*/, const std::string & /*line*/) {}

    void SetUp() override {
        StandInTest::SetUp();
        cookie = open(&zorva_api_power_initiator_init);
    }

    zorva_core_status readState() {
        return zorva_api_power_get_power_state_send(cookie, kTarget, &state);
    }

    /** Expects a call to be given up after two seconds. */
    template <typename Call>
    static void expectTimeOut(const Call &call) {
        zorva_core_status status = wire::kSuccess;
        const milliseconds duration = durationOf([&] { status = call(); });
        EXPECT_EQ(wire::kTimedOut, status);
        EXPECT_GE(duration, kEarliest);
        EXPECT_LT(duration, kLatest);
    }

    std::atomic<bool> done{false}; ///< outlives the server, whose handler looks at it
    ScriptedServer server{directory(), "power", "[0,1]"};
    void *cookie = nullptr;
    uint8_t state = 0;
};

TEST_F(TimeLimitTest, NoAnswerIsWaitedForTwoSeconds) {
    server.setHandler(keepSilent);
    expectTimeOut([this] { return readState(); });
    EXPECT_TRUE(clientSockets(directory()).empty());
}

TEST_F(TimeLimitTest, LateAnswerIsNotTakenForTheNextOne) {
    server.setHandler(keepSilent);
    EXPECT_EQ(wire::kTimedOut, readState());
    server.forEachPeer([](Peer &peer) { peer.send("[0,99]\n"); });
    server.setHandler([](Peer &peer, const std::string &) { peer.send("[0,3]\n"); });
    EXPECT_EQ(wire::kSuccess, readState());
    EXPECT_EQ(3, state);
    EXPECT_EQ(2U, server.requests().size());
}

TEST_F(TimeLimitTest, AnswerThatTricklesInIsNotWaitedForLonger) {
    server.setHandler([this](Peer &peer, const std::string &) {
        // A part of an answer every tenth of a second would for ever restart a time-out that counts from the last one.
        while (!done) {
            peer.send(" ");
            std::this_thread::sleep_for(milliseconds(100));
        }
    });
    expectTimeOut([this] { return readState(); });
    done = true;
}

TEST_F(TimeLimitTest, AnswerWithinTheLimitIsWaitedFor) {
    server.setHandler([](Peer &peer, const std::string &) {
        peer.send("[0,");
        std::this_thread::sleep_for(milliseconds(1000));
        peer.send("5]\n");
    });
    EXPECT_EQ(wire::kSuccess, readState());
    EXPECT_EQ(5, state);
}

TEST_F(TimeLimitTest, WaitForAnotherThreadsCallCounts) {
    server.setHandler(keepSilent);
    std::atomic<unsigned> timedOut{0};
    const milliseconds duration =
        durationOf([&] { inThreads(4, [&](int /*number*/) { timedOut += readState() == wire::kTimedOut ? 1 : 0; }); });
    EXPECT_EQ(4U, timedOut);
    EXPECT_LT(duration, kLatest);
}

TEST_F(TimeLimitTest, FullQueueOfConnectionsIsNotWaitedForLonger) {
    // A listener that accepts nobody; connections are made until the next one would have to wait.
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = temporary.file("iris.sock");
    std::memcpy(address.sun_path, path.data(), path.size());
    const auto *const generic = reinterpret_cast<const sockaddr *>(&address);
    std::vector<int> sockets = {::socket(AF_UNIX, SOCK_STREAM, 0)};
    ASSERT_EQ(0, ::bind(sockets[0], generic, sizeof address));
    ASSERT_EQ(0, ::listen(sockets[0], 0));
    do {
        sockets.push_back(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0));
    } while (::connect(sockets.back(), generic, sizeof address) == 0);
    ASSERT_EQ(EAGAIN, errno);

    void *iris = nullptr;
    expectTimeOut([&] { return zorva_api_iris_initiator_init(ipcCookie, logCookie, &iris, 0, nullptr); });
    for (const int descriptor : sockets) {
        ::close(descriptor);
    }
}

TEST_F(TimeLimitTest, DirectoryIsNotWaitedForLonger) {
    const ScriptedServer directoryServer(directory(), "directory", keepSilent);
    std::vector<std::string> ids;
    expectTimeOut([&] { return zorva::core::getTargetIds("power", ids) ? wire::kSuccess : wire::kTimedOut; });
}

TEST_F(TimeLimitTest, HangingServiceDoesNotHoldUpTheEnd) {
    const ScriptedServer hanging(
        directory(), "iris",
        [](Peer &peer, const std::string &line) {
            if (line.find("initiator_init") != std::string::npos) {
                peer.send("[0]\n");
            }
        },
        ScriptedServer::Scope::kEverything);
    std::array<void *, 5> handles{};
    for (void *&handle : handles) {
        handle = open(&zorva_api_iris_initiator_init);
    }
    const milliseconds duration = durationOf([&] {
        for (void *const handle : handles) {
            EXPECT_EQ(wire::kSuccess, zorva_api_iris_initiator_deinit(handle));
        }
    });
    EXPECT_LT(duration, kEarliest);
    EXPECT_EQ(1U, clientSockets(directory()).size());
}

} // namespace
