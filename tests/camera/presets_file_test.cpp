// SPDX-License-Identifier: Apache-2.0
// File of presets.
#include <filesystem>

#include <gmock/gmock.h>

#include "event_recorder.h"
#include "presets_file.h"
#include "temporary_directory.h"
#include "test_cameras.h"
#include "text_file.h"

using namespace camera;
using nlohmann::json;

namespace {

const char *const kCamera = R"({"name": "two", "services": {
    "device_management": {"targets": [{"rebootSeconds": 0}]},
    "positioning": {"targets": [{"pan": {"position": 500, "maximum": 1000}, "zoom": {"position": 10, "maximum": 300}}, {}]},
    "presets_tours": {"targets": [
        {"maximumPresets": 3, "presets": [{"id": "start", "number": 1}]},
        {"maximumPresets": 3}]}}})";

class KeptPresets : public testing::Test {
protected:
    /** Starts a new camera with the present file. */
    void start() {
        presets_.reset();
        camera_ = test::makeCamera(kCamera);
        presets_ = std::make_unique<PresetsFile>(*camera_, file_,
                                                 [this](const std::string &line) { warnings_.push_back(line); });
    }

    wire::Status store(const std::string &id, int number, const std::string &target = "presets_tours/1") {
        return camera_
            ->call("presets_tours", {"set_preset_with_current_position_send", target, id, "Preset " + id, number, 1})
            .status;
    }

    void reboot() {
        ASSERT_EQ(wire::kSuccess, camera_->call("device_management", {"reboot_send", "device_management/1", 2}).status);
        camera_->advance();
        camera_->advance();
        ASSERT_FALSE(camera_->isRestarting());
    }

    std::vector<std::string> ids(const std::string &target = "presets_tours/1") {
        std::vector<std::string> ids;
        const json state = camera_->state(target);
        for (const json &preset : state["presets"]) {
            ids.push_back(preset["id"]);
        }
        return ids;
    }

    json written() const {
        return json::parse(readTextFile(file_));
    }

    std::string errorOfStart() {
        return test::errorOf([this] { start(); });
    }

    support::TemporaryDirectory root_;
    std::string file_ = root_.file("presets.json");
    std::vector<std::string> warnings_;
    std::unique_ptr<CameraModel> camera_;
    std::unique_ptr<PresetsFile> presets_;
};

TEST_F(KeptPresets, AreMadeOfThoseOfTheCamera) {
    start();
    EXPECT_EQ(json::parse(R"({
        "presets_tours/1": [{"id": "start", "name": "", "number": 1, "pan": 0, "tilt": 0, "zoom": 0}],
        "presets_tours/2": []})"),
              written());
}

TEST_F(KeptPresets, ComeBackWithTheCamera) {
    start();
    ASSERT_EQ(wire::kSuccess, store("gate", 0));
    ASSERT_EQ(wire::kSuccess, store("yard", 255, "presets_tours/2"));
    EXPECT_EQ("Preset gate", written()["presets_tours/1"][0]["name"]) << "what was answered is kept";
    start();
    EXPECT_THAT(ids(), testing::ElementsAre("gate", "start"));
    EXPECT_THAT(ids("presets_tours/2"), testing::ElementsAre("yard"));
    const json gate = camera_->state("presets_tours/1")["presets"][0];
    EXPECT_EQ(json::parse(R"({"id": "gate", "name": "Preset gate", "number": 0, "pan": 500, "tilt": 0, "zoom": 10})"),
              gate);
    EXPECT_THAT(support::entriesOf(root_.path()), testing::ElementsAre("presets.json"));
}

TEST_F(KeptPresets, IncludeThoseOfTheControlProgram) {
    start();
    ASSERT_FALSE(camera_->set("presets_tours/1", "presets", json::array({{{"id", "set"}, {"number", 7}}})));
    start();
    EXPECT_THAT(ids(), testing::ElementsAre("set"));
}

TEST_F(KeptPresets, OutliveARestart) {
    start();
    ASSERT_EQ(wire::kSuccess, store("gate", 0));
    reboot();
    EXPECT_THAT(ids(), testing::ElementsAre("gate", "start"));
}

TEST_F(KeptPresets, AreThoseOfTheFileAfterARestart) {
    support::writeFile(file_, R"({"presets_tours/1": []})");
    start();
    reboot();
    EXPECT_THAT(ids(), testing::IsEmpty());
}

TEST_F(KeptPresets, AreThoseOfTheCameraWhereTheFileDoesNotMentionThem) {
    support::writeFile(file_, R"({"presets_tours/2": [{"id": "yard", "number": 9}]})");
    start();
    EXPECT_THAT(ids(), testing::ElementsAre("start"));
    EXPECT_THAT(ids("presets_tours/2"), testing::ElementsAre("yard"));
}

