// SPDX-License-Identifier: Apache-2.0
// Automatic exposure, and its mutual exclusion with manual commands of the iris.
#include "lens_camera.h"

using namespace camera;
using nlohmann::json;

namespace {

class AutomaticExposure : public test::LensCamera {
protected:
    wire::Status setManual(int enable) {
        return callService("exposure", "set_manual_mode_enable_send", {enable});
    }
    void runIris(const std::vector<test::Script> &scripts) {
        using Arguments = test::ScriptArguments;
        runDrive("iris", scripts,
                 {{"manual", [this](const Arguments &a) { EXPECT_EQ(wire::kSuccess, setManual(a.at(0))); }},
                  {"mode", [this](const Arguments &a) { setField("exposure", "manualMode", a.at(0)); }}});
    }
};

TEST_F(AutomaticExposure, RunsItsScripts) {
    runIris({
        {"takes over a manual run", "run 0 1; pass 1.0; mode false; at 2000 -1000 1000"},
        {"leaves a manual move alone when it is off already",
         "move 3000; pass 1.0; manual 1; mode true; at 2000 1000 3000"},
        {"ends by a call where the iris is",
         "set position 3000; manual 0; pass 0.5; manual 1; after 10.0 rest 2500; set automaticPosition 7000; "
         "after 10.0 rest 2500"},
        {"ends by a set where the iris is",
         "set position 3000; manual 0; pass 0.5; mode true; after 10.0 rest 2500; set automaticPosition 7000; "
         "after 10.0 rest 2500"},
        {"drives the iris at its speed",
         "set position 3000; manual 0; at 3000 -1000 1000; after 0.5 at 2500 -1000 1000; after 1.5 rest 1000; "
         "events 0.0 move_started 3000 2.0 move_stopped 1000"},
        {"follows the light",
         "manual 0; set automaticPosition 9000; after 1.0 at 2000 1000 9000; set automaticPosition 500; "
         "after 1.0 at 1000 -1000 500; after 1.0 rest 500"},
        {"brings the iris back", "manual 0; set position 4000; after 1.0 at 3000 -1000 1000"},
        {"continues when it is on already",
         "set position 3000; manual 0; pass 1.0; manual 0; at 2000 -1000 1000; events 0.0 move_started 3000"},
        {"resumes after a restart",
         "set position 3000; manual 0; pass 1.0; reboot; awake 4.0; rest 2000; awake 10.0; rest 1000; "
         "events 0.0 move_started 3000 1.0 move_stopped 2000 6.0 move_started 2000 7.0 move_stopped 1000"},
    });
}

TEST_F(AutomaticExposure, RefusesTheHand) {
    ASSERT_EQ(wire::kSuccess, setManual(0));
    expectRefused(wire::kNotSupported, "iris", "set_position_send", {1000});
    expectRefused(wire::kNotSupported, "iris", "set_velocity_send", {1, 1});
    expectRefused(wire::kNotSupported, "iris", "set_velocity_send", {0, 0});
    expectRefused(wire::kInvalidArgument, "iris", "set_position_send", {10001});
    expectRefused(wire::kInvalidArgument, "iris", "set_velocity_send", {2, 0});
}

TEST_F(AutomaticExposure, IsToldAsAChangeOfTheIris) {
    const json fields = {{"target", 1000}, {"velocity", -1000}, {"moving", true}};
    const json changed = {{"event", "changed"}, {"target", "iris/1"}, {"fields", fields}};
    setField("iris", "position", 3000);
    ASSERT_EQ(wire::kSuccess, setManual(0));
    EXPECT_THAT(events_.seen(), testing::Contains(changed));
    ASSERT_EQ(wire::kSuccess, setManual(1));
    events_.clear();
    setField("exposure", "manualMode", false);
    EXPECT_THAT(events_.seen(), testing::Contains(changed));
}

TEST(Exposure, DrivesTheIrisOfItsNumberFromTheStart) {
    double now = 0.0;
    const auto camera = test::makeCamera(R"({"name": "irises", "services": {
        "exposure": {"targets": [{"manualMode": true}, {"manualMode": false}]},
        "iris": {"targets": [{"maximum": 100, "automaticPosition": 50, "speed": 10},
                             {"maximum": 100, "automaticPosition": 50, "speed": 10},
                             {"maximum": 100, "automaticPosition": 50, "speed": 10}]}}})",
                                         [&] { return now; });
    now = 2.0;
    EXPECT_EQ(0, camera->state("iris/1")["position"]);
    EXPECT_EQ(20, camera->state("iris/2")["position"]);
    // Without exposure there is only the hand.
    EXPECT_EQ(0, camera->state("iris/3")["position"]);
    EXPECT_EQ(wire::kSuccess, camera->call("iris", {"set_position_send", "iris/1", 5}).status);
    EXPECT_EQ(wire::kNotSupported, camera->call("iris", {"set_position_send", "iris/2", 5}).status);
    EXPECT_EQ(wire::kSuccess, camera->call("iris", {"set_position_send", "iris/3", 5}).status);
}

TEST(Exposure, DoesNotNeedAnIris) {
    const auto camera = test::makeCameraOf("exposure", {{"manualMode", true}});
    EXPECT_EQ(wire::kSuccess, camera->call("exposure", {"set_manual_mode_enable_send", "exposure/1", 0}).status);
    EXPECT_EQ(false, camera->state("exposure/1")["manualMode"]);
}

} // namespace
