// SPDX-License-Identifier: Apache-2.0
// Moves of pan, tilt and zoom to positions, and what ends or changes them.
#include <cmath>
#include <limits>

#include "moving_camera.h"

using namespace camera;
using nlohmann::json;

namespace {

class Move : public test::MovingCamera {};

TEST_F(Move, TakesItsTime) {
    ASSERT_EQ(wire::kSuccess, move("pan", 100000));
    expectAt("pan", 0, 0);
    EXPECT_EQ(100000, axis("pan")["target"]);
    expectAtAfter(0.5, "pan", 12500, 50000);
    expectAtAfter(0.5, "pan", 50000, 100000);
    EXPECT_EQ(wire::kSuccess, call("get_position_send", json::array()));
    EXPECT_EQ((json{50000, 0, 10}), answer_.results);
    expectAtAfter(0.5, "pan", 87500, 50000);
    expectAtRestAfter(0.5, "pan", 100000);
}

TEST_F(Move, IsRoundedToTheNextUnit) {
    ASSERT_EQ(wire::kSuccess, move("zoom", 300, 0.333));
    pass(0.7);
    // 33.3 a second.
    expectAt("zoom", 33, 33);
}

TEST_F(Move, HasASpeedBetweenTheSlowestAndTheFastest) {
    const std::vector<std::pair<double, int>> speeds = {{0.0, 1},   {0.001, 1},  {0.5, 50},
                                                        {1.0, 100}, {1.01, 101}, {7.0, 101}};
    for (const auto &[fraction, speed] : speeds) {
        set("zoom.position", 10);
        ASSERT_EQ(wire::kSuccess, move("zoom", 300, fraction));
        EXPECT_EQ(speed, axis("zoom")["velocity"]) << fraction;
    }
    set("zoom.softSpeed", {{"enabled", true}, {"minimum", 20}, {"maximum", 30}});
    for (const auto &[fraction, speed] : {std::pair{0.0, 20}, {0.25, 25}, {1.0, 30}}) {
        set("zoom.position", 10);
        ASSERT_EQ(wire::kSuccess, move("zoom", 300, fraction));
        EXPECT_EQ(speed, axis("zoom")["velocity"]) << fraction;
    }
}

TEST_F(Move, HasASpeedEvenWhenTheAxisHasNone) {
    set("zoom", {{"minimumSpeed", 0}, {"maximumSpeed", 0}});
    ASSERT_EQ(wire::kSuccess, move("zoom", 300));
    expectAtAfter(2.0, "zoom", 12, 1);
}

TEST_F(Move, WithASpeedThatIsNoneIsRefused) {
    const json before = camera_->state("positioning/1");
    for (const double fraction : {-0.01, std::numeric_limits<double>::infinity(), std::nan("")}) {
        EXPECT_EQ(wire::kInvalidArgument, move("pan", 5, fraction));
    }
    // Of an axis that stays out of it nothing counts.
    EXPECT_EQ(wire::kInvalidArgument,
              call("move_to_position_with_speed_percentage_send", {1, 5, 1.0, 1, 5, -1.0, 0, 0, 0.0, 1}));
    EXPECT_EQ(before, camera_->state("positioning/1"));
    EXPECT_EQ(wire::kSuccess,
              call("move_to_position_with_speed_percentage_send", {1, 5, 1.0, 0, -99999, -1.0, 0, 0, -1.0, 1}));
}

TEST_F(Move, TakesTheShorterWayRoundAnEndlessAxis) {
    ASSERT_EQ(wire::kSuccess, move("pan", 350000));
    EXPECT_EQ(350000, axis("pan")["target"]);
    expectAtAfter(0.3, "pan", 355500, -30000);
    expectAtRestAfter(10.0, "pan", 350000);
    ASSERT_EQ(wire::kSuccess, move("pan", 10000));
    expectAtAfter(0.4, "pan", 358000, 40000);
    pass(0.2);
    EXPECT_LT(axis("pan")["position"], 10000);
    expectAtRestAfter(10.0, "pan", 10000);
}

TEST_F(Move, GoesUpwardsWhenBothWaysAreHalfATurn) {
    for (const int start : {0, 180000, 100000, 300000}) {
        set("pan.position", start);
        ASSERT_EQ(wire::kSuccess, move("pan", start + 180000));
        pass(0.1);
        EXPECT_EQ(10000, axis("pan")["velocity"]) << start;
        expectAtRestAfter(10.0, "pan", (start + 180000) % 360000);
    }
}

TEST_F(Move, StaysBetweenSoftLimitsInsteadOfGoingRound) {
    set("pan.position", 10000);
    set("pan.softPosition", {{"enabled", true}, {"minimum", 0}, {"maximum", 350000}});
    ASSERT_EQ(wire::kSuccess, move("pan", 340000));
    expectAtAfter(1.0, "pan", 60000, 100000);
    expectAtRestAfter(10.0, "pan", 340000);
    ASSERT_EQ(wire::kSuccess, move("pan", 355000));
    EXPECT_EQ(350000, axis("pan")["target"]);
    expectAtRestAfter(10.0, "pan", 350000);
}

TEST_F(Move, OfOneAxisLeavesTheOthersAlone) {
    ASSERT_EQ(wire::kSuccess, move("pan", 100000));
    pass(0.5);
    ASSERT_EQ(wire::kSuccess, move("tilt", 10000));
    ASSERT_EQ(wire::kSuccess, move("zoom", 110));
    expectAtAfter(0.5, "pan", 50000, 100000);
    expectAt("tilt", 1250, 5000);
    expectAt("zoom", 60, 100);
}

TEST_F(Move, TakesThePlaceOfAnotherOneFromWhereTheAxisIs) {
    ASSERT_EQ(wire::kSuccess, move("pan", 150000));
    pass(1.0);
    ASSERT_EQ(wire::kSuccess, move("pan", 40000));
    expectAt("pan", 50000, 100000);
    EXPECT_EQ(40000, axis("pan")["target"]);
    expectAtAfter(1.0, "pan", 100000, 0);
    expectAtAfter(0.5, "pan", 87500, -50000);
    expectAtRestAfter(10.0, "pan", 40000);
    EXPECT_THAT(events_.moves(), testing::ElementsAre("move_started pan", "move_started pan", "move_stopped pan"));
}

TEST_F(Move, EndsWhenTheAxisIsPutSomewhere) {
    ASSERT_EQ(wire::kSuccess, move("pan", 100000));
    ASSERT_EQ(wire::kSuccess, move("tilt", 10000));
    pass(0.5);
    set("pan.position", 12500);
    expectAtRest("pan", 12500);
    EXPECT_EQ(true, axis("tilt")["moving"]);
    expectAtRestAfter(10.0, "pan", 12500);
    expectAtRest("tilt", 10000);
    EXPECT_EQ((json{{"event", "move_stopped"}, {"target", "positioning/1"}, {"axis", "pan"}, {"position", 12500}}),
              events_.seen().at(events_.seen().size() - 2));
}

TEST_F(Move, SlowsDownUnderANewSpeedLimitAndSpeedsUpWithoutIt) {
    ASSERT_EQ(wire::kSuccess, move("pan", 170000));
    pass(1.0);
    ASSERT_EQ(wire::kSuccess, call("set_soft_velocity_limits_send", {1, 0, 50000, 0, 0, 0, 0, 0, 0}));
    expectAtAfter(0.25, "pan", 71875, 75000);
    expectAtAfter(0.5, "pan", 100000, 50000);
    ASSERT_EQ(wire::kSuccess, call("clear_velocity_limits_send", {1, 0, 0}));
    pass(0.1);
    EXPECT_EQ(60000, axis("pan")["velocity"]);
    expectAtRestAfter(10.0, "pan", 170000);
    EXPECT_THAT(events_.moves(), testing::ElementsAre("move_started pan", "move_stopped pan"));
}

TEST_F(Move, EndsAtASoftPositionLimitWhileItIsThere) {
    ASSERT_EQ(wire::kSuccess, move("tilt", 20000));
    pass(1.0);
    set("tilt.softPosition", {{"enabled", true}, {"minimum", -1000}, {"maximum", 12000}});
    EXPECT_EQ(12000, axis("tilt")["target"]);
    pass(0.5);
    set("tilt.softPosition.enabled", false);
    EXPECT_EQ(20000, axis("tilt")["target"]);
    pass(0.1);
    set("tilt.softPosition.enabled", true);
    expectAtRestAfter(10.0, "tilt", 12000);
    EXPECT_THAT(events_.moves(), testing::ElementsAre("move_started tilt", "move_started tilt", "move_started tilt",
                                                      "move_started tilt", "move_stopped tilt"));
}

TEST_F(Move, ComesBackWhenASoftPositionLimitIsPutBehindIt) {
    ASSERT_EQ(wire::kSuccess, move("tilt", 20000));
    pass(1.0);
    set("tilt.softPosition", {{"enabled", true}, {"minimum", -1000}, {"maximum", 1000}});
    pass(1.0);
    EXPECT_GT(axis("tilt")["position"], 9000);
    expectAtRestAfter(10.0, "tilt", 1000);
}

TEST_F(Move, GoesAsFarAsTheZoomReachesAtTheTime) {
    set("digitalZoom.enabled", true);
    ASSERT_EQ(wire::kSuccess, move("zoom", 3600));
    EXPECT_EQ(3600, axis("zoom")["target"]);
    expectAtAfter(1.0, "zoom", 110, 100);
    set("digitalZoom.enabled", false);
    EXPECT_EQ(300, axis("zoom")["target"]);
    set("digitalZoom.enabled", true);
    expectAtRestAfter(35.0, "zoom", 3600);
}

TEST_F(Move, RestsAtTheEndThatItCannotBrakeInFrontOf) {
    set("digitalZoom.enabled", true);
    set("zoom.acceleration", 100);
    ASSERT_EQ(wire::kSuccess, move("zoom", 3600));
    pass(3.25);
    // 100 a second, and so 50 from rest.
    expectAt("zoom", 285, 100);
    set("digitalZoom.enabled", false);
    expectAtAfter(0.1, "zoom", 295, 90);
    expectAtRestAfter(0.1, "zoom", 300);
}

TEST_F(Move, GoesOnFromTheEndThatItCannotBrakeInFrontOf) {
    ASSERT_EQ(wire::kSuccess, move("tilt", 20000, 1.02));
    expectAtAfter(1.5, "tilt", 10000, 10000);
    ASSERT_EQ(wire::kSuccess, move("tilt", 12000));
    set("tilt", {{"maximum", 13000}, {"acceleration", 10000}});
    expectAtRestAfter(10.0, "tilt", 12000);
    EXPECT_THAT(events_.moves(), testing::ElementsAre("move_started tilt", "move_started tilt", "move_stopped tilt"));
}

TEST_F(Move, ToAPresetHasItsSpeedAndPriority) {
    ASSERT_FALSE(
        camera_->set("presets_tours/1", "presets",
                     json::array({{{"id", "gate"}, {"number", 1}, {"pan", 90000}, {"tilt", -5000}, {"zoom", 110}}})));
    ASSERT_EQ(wire::kSuccess, call("move_to_preset_send", {"gate", 0.5, 3, 1}, "presets_tours"));
    EXPECT_EQ(3, axis("tilt")["priority"]);
    expectAtAfter(1.0, "pan", 37500, 50000);
    expectAt("zoom", 60, 50);
    EXPECT_EQ(90000, axis("pan")["target"]);
    expectAtRestAfter(10.0, "tilt", -5000);
    EXPECT_EQ(wire::kInvalidArgument, call("move_to_preset_send", {"gate", -0.5, 3, 1}, "presets_tours"));
}

TEST_F(Move, DoesNotKeepAPresetFromBeingStoredWhereTheCameraIs) {
    ASSERT_EQ(wire::kSuccess, move("pan", 100000));
    pass(0.5);
    ASSERT_EQ(wire::kSuccess, call("set_preset_with_current_position_send", {"here", "Here", 2, 1}, "presets_tours"));
    EXPECT_EQ(12500, camera_->state("presets_tours/1")["presets"][0]["pan"]);
    expectAt("pan", 12500, 50000);
}

TEST_F(Move, ShowsThePriorityOfTheLastCommand) {
    EXPECT_EQ(nullptr, axis("pan")["priority"]);
    ASSERT_EQ(wire::kSuccess, move("pan", 100000, 1.0, 1));
    EXPECT_EQ(1, axis("pan")["priority"]);
    EXPECT_EQ(nullptr, axis("tilt")["priority"]);
    // Whatever the priorities are, the newer one wins.
    ASSERT_EQ(wire::kSuccess, run("pan", 0, 0, 9));
    EXPECT_EQ(9, axis("pan")["priority"]);
    pass(10.0);
    EXPECT_EQ(9, axis("pan")["priority"]);
}

TEST_F(Move, ThatIsMoreUrgentIsRespectedWhereThatIsAsked) {
    set("respectPriorities", true);
    ASSERT_EQ(wire::kSuccess, move("pan", 100000, 1.0, 5));
    const json before = camera_->state("positioning/1");
    EXPECT_EQ(wire::kNotSupported, move("pan", 5, 1.0, 6));
    EXPECT_EQ(wire::kNotSupported, run("pan", 0, 0, 6));
    EXPECT_EQ(wire::kNotSupported,
              call("move_to_position_with_speed_percentage_send", {1, 5, 1.0, 1, 5, 1.0, 1, 15, 1.0, 6}));
    EXPECT_EQ(before, camera_->state("positioning/1"));
    EXPECT_EQ(wire::kSuccess, move("tilt", 5, 1.0, 6));
    EXPECT_EQ(wire::kSuccess, move("pan", 90000, 1.0, 5));
    EXPECT_EQ(wire::kSuccess, run("pan", 1000, 0, 4));
    EXPECT_EQ(wire::kSuccess, run("pan", 0, 0, 3));
    EXPECT_EQ(wire::kSuccess, move("tilt", 5, 1.0, 6));
    pass(10.0);
    EXPECT_EQ(wire::kSuccess, move("pan", 100000, 1.0, 9));
}

} // namespace