TEST_F(KeptPresets, AreReplacedBehindALink) {
    std::filesystem::create_directory(root_.file("store"));
    std::filesystem::create_symlink(root_.file("store/real.json"), file_);
    start();
    ASSERT_EQ(wire::kSuccess, store("gate", 0));
    EXPECT_TRUE(std::filesystem::is_symlink(file_));
    EXPECT_EQ(2U, json::parse(readTextFile(root_.file("store/real.json")))["presets_tours/1"].size());
}

TEST_F(KeptPresets, OverwriteWhatAKilledCameraLeft) {
    support::writeFile(file_ + ".new", "{ half of");
    start();
    EXPECT_EQ(2U, written().size());
    EXPECT_THAT(support::entriesOf(root_.path()), testing::ElementsAre("presets.json"));
}

TEST_F(KeptPresets, FailNoCallWhenTheFileCannotBeWritten) {
    start();
    const test::EventRecorder recorder(camera_->events());
    // A directory is in the way of the new file.
    std::filesystem::create_directory(file_ + ".new");
    EXPECT_EQ(wire::kSuccess, store("gate", 0));
    const std::string error = std::filesystem::canonical(file_).string() + ": cannot be written: Is a directory";
    EXPECT_THAT(warnings_, testing::ElementsAre(error));
    ASSERT_EQ(3U, recorder.seen().size());
    EXPECT_EQ("changed", recorder.seen()[1]["event"]);
    EXPECT_EQ((json{{"event", "presets_not_kept"}, {"target", "presets_tours/1"}, {"error", error}}),
              recorder.seen()[2]);
    EXPECT_EQ(1U, written()["presets_tours/1"].size()) << "the old file is still there";
    EXPECT_THAT(ids(), testing::ElementsAre("gate", "start"));

    std::filesystem::remove(file_ + ".new");
    reboot();
    EXPECT_THAT(ids(), testing::ElementsAre("start")) << "presets that were not kept are lost";
    EXPECT_EQ(wire::kSuccess, store("yard", 2));
    EXPECT_THAT(warnings_, testing::SizeIs(1));
    EXPECT_EQ(2U, written()["presets_tours/1"].size());
}

TEST_F(KeptPresets, AreNotWrittenForOtherChanges) {
    start();
    std::filesystem::remove(file_);
    ASSERT_FALSE(camera_->set("presets_tours/1", "maximumPresets", 2));
    ASSERT_FALSE(camera_->set("positioning/1", "pan.position", 2));
    ASSERT_EQ(wire::kInvalidArgument, store("gate", 256));
    EXPECT_FALSE(std::filesystem::exists(file_));
}

TEST_F(KeptPresets, NeedAPlace) {
    file_ = root_.file("nowhere/presets.json");
    EXPECT_EQ(std::filesystem::canonical(root_.path()).string() +
                  "/nowhere/presets.json: cannot be written: No such file or directory",
              errorOfStart());
    file_ = root_.path();
    EXPECT_EQ(std::filesystem::canonical(root_.path()).string() + ": not a regular file", errorOfStart());
}

TEST_F(KeptPresets, AreRefusedInOneLineAndLeftAloneInAnErroneousFile) {
    const std::vector<std::pair<std::string, std::string>> rows = {

        {"{", "line 1, column 2: syntax error while parsing object key - unexpected end of input; expected string "
              "literal"},
        {"[]", "expected an object with presets_tours/1, presets_tours/2, found []"},
        {R"({"presets_tours/3": []})",
         "presets_tours/3: unknown key; expected one of: presets_tours/1, presets_tours/2"},
        {R"({"presets_tours/1": {}})",
         "presets_tours/1: expected a list of at most 255 objects with id, name, number, pan, tilt, zoom, "
         "found {}"},
        {R"({"presets_tours/1": [{"id": "a", "number": 300}]})",
         "presets_tours/1[0].number: expected an integer from 0 to 255, found 300"},
        {R"({"presets_tours/2": [{"id": "a"}, {"focus": 1}]})",
         "presets_tours/2[1].focus: unknown key; expected one of: id, name, number, pan, tilt, zoom"},
        {R"({"presets_tours/1": [{"id": "a"}, {"id": "a", "number": 1}]})",
         "presets_tours/1[1].id: expected a value other than that of presets[0]"},
        {R"({"presets_tours/2": [{"id": "a"}, {"id": "b", "number": 1}, {"id": "c", "number": 2},
                       {"id": "d", "number": 3}]})",
         "presets_tours/2: expected at most 3 presets (maximumPresets), found 4"},
    };
    for (const auto &[text, error] : rows) {
        support::writeFile(file_, text);
        EXPECT_EQ(std::filesystem::canonical(file_).string() + ": " + error, errorOfStart());
        EXPECT_EQ(text, readTextFile(file_));
    }
}

} // namespace
