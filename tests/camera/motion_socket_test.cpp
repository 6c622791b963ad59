// SPDX-License-Identifier: Apache-2.0
// Moves of a running camera.
#include <cmath>

#include <gmock/gmock.h>

#include "camera_process.h"

using namespace camera::test;
using namespace support;
using nlohmann::json;

namespace {

class MovingProcess : public CameraTest {
protected:
    json axis(const std::string &name) {
        return targetState("positioning")[name];
    }

    /** Moves pan to a position. */
    std::string movePan(int position, double fraction) {
        LineClient client(directory_, "positioning");
        return client.ask(json({"move_to_position_with_speed_percentage_send", "positioning/1", 1, position, fraction,
                                0, 0, 0.0, 0, 0, 0.0, 1})
                              .dump());
    }
};

TEST_F(MovingProcess, TellsOfItsMoveWhileNobodyAsks) {
    Follower follower(directory_);
    EXPECT_EQ("[0]", movePan(20000, 1.0));
    std::vector<std::string> kinds;
    std::vector<json> events;
    for (int i = 0; i < 4; ++i) {
        events.push_back(follower.next());
        kinds.push_back(events.back().value("event", "nothing"));
    }
    EXPECT_THAT(kinds, testing::ElementsAre("command", "changed", "move_started", "move_stopped"));
    EXPECT_EQ(20000, events[2]["to"]);
    EXPECT_EQ("pan", events[3]["axis"]);
    EXPECT_EQ(20000, events[3]["position"]);
    // Up to speed and down again: twice the root of the way by the acceleration.
    const double seconds = events[3]["time"].get<double>() - events[2]["time"].get<double>();
    EXPECT_NEAR(2.0 * std::sqrt(20000.0 / 600000.0), seconds, 1e-3);
}

TEST_F(MovingProcess, GoesOnWhileItsServiceIsDown) {
    Follower follower(directory_);
    EXPECT_EQ("[0]", movePan(40000, 0.1));
    EXPECT_EQ(kDone, control_.call({{"command", "down"}, {"service", "positioning"}}));
    const json before = axis("pan");
    EXPECT_EQ(true, before["moving"]);
    EXPECT_TRUE(eventually([&] { return axis("pan")["position"] > before["position"]; }));
    for (const json &event : follower.until("move_stopped")) {
        EXPECT_NE("service_up", event.value("event", ""));
    }
    EXPECT_EQ(kDone, control_.call({{"command", "up"}, {"service", "positioning"}}));
    LineClient client(directory_, "positioning");
    EXPECT_EQ("[0,40000,0,10]", client.ask(R"(["get_position_send","positioning/1"])"));
}

} // namespace
