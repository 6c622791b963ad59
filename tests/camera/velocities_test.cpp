// SPDX-License-Identifier: Apache-2.0
// Pan, tilt and zoom at velocities: limits, stops and time-outs.
#include "moving_camera.h"

using namespace camera;
using nlohmann::json;

namespace {

class Velocity : public test::MovingCamera {};

TEST_F(Velocity, IsReachedWithTheAccelerationOfTheAxis) {
    ASSERT_EQ(wire::kSuccess, run("tilt", -5000));
    EXPECT_EQ(nullptr, axis("tilt")["target"]);
    expectAtAfter(0.25, "tilt", -313, -2500);
    expectAtAfter(1.25, "tilt", -6250, -5000);
    ASSERT_EQ(wire::kSuccess, run("tilt", 2500));
    expectAtAfter(0.75, "tilt", -7188, 2500);
}

TEST_F(Velocity, EndsExactlyAtTheEndOfTheAxis) {
    ASSERT_EQ(wire::kSuccess, run("tilt", 10000));
    EXPECT_EQ(3.0, camera_->nextTime());
    expectAtAfter(2.5, "tilt", 18750, 5000);
    expectAtRestAfter(0.5, "tilt", 20000);
    EXPECT_THAT(events_.moves(), testing::ElementsAre("move_started tilt", "limit_reached tilt", "move_stopped tilt"));
    EXPECT_EQ(3.0, events_.times().back());
}

TEST_F(Velocity, IsNoMoveAtTheEndOfTheAxis) {
    set("zoom.position", 300);
    ASSERT_EQ(wire::kSuccess, run("zoom", 50));
    expectAtRest("zoom", 300);
    EXPECT_THAT(events_.moves(), testing::ElementsAre("move_started zoom", "limit_reached zoom", "move_stopped zoom"));
    ASSERT_EQ(wire::kSuccess, run("zoom", -50));
    expectAtAfter(1.0, "zoom", 250, -50);
}

TEST_F(Velocity, GoesRoundAnEndlessAxis) {
    ASSERT_EQ(wire::kSuccess, run("pan", -100000));
    EXPECT_EQ(kNever, camera_->nextTime());
    expectAtAfter(1.0, "pan", 310000, -100000);
    expectAtAfter(3600000.0, "pan", 310000, -100000);
    expectAtAfter(0.1, "pan", 300000, -100000);
}

TEST_F(Velocity, EndsAtSoftLimits) {
    set("pan.softPosition", {{"enabled", true}, {"minimum", 0}, {"maximum", 90000}});
    set("tilt.softPosition", {{"enabled", true}, {"minimum", -30000}, {"maximum", -10000}});
    ASSERT_EQ(wire::kSuccess, run("pan", 100000));
    // Tilt is outside, and may come in only.
    ASSERT_EQ(wire::kSuccess, run("tilt", 10000));
    expectAtRest("tilt", 0);
    ASSERT_EQ(wire::kSuccess, run("tilt", -10000));
    expectAtRestAfter(10.0, "pan", 90000);
    expectAtRest("tilt", -30000);
    ASSERT_EQ(wire::kSuccess, run("pan", -100000));
    expectAtRestAfter(10.0, "pan", 0);
}

TEST_F(Velocity, BrakesWhenASoftLimitIsPutBehindIt) {
    ASSERT_EQ(wire::kSuccess, run("tilt", 10000));
    pass(1.0);
    set("tilt.softPosition", {{"enabled", true}, {"minimum", -1000}, {"maximum", 1000}});
    expectAtRestAfter(1.0, "tilt", 10000);
    EXPECT_THAT(events_.moves(), testing::ElementsAre("move_started tilt", "limit_reached tilt", "move_stopped tilt"));
}

TEST_F(Velocity, GoesOnBeyondASoftLimitThatIsLifted) {
    set("tilt.softPosition", {{"enabled", true}, {"minimum", -1000}, {"maximum", 10000}});
    ASSERT_EQ(wire::kSuccess, run("tilt", 10000));
    expectAtAfter(1.5, "tilt", 8750, 5000);
    set("tilt.softPosition.enabled", false);
    expectAtAfter(0.5, "tilt", 12500, 10000);
    expectAtRestAfter(5.0, "tilt", 20000);
}

TEST_F(Velocity, IsBroughtIntoTheRangeOfSpeeds) {
    const std::vector<std::pair<int, int>> velocities = {
        {-2147483647 - 1, -10000}, {2147483647, 10000}, {1, 100}, {-99, -100}, {101, 101}};
    set("tilt.acceleration", 0);
    for (const auto &[wanted, allowed] : velocities) {
        set("tilt.position", 0);
        ASSERT_EQ(wire::kSuccess, run("tilt", wanted));
        expectAt("tilt", 0, allowed);
    }
    ASSERT_EQ(wire::kSuccess, call("set_soft_velocity_limits_send", {0, 0, 0, 1, 200, 300, 0, 0, 0}));
    expectAt("tilt", 0, 200);
    ASSERT_EQ(wire::kSuccess, run("tilt", -400));
    expectAt("tilt", 0, -300);
    ASSERT_EQ(wire::kSuccess, call("clear_velocity_limits_send", {0, 1, 0}));
    expectAt("tilt", 0, -400);
    EXPECT_EQ(R"({"event": "move_started", "target": "positioning/1", "axis": "tilt", "position": 0, "velocity":
                 -400})"_json,
              events_.seen().back());
}

