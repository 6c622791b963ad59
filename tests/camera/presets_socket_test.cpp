// SPDX-License-Identifier: Apache-2.0
// Presets of a running camera in their file.
#include <csignal>
#include <filesystem>

#include <gmock/gmock.h>

#include "camera_process.h"

using namespace camera::test;
using namespace support;
using nlohmann::json;

namespace {

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
