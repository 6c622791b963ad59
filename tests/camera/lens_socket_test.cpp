// SPDX-License-Identifier: Apache-2.0
// Lens of a running camera.
#include <algorithm>

#include <gmock/gmock.h>

#include "camera_process.h"

using namespace camera::test;
using namespace support;
using nlohmann::json;

namespace {

class RunningLens : public CameraTest {
protected:
    RunningLens() : CameraTest("twinfocus") {}

    /** Returns the events up to the next one of a kind, without commands and changes. */
    std::vector<json> eventsUntil(const std::string &kind) {
        std::vector<json> events = follower_.until(kind);
        events.erase(std::remove_if(events.begin(), events.end(),
                                    [](const json &each) {
                                        return each.value("event", "") == "command" ||
                                               each.value("event", "") == "changed";
                                    }),
                     events.end());
        return events;
    }

    Follower follower_{directory_};
};

TEST_F(RunningLens, FollowsTheSceneWhileNobodyAsks) {
    EXPECT_EQ(kDone, set("lens_focus/1", "searchTime", 100));
    EXPECT_EQ(kDone, set("lens_focus/1", "sharpPosition", 2300));
    const std::vector<json> events = eventsUntil("focus_settled");
    ASSERT_EQ(4U, events.size());
    EXPECT_EQ("focus_started", events[0]["event"]);
    EXPECT_EQ("move_started", events[1]["event"]);
    EXPECT_EQ("move_stopped", events[2]["event"]);
    EXPECT_EQ(2300, events[3]["position"]);
    const auto seconds = [&](std::size_t i) {
        return events[i]["time"].get<double>() - events[0]["time"].get<double>();
    };
    EXPECT_NEAR(0.1, seconds(1), 1e-5);
    EXPECT_NEAR(0.2, seconds(3), 1e-5);
    LineClient client(directory_, "lens_focus");
    EXPECT_EQ("[0,2300,0,8000]", client.ask(R"(["get_manual_focus_position_send","lens_focus/1"])"));
}

TEST_F(RunningLens, ObeysTheHandInManualModeOnly) {
    LineClient client(directory_, "focus_stepper");
    const std::string move = R"(["set_position_send","focus_stepper/1",930,300])";
    EXPECT_EQ("[5]", client.ask(move));
    EXPECT_EQ("[0]", client.ask(R"(["set_manual_mode_enable_send","focus_stepper/1",1])"));
    EXPECT_EQ("[5]", client.ask(R"(["start_quick_auto_focus_send","focus_stepper/1"])"));
    EXPECT_EQ("[0]", client.ask(move));
    const std::vector<json> events = eventsUntil("move_stopped");
    ASSERT_EQ(2U, events.size());
    EXPECT_EQ(930, events[0]["to"]);
    EXPECT_NEAR(0.1, events[1]["time"].get<double>() - events[0]["time"].get<double>(), 1e-5);
    EXPECT_EQ("[0,930,900]", client.ask(R"(["get_position_send","focus_stepper/1"])"));
}

} // namespace
