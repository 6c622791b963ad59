// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>

#include <gmock/gmock.h>

#include "fleet_server.h"
#include "selection.h"
#include "timeline.h"

using namespace fleet;
using nlohmann::json;
using testing::HasSubstr;

namespace {

std::vector<FleetCamera> twelveCameras() {
    std::vector<FleetCamera> cameras;
    for (unsigned number = 1; number <= 12; ++number) {
        FleetCamera camera;
        camera.number = number;
        camera.name = std::string("camera-00") + (number < 10 ? "0" : "") + std::to_string(number);
        camera.kind = number % 4 == 0 ? "minimal" : "dome";
        camera.address = "127.1.0." + std::to_string(number);
        cameras.push_back(camera);
    }
    return cameras;
}

std::string numbersOf(const std::vector<FleetCamera> &cameras) {
    std::string text;
    for (const FleetCamera &camera : cameras) {
        text += (text.empty() ? "" : " ") + std::to_string(camera.number);
    }
    return text;
}

TEST(FleetSelection, TakesNumbersRangesAndPatterns) {
    const struct {
        const char *pattern;
        const char *numbers;
    } cases[] = {
        {"*", "1 2 3 4 5 6 7 8 9 10 11 12"},
        {"7", "7"},
        {"2-4", "2 3 4"},
        {"11-99", "11 12"},
        {"0-1", "1"},
        {"3,1,2-3", "1 2 3"},
        {"minimal", "4 8 12"},
        {"camera-0001", "1"},
        {"camera-001?", "10 11 12"},
        {"127.1.0.[12]", "1 2"},
        {"127.1.0.1*", "1 10 11 12"},
        {"minimal,5", "4 5 8 12"},
    };
    for (const auto &each : cases) {
        EXPECT_EQ(each.numbers, numbersOf(selected(twelveCameras(), each.pattern))) << each.pattern;
    }
}

TEST(FleetSelection, RefusesWhatSelectsNothing) {
    for (const char *pattern : {"", ",", "13", "1,13", "5-4", "-", "1-", "-1", "1--2", "dom", "1 ", "[", "\xFF",
                                "99999999999999999999", "1-99999999999999999999"}) {
        EXPECT_THROW(selected(twelveCameras(), pattern), std::invalid_argument) << pattern;
    }
}

json describedCamera() {
    return {{"number", 1},
            {"name", "camera-0001"},
            {"kind", "dome"},
            {"serial", "x"},
            {"address", "127.1.0.1"},
            {"port", 1161},
            {"directory", "/d/0001"},
            {"camera", {{"process", 10}, {"ready", true}, {"restarts", 1}}},
            {"agent", {{"process", 11}, {"ready", true}, {"restarts", 2}}}};
}

TEST(FleetAnswer, HasTheCameras) {
    const std::vector<FleetCamera> cameras = camerasIn({{"ok", true}, {"cameras", {describedCamera()}}});
    ASSERT_EQ(1U, cameras.size());
    EXPECT_EQ("camera-0001", cameras[0].name);
    EXPECT_EQ(1161U, cameras[0].port);
    EXPECT_TRUE(cameras[0].isReady);
    EXPECT_EQ(3U, cameras[0].restarts);
    EXPECT_EQ(11, cameras[0].processes[1]);
}

TEST(FleetAnswer, IsCheckedAsAWhole) {
    EXPECT_THROW(camerasIn({{"ok", true}}), std::runtime_error);
    EXPECT_THROW(camerasIn({{"ok", true}, {"cameras", {1}}}), std::runtime_error);
    EXPECT_THROW(camerasIn({{"ok", false}, {"error", "unknown command"}}), std::runtime_error);
    const json whole = describedCamera();
    for (const auto &member : whole.items()) {
        json camera = whole;
        if (member.key() != "serial") {
            camera.erase(member.key());
            EXPECT_THROW(camerasIn({{"ok", true}, {"cameras", {camera}}}), std::runtime_error) << member.key();
        }
        camera = whole;
        if (member.key() != "serial") {
            camera[member.key()] = json::array({nullptr});
            EXPECT_THROW(camerasIn({{"ok", true}, {"cameras", {camera}}}), std::runtime_error) << member.key();
        }
    }
}

TEST(FleetServer, KnowsOneCommand) {
    const auto describe = [] { return json::array({describedCamera()}); };
    const auto answer = [&describe](const std::string &line) { return json::parse(answerTo(line, describe)); };
    EXPECT_EQ(json::array({describedCamera()}), answer(R"({"command":"status"})").at("cameras"));
    for (const std::string &line :
         {std::string(), std::string("x"), std::string("1"), std::string("[]"), std::string("null"), std::string("{"),
          std::string(R"("status")"), std::string("\xFF\xFE"), std::string(60000, '[')}) {
        EXPECT_EQ("expected a JSON object on a line", answer(line).at("error")) << line.substr(0, 20);
    }
    for (const std::string line : {"{}", R"({"command":"set"})", R"({"command":["status"]})", R"({"command":null})",
                                   R"({"command":"status","more":1})", R"({"Command":"status"})"}) {
        const json refused = answer(line);
        EXPECT_EQ(false, refused.at("ok")) << line;
        EXPECT_THAT(refused.at("error").get<std::string>(), HasSubstr("unknown command")) << line;
    }
}

std::string shown(const std::vector<Moment> &moments) {
    std::string text;
    for (const Moment &moment : moments) {
        text += std::to_string(static_cast<int>(moment.seconds * 10)) + ":" + std::to_string(moment.camera) + "." +
                std::to_string(moment.step) + " ";
    }
    return text;
}

TEST(FleetTimeline, HasAllStepsInOrder) {
    EXPECT_EQ("", shown(timelineOf({}, 3, 1.0, 1.0)));
    EXPECT_EQ("0:0.0 0:1.0 ", shown(timelineOf({0.0}, 2, 0.0, 1.0)));
    EXPECT_EQ("0:0.0 0:0.1 0:1.0 0:1.1 20:0.2 20:1.2 ", shown(timelineOf({0.0, 0.0, 2.0}, 2, 0.0, 1.0)));
    EXPECT_EQ("0:0.0 5:1.0 10:0.1 15:1.1 ", shown(timelineOf({0.0, 2.0}, 2, 0.5, 2.0)));
    EXPECT_EQ("0:0.0 10:0.1 30:1.0 40:1.1 ", shown(timelineOf({0.0, 1.0}, 2, 3.0, 1.0)));
}

} // namespace
