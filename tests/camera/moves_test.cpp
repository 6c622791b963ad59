// SPDX-License-Identifier: Apache-2.0
// Moves of pan, tilt and zoom to positions, and their interruptions.
#include <cmath>
#include <limits>

#include "moving_camera.h"

using namespace camera;
using nlohmann::json;

namespace {

class Move : public test::MovingCamera {};

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

TEST_F(Move, RunsItsScripts) {
    runMoves({
        {"takes its time",
         "move pan 100000; at pan 0 0; field pan.target 100000; after 0.5 at pan 12500 50000; after 0.5 at pan 50000 "
         "100000; "
         "call get_position_send []; results [50000,0,10]; after 0.5 at pan 87500 50000; after 0.5 rest pan 100000"},
        {"is rounded to the next unit", "move zoom 300 0.333; after 0.7 at zoom 33 33"},
        {"takes the shorter way round an endless axis",
         "move pan 350000; field pan.target 350000; after 0.3 at pan 355500 -30000; after 10.0 rest pan 350000; "
         "move pan 10000; after 0.4 at pan 358000 40000; after 0.2 at pan 5666 29443; after 10.0 rest pan 10000"},
        {"rests at an end of the axis that it reaches too fast",
         "set digitalZoom.enabled true; set zoom.acceleration 100; move zoom 3600; after 3.25 at zoom 285 100; "
         "set digitalZoom.enabled false; after 0.1 at zoom 295 90; after 0.1 rest zoom 300"},
        {"shows the priority of the last command, which counts whatever its priority is",
         "field pan.priority null; move pan 100000 1.0 1; field pan.priority 1; field tilt.priority null; "
         "run pan 0 0 9; field pan.priority 9; pass 10.0; field pan.priority 9"},
        {"has a speed even when the axis has none",
         R"(set zoom {"minimumSpeed":0,"maximumSpeed":0}; move zoom 300; after 2.0 at zoom 12 1)"},
        {"stays between soft limits instead of going round",
         R"(set pan.position 10000; set pan.softPosition {"enabled":true,"minimum":0,"maximum":350000}; )"
         "move pan 340000; after 1.0 at pan 60000 100000; after 10.0 rest pan 340000; move pan 355000; "
         "field pan.target 350000; after 10.0 rest pan 350000"},
        {"affects one axis only",
         "move pan 100000; pass 0.5; move tilt 10000; move zoom 110; after 0.5 at pan 50000 100000; "
         "at tilt 1250 5000; at zoom 60 100"},
        {"replaces another move on its way",
         "move pan 150000; pass 1.0; move pan 40000; at pan 50000 100000; field pan.target 40000; "
         "after 1.0 at pan 100000 0; after 0.5 at pan 87500 -50000; after 10.0 rest pan 40000; "
         "moves move_started pan move_started pan move_stopped pan"},
        {"slows down under a new speed limit and speeds up without it",
         "move pan 170000; pass 1.0; call set_soft_velocity_limits_send [1,0,50000,0,0,0,0,0,0]; "
         "after 0.25 at pan 71875 75000; after 0.5 at pan 100000 50000; call clear_velocity_limits_send [1,0,0]; "
         "pass 0.1; field pan.velocity 60000; after 10.0 rest pan 170000; moves move_started pan move_stopped pan"},
        {"ends at a soft position limit while it is there",
         R"(move tilt 20000; pass 1.0; set tilt.softPosition {"enabled":true,"minimum":-1000,"maximum":12000}; )"
         "field tilt.target 12000; pass 0.5; set tilt.softPosition.enabled false; field tilt.target 20000; pass 0.1; "
         "set tilt.softPosition.enabled true; after 10.0 rest tilt 12000; "
         "moves move_started tilt move_started tilt move_started tilt move_started tilt move_stopped tilt"},
        {"comes back when a soft position limit is put behind it",
         R"(move tilt 20000; pass 1.0; set tilt.softPosition {"enabled":true,"minimum":-1000,"maximum":1000}; )"
         "after 1.0 at tilt 9900 -100; after 10.0 rest tilt 1000"},
        {"goes as far as the zoom reaches at the time",
         "set digitalZoom.enabled true; move zoom 3600; field zoom.target 3600; after 1.0 at zoom 110 100; "
         "set digitalZoom.enabled false; field zoom.target 300; set digitalZoom.enabled true; "
         "after 35.0 rest zoom 3600"},
        {"continues from an end of the axis that stopped it",
         "move tilt 20000 1.02; after 1.5 at tilt 10000 10000; move tilt 12000; "
         R"(set tilt {"maximum":13000,"acceleration":10000}; after 10.0 rest tilt 12000; )"
         "moves move_started tilt move_started tilt move_stopped tilt"},
    });
}

TEST_F(Move, WithAnInvalidSpeedIsRefused) {
    const json before = camera_->state("positioning/1");
    for (const double fraction : {-0.01, std::numeric_limits<double>::infinity(), std::nan("")}) {
        EXPECT_EQ(wire::kInvalidArgument, move("pan", 5, fraction));
    }
    // The values of a disabled axis are ignored.
    EXPECT_EQ(wire::kInvalidArgument,
              call("move_to_position_with_speed_percentage_send", {1, 5, 1.0, 1, 5, -1.0, 0, 0, 0.0, 1}));
    EXPECT_EQ(before, camera_->state("positioning/1"));
    EXPECT_EQ(wire::kSuccess,
              call("move_to_position_with_speed_percentage_send", {1, 5, 1.0, 0, -99999, -1.0, 0, 0, -1.0, 1}));
}

TEST_F(Move, GoesUpwardsWhenBothWaysAreHalfATurn) {
    for (const int start : {0, 180000, 100000, 300000}) {
        set("pan.position", start);
        ASSERT_EQ(wire::kSuccess, move("pan", start + 180000));
        pass(0.1);
        EXPECT_EQ(10000, axis("pan")["velocity"]) << start;
        pass(10.0);
        expectAtRest("pan", (start + 180000) % 360000);
    }
}

TEST_F(Move, EndsWhenTheAxisIsPutSomewhere) {
    ASSERT_EQ(wire::kSuccess, move("pan", 100000));
    ASSERT_EQ(wire::kSuccess, move("tilt", 10000));
    pass(0.5);
    set("pan.position", 12500);
    expectAtRest("pan", 12500);
    EXPECT_EQ(true, axis("tilt")["moving"]);
    pass(10.0);
    expectAtRest("pan", 12500);
    expectAtRest("tilt", 10000);
    EXPECT_EQ((json{{"event", "move_stopped"}, {"target", "positioning/1"}, {"axis", "pan"}, {"position", 12500}}),
              events_.seen().at(events_.seen().size() - 2));
}

TEST_F(Move, ToAPresetHasItsSpeedAndPriority) {
    ASSERT_FALSE(
        camera_->set("presets_tours/1", "presets",
                     json::array({{{"id", "gate"}, {"number", 1}, {"pan", 90000}, {"tilt", -5000}, {"zoom", 110}}})));
    ASSERT_EQ(wire::kSuccess, call("move_to_preset_send", {"gate", 0.5, 3, 1}, "presets_tours"));
    EXPECT_EQ(3, axis("tilt")["priority"]);
    pass(1.0);
    expectAt("pan", 37500, 50000);
    expectAt("zoom", 60, 50);
    EXPECT_EQ(90000, axis("pan")["target"]);
    pass(10.0);
    expectAtRest("tilt", -5000);
    EXPECT_EQ(wire::kInvalidArgument, call("move_to_preset_send", {"gate", -0.5, 3, 1}, "presets_tours"));
}

TEST_F(Move, DoesNotKeepAPresetFromBeingStoredWhereTheCameraIs) {
    ASSERT_EQ(wire::kSuccess, move("pan", 100000));
    pass(0.5);
    ASSERT_EQ(wire::kSuccess, call("set_preset_with_current_position_send", {"here", "Here", 2, 1}, "presets_tours"));
    EXPECT_EQ(12500, camera_->state("presets_tours/1")["presets"][0]["pan"]);
    expectAt("pan", 12500, 50000);
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
