// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <atomic>
#include <cstdlib>

#include <malloc.h>

#include "shortage.h"
#include "standin_test.h"

namespace {

class ShortageTest : public StandInTest {
protected:
    /** Reads the eight texts and the flag of a camera. @return the status of the call */
    static zorva_core_status readInformation(void *cookie, std::array<char *, 8> &texts, uint8_t &flag) {
        return zorva_api_device_information_get_static_information_send(cookie, kTarget, &texts[0], &texts[1],
                                                                        &texts[2], &texts[3], &texts[4], &texts[5],
                                                                        &texts[6], &texts[7], &flag);
    }
};

TEST_F(ShortageTest, TextsAreAllOrNothing) {
    ScriptedServer server(directory(), "device_information", R"([0,"1","2","3","4","5",null,"7","8",9])");
    void *const cookie = open(&zorva_api_device_information_initiator_init);
    char untouched = '\0';
    for (int successes = 0; successes <= 7; ++successes) {
        std::array<char *, 8> texts{};
        texts.fill(&untouched);
        uint8_t flag = 77;
        zorva_core_status status = wire::kFailed;
        {
            const Shortage shortage(Resource::kTextCopies, successes);
            status = readInformation(cookie, texts, flag);
            // Seven of the eight are texts, so the last round has enough.
            EXPECT_EQ(successes < 7, shortage.hasStruck());
        }
        if (successes == 7) {
            ASSERT_EQ(wire::kSuccess, status);
            EXPECT_STREQ("8", texts[7]);
            EXPECT_EQ(nullptr, texts[5]);
            EXPECT_EQ(9, flag);
            for (char *const text : texts) {
                std::free(text);
            }
        } else {
            EXPECT_EQ(wire::kNoMemory, status);
            EXPECT_EQ(77, flag);
            for (const char *const text : texts) {
                EXPECT_EQ(&untouched, text);
            }
        }
    }
}

TEST_F(ShortageTest, CopiesOfTextsThatWereNotEnoughAreFreed) {
    std::string answer = "[0";
    for (int i = 0; i < 8; ++i) {
        answer += ",\"" + std::string(1000, 'x') + "\"";
    }
    const ScriptedServer server(directory(), "device_information", answer + ",1]");
    void *const cookie = open(&zorva_api_device_information_initiator_init);
    constexpr int kCalls = 1000;
    const std::size_t before = ::mallinfo2().uordblks;
    for (int i = 0; i < kCalls; ++i) {
        std::array<char *, 8> texts{};
        uint8_t flag = 0;
        const Shortage shortage(Resource::kTextCopies, 7);
        ASSERT_EQ(wire::kNoMemory, readInformation(cookie, texts, flag));
    }
    // Seven kilobytes a call would be lost; the server keeps the requests, which are shorter than a quarter of one. A
    // sanitizer's own allocator counts nothing here; it reports losses at the end.
    EXPECT_LT(::mallinfo2().uordblks, before + std::size_t{kCalls} * 250);
}

/** Runs `action` with ever more memory until it succeeds. @return the number of failures before that */
template <typename Action>
int failuresUntilSuccess(const Action &action) {
    for (int successes = 0; successes < 1000; ++successes) {
        bool hasStruck = false;
        zorva_core_status status = wire::kFailed;
        {
            const Shortage shortage(Resource::kAllocations, successes);
            status = action();
            hasStruck = shortage.hasStruck();
        }
        if (!hasStruck) {
            EXPECT_EQ(wire::kSuccess, status);
            return successes;
        }
        EXPECT_EQ(wire::kNoMemory, status) << successes;
    }
    return -1;
}

TEST_F(ShortageTest, AnyAllocationOfACallMayFail) {
    const ScriptedServer server(directory(), "focus_stepper", "[0,1,2]");
    void *const cookie = open(&zorva_api_focus_stepper_initiator_init);
    EXPECT_LT(0, failuresUntilSuccess([cookie] {
                  int32_t current = 0;
                  int32_t second = 0;
                  return zorva_api_focus_stepper_get_position_send(cookie, kTarget, &current, &second);
              }));
}

TEST_F(ShortageTest, AnyAllocationOfOpeningMayFail) {
    const ScriptedServer server(directory(), "focus_stepper", "[0]");
    void *cookie = nullptr;
    EXPECT_LT(0, failuresUntilSuccess([&] {
                  cookie = this;
                  const zorva_core_status status =
                      zorva_api_focus_stepper_initiator_init(ipcCookie, logCookie, &cookie, 0, nullptr);
                  return (status == wire::kSuccess) == (cookie != nullptr) ? status : wire::kFailed;
              }));
    EXPECT_EQ(1U, clientSockets(directory()).size());
    // Closing needs no memory.
    const Shortage shortage(Resource::kAllocations, 0);
    EXPECT_EQ(wire::kSuccess, zorva_api_focus_stepper_initiator_deinit(cookie));
    EXPECT_TRUE(!shortage.hasStruck());
}

TEST_F(ShortageTest, AnyAllocationOfTheBeginningMayFail) {
    TearDown();
    EXPECT_LT(0, failuresUntilSuccess([] { return zorva_core_init(); }));
    EXPECT_LT(0, failuresUntilSuccess(
                     [this] { return zorva_core_logging_init("a name that needs memory of its own", &logCookie); }));
    EXPECT_LT(0,
              failuresUntilSuccess([this] { return zorva_core_ipc_initiator_init(logCookie, nullptr, &ipcCookie); }));
    EXPECT_EQ(wire::kSuccess, zorva_core_deinit());
    EXPECT_EQ(wire::kNotInitialised, zorva_core_deinit());
}

TEST_F(ShortageTest, AnyAllocationOfAskingForTargetsMayFail) {
    const ScriptedServer server(directory(), "directory",
                                R"([0,"a target that needs memory of its own","and another one that does so"])");
    std::vector<std::string> ids;
    EXPECT_LT(0, failuresUntilSuccess([&ids] {
                  const bool found = zorva::core::getTargetIds("focus_stepper", ids);
                  EXPECT_EQ(found ? 2U : 0U, ids.size());
                  return found ? wire::kSuccess : wire::kNoMemory;
              }));
}

TEST_F(ShortageTest, NoDescriptorToBeHadFailsTheCall) {
    const ScriptedServer server(directory(), "focus_stepper", "[0]");
    void *cookie = this;
    {
        const Shortage shortage(Resource::kSockets, 0);
        EXPECT_EQ(wire::kNoMemory, zorva_api_focus_stepper_initiator_init(ipcCookie, logCookie, &cookie, 0, nullptr));
    }
    EXPECT_EQ(nullptr, cookie);
    open(&zorva_api_focus_stepper_initiator_init);
}

TEST_F(ShortageTest, LogLinesNeedNoMemory) {
    const Shortage shortage(Resource::kAllocations, 0);
    zorva_core_logging_log(logCookie, 6, "%s", "text");
    EXPECT_FALSE(shortage.hasStruck());
}

TEST_F(ShortageTest, FullSendBufferIsWaitedForUntilThereIsRoomAgain) {
    ScriptedServer server(directory(), "presets_tours", "[0]");
    const std::string longText(60000, 'x');
    const SmallSendBuffers small;
    void *const cookie = open(&zorva_api_presets_tours_initiator_init);
    EXPECT_EQ(wire::kSuccess,
              zorva_api_presets_tours_move_to_preset_send(cookie, kTarget, longText.c_str(), 1.0, 0, 1));
    ASSERT_EQ(1U, server.requests().size());
    EXPECT_LT(longText.size(), server.requests()[0].size());
}

TEST_F(ShortageTest, FullSendBufferIsNotWaitedForLongerThanTwoSeconds) {
    std::atomic<bool> mayReadOn{false};
    ScriptedServer server(
        directory(), "presets_tours",
        [&mayReadOn](Peer &peer, const std::string &line) {
            peer.send("[0]\n");
            // From here on the server reads nothing.
            if (line.find("initiator_init") != std::string::npos) {
                eventually([&mayReadOn] { return mayReadOn.load(); });
            }
        },
        ScriptedServer::Scope::kEverything);
    const std::string longText(60000, 'x');
    const SmallSendBuffers small;
    void *const cookie = open(&zorva_api_presets_tours_initiator_init);
    zorva_core_status status = wire::kSuccess;
    const std::chrono::milliseconds duration = durationOf(
        [&] { status = zorva_api_presets_tours_move_to_preset_send(cookie, kTarget, longText.c_str(), 1.0, 0, 1); });
    EXPECT_EQ(wire::kTimedOut, status);
    EXPECT_GE(duration, std::chrono::milliseconds(1900));
    EXPECT_LT(duration, std::chrono::milliseconds(3000));
    mayReadOn = true;
}

} // namespace