TEST_F(Velocity, IsNoneForAnAxisWithoutSpeed) {
    set("zoom", {{"minimumSpeed", 0}, {"maximumSpeed", 0}});
    ASSERT_EQ(wire::kSuccess, run("zoom", 50));
    expectAtRest("zoom", 10);
    EXPECT_THAT(events_.moves(), testing::IsEmpty());
}

TEST_F(Velocity, OfZeroBrakes) {
    ASSERT_EQ(wire::kSuccess, move("pan", 150000));
    pass(1.0);
    ASSERT_EQ(wire::kSuccess, run("pan", 0));
    EXPECT_EQ(nullptr, axis("pan")["target"]);
    expectAtAfter(0.5, "pan", 87500, 50000);
    EXPECT_THAT(events_.moves(), testing::ElementsAre("move_started pan"));
    expectAtRestAfter(0.5, "pan", 100000);
    EXPECT_THAT(events_.moves(), testing::ElementsAre("move_started pan", "move_stopped pan"));
    EXPECT_EQ(2.0, events_.times().back());
}

TEST_F(Velocity, OfZeroIsNothingToAnAxisAtRest) {
    ASSERT_EQ(wire::kSuccess, run("pan", 0));
    expectAtRest("pan", 0);
    EXPECT_EQ(kNever, camera_->nextTime());
    EXPECT_THAT(events_.moves(), testing::IsEmpty());
}

TEST_F(Velocity, EndsWithItsTime) {
    ASSERT_EQ(wire::kSuccess, run("tilt", 2000, 1500));
    EXPECT_EQ(1.5, camera_->nextTime());
    expectAtAfter(1.6, "tilt", 2950, 1000);
    expectAtRestAfter(1.0, "tilt", 3000);
    EXPECT_THAT(events_.moves(), testing::ElementsAre("move_started tilt", "move_timed_out tilt", "move_stopped tilt"));
    EXPECT_EQ(1500, camera_->state("positioning/1")["velocityTimeout"]);
}

TEST_F(Velocity, LastsForEverWithoutATime) {
    for (const unsigned never : {0U, 0xFFFFFFFFU}) {
        set("pan.position", 0);
        ASSERT_EQ(wire::kSuccess, run("pan", 1000, never));
        EXPECT_EQ(kNever, camera_->nextTime());
        EXPECT_EQ(0xFFFFFFFFU, camera_->state("positioning/1")["velocityTimeout"]);
    }
}

TEST_F(Velocity, HasTheTimeOfTheCameraWhenTheCommandHasNone) {
    ASSERT_EQ(wire::kSuccess, call("set_velocity_send", {1, 1000, 0, 0, 0, 0, 1}));
    EXPECT_EQ(kNever, camera_->nextTime());
    ASSERT_EQ(wire::kSuccess, call("set_velocity_command_timeout_send", {800}));
    EXPECT_EQ(kNever, camera_->nextTime());
    pass(1.0);
    ASSERT_EQ(wire::kSuccess, call("set_velocity_send", {1, 1000, 0, 0, 0, 0, 1}));
    EXPECT_DOUBLE_EQ(1.8, camera_->nextTime());
    EXPECT_EQ(800, camera_->state("positioning/1")["velocityTimeout"]);
}

TEST_F(Velocity, HasATimeForEachAxis) {
    ASSERT_EQ(wire::kSuccess, run("pan", 10000, 1000));
    pass(0.5);
    ASSERT_EQ(wire::kSuccess, run("tilt", 1000, 1000));
    pass(0.4);
    ASSERT_EQ(wire::kSuccess, run("pan", 10000, 1000));
    passAwake(5.0);
    EXPECT_THAT(events_.moves(),
                testing::ElementsAre("move_started pan", "move_started tilt", "move_started pan", "move_timed_out tilt",
                                     "move_stopped tilt", "move_timed_out pan", "move_stopped pan"));
    const std::vector<double> &times = events_.times();
    EXPECT_EQ((std::vector<double>{1.5, 1.6, 1.9, 2.0}), std::vector<double>(times.end() - 4, times.end()));
}

TEST_F(Velocity, ThatEndsAMoveAndTheMoveThatEndsIt) {
    ASSERT_EQ(wire::kSuccess, move("pan", 100000));
    pass(1.0);
    ASSERT_EQ(wire::kSuccess, run("pan", 100000, 1000));
    EXPECT_EQ(nullptr, axis("pan")["target"]);
    expectAtAfter(0.5, "pan", 100000, 100000);
    ASSERT_EQ(wire::kSuccess, move("pan", 200000));
    // The time of the velocity has nothing to say about the move.
    expectAtRestAfter(10.0, "pan", 200000);
    EXPECT_THAT(events_.moves(), testing::Not(testing::Contains("move_timed_out pan")));
}

} // namespace
