// SPDX-License-Identifier: Apache-2.0
// Pan, tilt and zoom at velocities: limits, stops and time-outs.
#include "moving_camera.h"

using namespace camera;

namespace {

class Velocity : public test::MovingCamera {};

TEST_F(Velocity, RunsItsScripts) {
    runMoves({
        {"ends at soft limits, and moves inwards only outside of them",
         R"(set pan.softPosition {"enabled":true,"minimum":0,"maximum":90000}; )"
         R"(set tilt.softPosition {"enabled":true,"minimum":-30000,"maximum":-10000}; )"
         "run pan 100000; run tilt 10000; rest tilt 0; run tilt -10000; after 10.0 rest pan 90000; rest tilt -30000; "
         "run pan -100000; after 10.0 rest pan 0"},
        {"ends with its time",
         "run tilt 2000 1500; next 1.5; after 1.6 at tilt 2950 1000; after 1.0 rest tilt 3000; "
         "moves move_started tilt move_timed_out tilt move_stopped tilt; field velocityTimeout 1500"},
        {"lasts for ever without a time",
         "run pan 1000 0; next never; field velocityTimeout 4294967295; set pan.position 0; "
         "run pan 1000 4294967295; next never; field velocityTimeout 4294967295"},
        {"has the time of the camera when the command has none",
         "call set_velocity_send [1,1000,0,0,0,0,1]; next never; call set_velocity_command_timeout_send [800]; next "
         "never; "
         "pass 1.0; call set_velocity_send [1,1000,0,0,0,0,1]; next 1.8; field velocityTimeout 800"},
        {"has a time for each axis",
         "run pan 10000 1000; pass 0.5; run tilt 1000 1000; pass 0.4; run pan 10000 1000; awake 5.0; "
         "moves move_started pan move_started tilt move_started pan move_timed_out tilt move_stopped tilt "
         "move_timed_out pan move_stopped pan; times 1.5 1.6 1.9 2.0"},
        {"ends a move, and loses its time to the next move",
         "move pan 100000; pass 1.0; run pan 100000 1000; field pan.target null; after 0.5 at pan 100000 100000; "
         "move pan 200000; after 10.0 rest pan 200000; "
         "moves move_started pan move_started pan move_started pan move_stopped pan"},
        {"is reached with the acceleration of the axis",
         "run tilt -5000; field tilt.target null; after 0.25 at tilt -313 -2500; after 1.25 at tilt -6250 -5000; "
         "run tilt 2500; after 0.75 at tilt -7188 2500"},
        {"ends exactly at the end of the axis",
         "run tilt 10000; next 3.0; after 2.5 at tilt 18750 5000; after 0.5 rest tilt 20000; "
         "moves move_started tilt limit_reached tilt move_stopped tilt; times 3.0"},
        {"does not move beyond the end of the axis",
         "set zoom.position 300; run zoom 50; rest zoom 300; "
         "moves move_started zoom limit_reached zoom move_stopped zoom; run zoom -50; after 1.0 at zoom 250 -50"},
        {"goes round an endless axis",
         "run pan -100000; next never; after 1.0 at pan 310000 -100000; after 3600000.0 at pan 310000 -100000; "
         "after 0.1 at pan 300000 -100000"},
        {"brakes at once for a new soft limit behind it",
         R"(run tilt 10000; pass 1.0; set tilt.softPosition {"enabled":true,"minimum":-1000,"maximum":1000}; )"
         "after 1.0 rest tilt 10000; moves move_started tilt limit_reached tilt move_stopped tilt"},
        {"continues beyond a disabled soft limit",
         R"(set tilt.softPosition {"enabled":true,"minimum":-1000,"maximum":10000}; run tilt 10000; )"
         "after 1.5 at tilt 8750 5000; set tilt.softPosition.enabled false; after 0.5 at tilt 12500 10000; "
         "after 5.0 rest tilt 20000"},
        {"moves no axis without speed",
         R"(set zoom {"minimumSpeed":0,"maximumSpeed":0}; run zoom 50; rest zoom 10; moves)"},
        {"of zero brakes",
         "move pan 150000; pass 1.0; run pan 0; field pan.target null; after 0.5 at pan 87500 50000; "
         "moves move_started pan; after 0.5 rest pan 100000; moves move_started pan move_stopped pan; times 2.0"},
        {"of zero has no effect at rest", "run pan 0; rest pan 0; next never; moves"},
    });
}

TEST_F(Velocity, IsBroughtIntoTheRangeOfSpeeds) {
    const std::vector<std::pair<int, int>> velocities = {
        {-2147483647 - 1, -10000}, {2147483647, 10000}, {1, 100}, {-99, -100}, {101, 101}};
    set("tilt.acceleration", 0);
    for (const auto &[wanted, allowed] : velocities) {
        set("tilt.position", 0);
        ASSERT_EQ(wire::kSuccess, run("tilt", wanted));
        expectAt("tilt", 0, allowed);
        EXPECT_EQ("move_started", events_.seen().back()["event"]);
        EXPECT_EQ(allowed, events_.seen().back()["velocity"]);
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

} // namespace
