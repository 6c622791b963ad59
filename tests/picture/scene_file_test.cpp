// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "scene_file.h"

using namespace panel;

namespace {

/** Returns the error message of a scene with one more member. */
std::string errorOf(const std::string &member) {
    try {
        parseScene(R"({"name": "yard", "camera": {"height": 8})" + (member.empty() ? "" : ", " + member) + "}",
                   "yard.json");
    } catch (const camera::FileError &error) {
        return error.what();
    }
    return "";
}

TEST(SceneFile, NeedsANameAndAHeightOnly) {
    const Scene scene = parseScene(R"({"name": "yard", "camera": {"height": 8}})", "yard.json");
    EXPECT_EQ("yard", scene.name);
    EXPECT_EQ(8.0, scene.camera.height);
    EXPECT_TRUE(scene.beacons.empty());
}

TEST(SceneFile, TheShippedSceneIsValid) {
    const Scene scene = readScene(QUARNSNMP_SCENES "/intersection.json");
    EXPECT_EQ("intersection", scene.name);
    EXPECT_GT(scene.lanes.size(), 10U);
}

TEST(SceneFile, ErrorsNameThePlaceAndTheExpectedValue) {
    const std::pair<const char *, const char *> cases[] = {
        {R"("cars": [])", "yard.json: cars: unknown key; expected one of: name, "},
        {R"("trees": {})", "trees: expected a list of 0 to 2000 elements, found {}"},
        {R"("trees": [{"at": [1, 2], "hight": 3}])", "trees[0].hight: unknown key; expected one of: at, height, kind"},
        {R"("trees": [{"at": [1]}])", "trees[0].at: expected a point [east, north] with numbers from -5000 to 5000"},
        {R"("trees": [{"at": [1, 9e9]}])", "trees[0].at: expected a point"},
        {R"("trees": [{"at": [1, 2], "height": 100}])",
         "trees[0].height: expected a number from 0.3 to 60.0, found 100"},
        {R"("trees": [{"at": [1, 2], "kind": "palm"}])", "trees[0].kind: expected one of: round, conifer, bush"},
        {R"("surfaces": [{"kind": "asphalt", "points": [[0, 0], [1, 0]]}])",
         "surfaces[0].points: expected a list of 3 to 200 elements"},
        {R"("buildings": [{"at": [0, 0], "width": 5, "depth": 5, "color": "red"}])",
         "buildings[0].color: expected a colour such as \"#b04a3c\", found \"red\""},
        {R"("cabinets": [{"at": [0, 0], "bearing": 0, "input": 1.5}])",
         "cabinets[0].input: expected an integer from 1 to 32, found 1.5"},
        {R"("lanes": [{"points": [[0, 0], [9, 0]], "group": "main"}])",
         "lanes[0].group: no step of signalCycle has the group \"main\""},
        {R"("signalPoles": [{"at": [0, 0], "heads": [{"bearing": 0, "group": "main"}]}])",
         "signalPoles[0].heads: no step of signalCycle has the group \"main\""},
        {R"("lines": [{"points": [[0, 0], [9, 0]], "dash": 0.1}])", "lines[0].dash: dash and gap"},
        {R"("signalCycle": [{"green": []}])", "signalCycle[0].green: expected a list of 1 to 200 elements"},
    };
    for (const auto &[member, expected] : cases) {
        EXPECT_THAT(errorOf(member), testing::HasSubstr(expected)) << member;
    }
}

TEST(SceneFile, SceneNamesAreThoseOfShippedFiles) {
    try {
        readScene("harbour");
        FAIL();
    } catch (const camera::FileError &error) {
        EXPECT_THAT(error.what(), testing::StartsWith("no scene 'harbour' in "));
    }
}

} // namespace
