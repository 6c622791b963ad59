// SPDX-License-Identifier: Apache-2.0
// Inputs, outputs, sensors and presets of a running camera: clients read the values of the control program.
#include <csignal>
#include <filesystem>

#include <gmock/gmock.h>

#include "camera_process.h"

using namespace camera::test;
using namespace support;
using nlohmann::json;

namespace {

/** Field with a new value, and the call that reads it. */
struct Shown {
    const char *service;
    const char *field;
    json value;
    const char *operation; ///< its arguments are the target and `arguments`
    json arguments;
    std::size_t place; ///< index of the value in the answer; 0 without such a call
};

const json kNone = json::array();
const json kPresets =
    json::array({{{"id", "gate"}, {"name", "Gate"}, {"number", 0}, {"pan", 1000}, {"tilt", -2000}, {"zoom", 20}}});

using RunningDome = CameraTest;

TEST_F(RunningDome, ShowsTheFieldsThatTheControlProgramSets) {
    const std::vector<Shown> rows = {
        {"alarm", "state", 1, "get_state_send", kNone, 1},
        {"device_management", "reboots", 7, "get_reboots", kNone, 0},
        {"device_management", "rebootSeconds", 9, "get_reboots", kNone, 0},
        {"power", "powerState", 255, "get_power_state_send", kNone, 1},
        {"power", "voltageState", 2, "get_voltage_state_send", kNone, 1},
        {"presets_tours", "maximumPresets", 9, "get_max_presets_send", kNone, 1},
        {"presets_tours", "presets", kPresets, "get_preset_id_for_quarnapi_id_send", {0}, 1},
        {"relay", "state", 1, "get_state_send", kNone, 1},
        {"relay", "configuration.c1", 1, "get_configuration_send", kNone, 1},
        {"relay", "configuration.c2", 2, "get_configuration_send", kNone, 2},
        {"relay", "configuration.c3", -3, "get_configuration_send", kNone, 3},
        {"relay", "configuration.c4", 255, "get_configuration_send", kNone, 4},
        {"relay", "configuration.c5", -5, "get_configuration_send", kNone, 5},
        {"relay", "configuration.c6", 6, "get_configuration_send", kNone, 6},
        {"relay", "configuration.c7", 7, "get_configuration_send", kNone, 7},
        {"temperature", "temperature", 41000, "get_temperature_send", kNone, 1},
    };
    for (const Shown &shown : rows) {
        SCOPED_TRACE(std::string(shown.service) + " " + shown.field);
        const std::string target = std::string(shown.service) + "/1";
        json call = json::array({shown.operation, target});
        call.insert(call.end(), shown.arguments.begin(), shown.arguments.end());
        LineClient client(directory_, shown.service);
        Follower follower(directory_);
        const json before = client.call(call);
        EXPECT_EQ(kDone, set(target, shown.field, shown.value));
        json event = follower.next();
        event.erase("time");
        EXPECT_EQ((json{{"event", "changed"}, {"target", target}, {"fields", {{shown.field, shown.value}}}}), event);
        std::string path = std::string("/") + shown.field;
        std::replace(path.begin(), path.end(), '.', '/');
        EXPECT_EQ(shown.value, targetState(shown.service)[json::json_pointer(path)]);
        if (shown.place > 0) {
            json expected = before;
            expected[shown.place] = shown.value.is_array() ? shown.value[0]["id"] : shown.value;
            EXPECT_NE(before, expected);
            EXPECT_EQ(expected, client.call(call));
        }
    }
}

TEST_F(RunningDome, FailsAndDelaysCallsOnCommand) {
    constexpr int kMilliseconds = 50;
    for (const json &call : {json{"get_state_send", "alarm/1"}, json{"get_power_state_send", "power/1"},
                             json{"get_max_presets_send", "presets_tours/1"}, json{"get_state_send", "relay/1"},
                             json{"get_temperature_send", "temperature/1"}}) {
        SCOPED_TRACE(call);
        const std::string target = call[1];
        const std::string service = target.substr(0, target.find('/'));
        LineClient client(directory_, service);
        EXPECT_EQ(kDone,
                  control_.call({{"command", "fail"}, {"service", service}, {"operation", call[0]}, {"status", 77}}));
        EXPECT_EQ(json::array({77}), client.call(call));
        EXPECT_EQ(
            kDone,
            control_.call(
                {{"command", "delay"}, {"service", service}, {"operation", "*"}, {"milliseconds", kMilliseconds}}));
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(0, client.call(call)[0]);
        EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(kMilliseconds));
    }
}

/** Camera with a file for its presets. */
class PresetsOfAProcess : public testing::Test {
protected:
    std::unique_ptr<Camera> start() {
        return std::make_unique<Camera>("dome", CameraOptions{directory_, {}, {"--presets", file_}});
    }

    json callPresets(const json &call) {
        return LineClient(directory_, "presets_tours").call(call);
    }

    TemporaryDirectory root_;
    std::string directory_ = root_.file("sockets");
    std::string file_ = root_.file("presets.json");
    const json store_ = {"set_preset_with_current_position_send", "presets_tours/1", "gate", "Gate", 0, 1};
    const json find_ = {"get_preset_id_for_quarnapi_id_send", "presets_tours/1", 0};
};

TEST_F(PresetsOfAProcess, OutliveEvenAKilledCamera) {
    for (const int signal : {SIGKILL, SIGTERM}) {
        const std::unique_ptr<Camera> camera = start();
        EXPECT_EQ(json::array({0}), callPresets(store_));
        camera->stop(signal);
        const std::unique_ptr<Camera> next = start();
        EXPECT_EQ((json{0, "gate"}), callPresets(find_));
        EXPECT_TRUE(next->stop().clean());
        std::filesystem::remove(file_);
    }
}

TEST_F(PresetsOfAProcess, AreStoredForNowWhereTheFileCannotBeWritten) {
    std::filesystem::create_directory(root_.file("store"));
    file_ = root_.file("store/presets.json");
    const std::unique_ptr<Camera> camera = start();
    std::filesystem::remove_all(root_.file("store"));
    EXPECT_EQ(json::array({0}), callPresets(store_));
    EXPECT_EQ((json{0, "gate"}), callPresets(find_));
    EXPECT_TRUE(camera->stop().clean());
    EXPECT_THAT(camera->errors().text(),
                testing::MatchesRegex("quarnsnmp-camera: .*/store/presets.json: cannot be written: No "
                                      "such file or directory\n"));
}

TEST_F(PresetsOfAProcess, AreRefusedWithTheCameraWhenTheFileIsWrong) {
    writeFile(file_, R"({"presets_tours/1": [{"id": "a", "number": 256}]})");
    const CommandResult ended = runCommand({cameraPath(), "--directory", directory_, "--presets", file_});
    EXPECT_EQ(1, ended.status.code);
    EXPECT_THAT(ended.errors, testing::MatchesRegex("quarnsnmp-camera: .*/presets.json: presets_tours/1\\[0\\].number: "
                                                    "expected an integer from 0 to 255, found 256\n"));
    EXPECT_FALSE(std::filesystem::exists(directory_));
    EXPECT_EQ(2, runCommand({cameraPath(), "--directory", directory_, "--presets", ""}).status.code);
}

} // namespace
