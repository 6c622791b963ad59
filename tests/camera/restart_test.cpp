// SPDX-License-Identifier: Apache-2.0
// Effects of a restart on the model, with a simulated clock.
#include <gmock/gmock.h>

#include "steered_camera.h"

using namespace camera;
using nlohmann::json;

namespace {

constexpr int kRestart = 30;

class ARestart : public test::SteeredCamera {
protected:
    ARestart() {
        camera_->onRestart([this](bool away) { steps_.push_back(away ? "away" : "back"); });
        setField("device_management", "rebootSeconds", kRestart);
    }

    wire::Status call(const std::string &service, const std::string &operation, const json &arguments) {
        return callService(service, operation, arguments);
    }

    std::vector<std::string> steps_;
};

TEST_F(ARestart, BeginsAfterItsCallAndEndsInTime) {
    reboot();
    EXPECT_FALSE(camera_->isRestarting());
    EXPECT_THAT(steps_, testing::IsEmpty());
    EXPECT_EQ(now_, camera_->nextTime());
    camera_->advance();
    EXPECT_TRUE(camera_->isRestarting());
    EXPECT_EQ(kRestart, camera_->nextTime());
    now_ = kRestart - 0.001;
    camera_->advance();
    EXPECT_TRUE(camera_->isRestarting());
    now_ = kRestart;
    camera_->advance();
    EXPECT_FALSE(camera_->isRestarting());
    EXPECT_EQ(kNever, camera_->nextTime());
    EXPECT_THAT(steps_, testing::ElementsAre("away", "back"));
}

TEST_F(ARestart, WithoutTimeStillTakesEverythingDown) {
    setField("device_management", "rebootSeconds", 0);
    reboot();
    // A call that comes before any timer meets a camera that is away.
    EXPECT_EQ(wire::kServiceDown, call("relay", "set_configuration_send", {1, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(0, camera_->state("relay/1")["configuration"]["c1"]);
    passAwake(0.0);
    EXPECT_THAT(steps_, testing::ElementsAre("away", "back"));
    EXPECT_EQ(wire::kSuccess, call("relay", "set_configuration_send", {1, 0, 0, 0, 0, 0, 0}));
}

TEST_F(ARestart, AnswersAndExecutesNoCalls) {
    reboot();
    EXPECT_EQ(wire::kServiceDown, call("device_management", "reboot_send", {2}));
    EXPECT_EQ(wire::kServiceDown, call("temperature", "get_temperature_send", json::array()));
    EXPECT_EQ(1, camera_->state("device_management/1")["reboots"]);
    passAwake(kRestart);
    EXPECT_EQ(wire::kSuccess, call("temperature", "get_temperature_send", json::array()));
    reboot();
    passAwake(kRestart);
    EXPECT_EQ(2, camera_->state("device_management/1")["reboots"]);
    EXPECT_THAT(steps_, testing::ElementsAre("away", "back", "away", "back"));
}

TEST_F(ARestart, IsControlledAsBefore) {
    reboot();
    passAwake(1.0);
    setField("temperature", "temperature", 1234);
    EXPECT_EQ(1234, camera_->state("temperature/1")["temperature"]);
}

TEST_F(ARestart, StopsMovesWhereTheyAre) {
    ASSERT_EQ(wire::kSuccess, call("positioning", "set_velocity_with_timeout_send", {1, 5000, 0, 0, 0, 0, 1, 60000}));
    passAwake(2.0);
    const json before = camera_->state("positioning/1");
    ASSERT_EQ(5000, before["pan"]["velocity"]);
    events_.clear();
    reboot();
    passAwake(kRestart);
    json after = camera_->state("positioning/1");
    EXPECT_EQ(before["pan"]["position"], after["pan"]["position"]);
    EXPECT_EQ(false, after["pan"]["moving"]);
    EXPECT_EQ(0, after["pan"]["velocity"]);
    EXPECT_EQ(nullptr, after["pan"]["priority"]);
    EXPECT_EQ(4294967295U, after["velocityTimeout"]);
    EXPECT_THAT(events_.moves(), testing::ElementsAre("move_stopped pan"));
}

TEST_F(ARestart, LosesCommandsAndKeepsSettings) {
    ASSERT_EQ(wire::kSuccess, call("relay", "set_configuration_send", {1, 2, 3, 4, 5, 6, 7}));
    ASSERT_EQ(wire::kSuccess, call("relay", "set_state_send", {1}));
    ASSERT_EQ(wire::kSuccess, call("positioning", "set_velocity_command_timeout_send", {700}));
    ASSERT_EQ(wire::kSuccess, call("positioning", "set_soft_velocity_limits_send", {1, 60, 70, 0, 0, 0, 0, 0, 0}));
    setField("alarm", "state", 1);
    setField("temperature", "temperature", 40000);
    json expected;
    for (const char *target : {"relay/1", "positioning/1", "alarm/1", "temperature/1"}) {
        expected[target] = camera_->state(target);
    }
    expected["relay/1"]["state"] = 0;
    reboot();
    passAwake(kRestart);
    for (const auto &item : expected.items()) {
        EXPECT_EQ(item.value(), camera_->state(item.key())) << item.key();
    }
}

TEST_F(ARestart, LosesPresetsThatWereNotKept) {
    setField("presets_tours", "presets", json::array({{{"id", "kept"}, {"number", 1}}}));
    camera_->keep("presets_tours/1");
    ASSERT_EQ(wire::kSuccess, call("presets_tours", "set_preset_with_current_position_send", {"lost", "Lost", 2, 1}));
    reboot();
    passAwake(kRestart);
    const json presets = camera_->state("presets_tours/1")["presets"];
    ASSERT_EQ(1U, presets.size());
    EXPECT_EQ("kept", presets[0]["id"]);
}

TEST_F(ARestart, ComesBackWithNoMorePresetsThanThereCanBe) {
    setField("presets_tours", "presets", json::array({{{"id", "a"}, {"number", 1}}, {{"id", "b"}, {"number", 2}}}));
    camera_->keep("presets_tours/1");
    setField("presets_tours", "presets", json::array());
    setField("presets_tours", "maximumPresets", 1);
    reboot();
    passAwake(kRestart);
    EXPECT_EQ(1U, camera_->state("presets_tours/1")["presets"].size());
    EXPECT_FALSE(camera_->service("presets_tours")->check(0));
}

TEST_F(ARestart, TellsWhatItChanges) {
    test::setUpRelay(*camera_, "relay/1");
    ASSERT_EQ(wire::kSuccess, call("relay", "set_state_send", {1}));
    events_.clear();
    reboot();
    passAwake(kRestart);
    EXPECT_THAT(events_.seen(),
                testing::ElementsAre(
                    R"({"event": "command", "service": "device_management", "target": "device_management/1",
                       "operation": "reboot_send", "arguments": [2], "status": 0})"_json,
                    json{{"event", "changed"}, {"target", "device_management/1"}, {"fields", {{"reboots", 1}}}},
                    json{{"event", "reboot"}, {"target", "device_management/1"}, {"kind", 2}, {"seconds", kRestart}},
                    json{{"event", "changed"}, {"target", "relay/1"}, {"fields", {{"state", 0}}}}));
}

} // namespace
