// SPDX-License-Identifier: Apache-2.0
// Automatic exposure, which drives the iris, and how it and the iris by hand exclude each other.
#include "lens_camera.h"

using namespace camera;
using nlohmann::json;
using testing::ElementsAre;

namespace {

class AutomaticExposure : public test::LensCamera {
protected:
    wire::Status setManual(int enable) {
        return callService("exposure", "set_manual_mode_enable_send", {enable});
    }
    wire::Status moveIris(int position) {
        return callService("iris", "set_position_send", {position});
    }
};

TEST_F(AutomaticExposure, DrivesTheIrisAtItsSpeed) {
    setField("iris", "position", 3000);
    ASSERT_EQ(wire::kSuccess, setManual(0));
    expectAt("iris", 3000, -1000, 1000);
    expectAtAfter(0.5, "iris", 2500, -1000, 1000);
    expectAtRestAfter(1.5, "iris", 1000);
    EXPECT_THAT(happened("iris"), ElementsAre("0.0 move_started 3000", "2.0 move_stopped 1000"));
}

TEST_F(AutomaticExposure, FollowsTheLight) {
    ASSERT_EQ(wire::kSuccess, setManual(0));
    setField("iris", "automaticPosition", 9000);
    expectAtAfter(1.0, "iris", 2000, 1000, 9000);
    setField("iris", "automaticPosition", 500);
    expectAtAfter(1.0, "iris", 1000, -1000, 500);
    expectAtRestAfter(1.0, "iris", 500);
}

TEST_F(AutomaticExposure, BringsTheIrisBack) {
    ASSERT_EQ(wire::kSuccess, setManual(0));
    setField("iris", "position", 4000);
    expectAtAfter(1.0, "iris", 3000, -1000, 1000);
}

TEST_F(AutomaticExposure, TakesTheIrisOverFromTheHand) {
    ASSERT_EQ(wire::kSuccess, callService("iris", "set_velocity_send", {0, 1}));
    pass(1.0);
    setField("exposure", "manualMode", false);
    expectAt("iris", 2000, -1000, 1000);
}

TEST_F(AutomaticExposure, RefusesTheHand) {
    ASSERT_EQ(wire::kSuccess, setManual(0));
    expectRefused(wire::kNotSupported, "iris", "set_position_send", {1000});
    expectRefused(wire::kNotSupported, "iris", "set_velocity_send", {1, 1});
    expectRefused(wire::kNotSupported, "iris", "set_velocity_send", {0, 0});
    expectRefused(wire::kInvalidArgument, "iris", "set_position_send", {10001});
    expectRefused(wire::kInvalidArgument, "iris", "set_velocity_send", {2, 0});
}

TEST_F(AutomaticExposure, EndsWhereTheIrisIs) {
    for (const bool byCommand : {true, false}) {
        setField("iris", "position", 3000);
        ASSERT_EQ(wire::kSuccess, setManual(0));
        pass(0.5);
        if (byCommand) {
            ASSERT_EQ(wire::kSuccess, setManual(1));
        } else {
            setField("exposure", "manualMode", true);
        }
        expectAtRestAfter(10.0, "iris", 2500);
    }
    setField("iris", "automaticPosition", 7000);
    expectAtRestAfter(10.0, "iris", 2500);
}

TEST_F(AutomaticExposure, ThatIsOffAlreadyLeavesTheIrisToTheHand) {
    ASSERT_EQ(wire::kSuccess, moveIris(3000));
    pass(1.0);
    ASSERT_EQ(wire::kSuccess, setManual(1));
    setField("exposure", "manualMode", true);
    expectAt("iris", 2000, 1000, 3000);
}

TEST_F(AutomaticExposure, ThatIsOnAlreadyGoesOn) {
    setField("iris", "position", 3000);
    ASSERT_EQ(wire::kSuccess, setManual(0));
    pass(1.0);
    ASSERT_EQ(wire::kSuccess, setManual(0));
    expectAt("iris", 2000, -1000, 1000);
    EXPECT_THAT(happened("iris"), ElementsAre("0.0 move_started 3000"));
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

TEST_F(AutomaticExposure, IsBackAfterARestart) {
    setField("iris", "position", 3000);
    ASSERT_EQ(wire::kSuccess, setManual(0));
    pass(1.0);
    reboot();
    passAwake(4.0);
    expectAtRest("iris", 2000);
    passAwake(10.0);
    expectAtRest("iris", 1000);
    EXPECT_THAT(happened("iris"), ElementsAre("0.0 move_started 3000", "1.0 move_stopped 2000", "6.0 move_started 2000",
                                              "7.0 move_stopped 1000"));
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
