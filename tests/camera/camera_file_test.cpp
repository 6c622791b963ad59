// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "camera_file.h"
#include "shipped_files.h"
#include "test_cameras.h"

using namespace camera;

namespace {

struct BadFile {
    const char *name;
    std::string text;
    std::string error; ///< without the file's name in front
};

std::string file(const std::string &services) {
    return R"({"name": "test", "services": )" + services + "}";
}

std::string alarm(const std::string &targets) {
    return file(R"({"alarm": {"targets": )" + targets + "}}");
}

std::string manyTargets() {
    std::string targets = "[{}";
    for (std::size_t i = 0; i < kMostTargets; ++i) {
        targets += ",{}";
    }
    return targets + "]";
}

const std::string kServiceNames = "alarm, device_information, device_management, exposure, focus_stepper, iris, "
                                  "lens_focus, positioning, power, presets_tours, relay, temperature, zoom_stepper";

void PrintTo(const BadFile &file, std::ostream *out) {
    *out << file.name;
}

class BadFiles : public testing::TestWithParam<BadFile> {};

TEST_P(BadFiles, AreRefusedWithOneClearLine) {
    try {
        parseCamera(GetParam().text, "bad.json");
        FAIL() << "the file was accepted";
    } catch (const FileError &error) {
        EXPECT_EQ("bad.json: " + GetParam().error, error.what());
        EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Texts, BadFiles,
    testing::Values(
        BadFile{"Empty", "",
                "line 1, column 1: syntax error while parsing value - unexpected end of input; expected '[', '{', or a "
                "literal"},
        BadFile{"Syntax", "{\n  \"name\": \"a\"\n  \"services\": {}\n}",
                "line 3, column 12: syntax error while parsing object - unexpected string literal; expected '}'"},
        BadFile{"HugeNumber", R"({"name": 1e999})", "number overflow parsing '1e999'"},
        BadFile{"DuplicateKey", alarm(R"([{}, {"state": 1, "state": 2}])"),
                "services.alarm.targets[1].state: duplicate key"},
        BadFile{"DuplicateService", file(R"({"alarm": {"targets": []}, "alarm": {"targets": []}})"),
                "services.alarm: duplicate key"},
        BadFile{"Deep", std::string(40, '[') + std::string(40, ']'), "nested deeper than 32 levels"},
        BadFile{"NoObject", "[1]", "expected an object with name, description, services, found [1]"},
        BadFile{"NoName", R"({"services": {}})", "name: missing; expected a text of 1 to 255 octets"},
        BadFile{"EmptyName", R"({"name": "", "services": {}})",
                R"(name: expected a text of 1 to 255 octets, found "")"},
        BadFile{"NameOfWrongType", R"({"name": 7, "services": {}})",
                "name: expected a text of 1 to 255 octets, found 7"},
        BadFile{"DescriptionOfWrongType", R"({"name": "a", "description": null, "services": {}})",
                "description: expected a text of at most 255 octets, found null"},
        BadFile{"NoServices", R"({"name": "a"})", "services: missing; expected an object with the camera's services"},
        BadFile{"ServicesOfWrongType", file("[]"), "services: expected an object with " + kServiceNames + ", found []"},
        BadFile{"UnknownKey", R"({"name": "a", "service": {}})",
                "service: unknown key; expected one of: name, description, services"},
        BadFile{"UnknownService", file(R"({"alarms": {"targets": []}})"),
                "services.alarms: unknown key; expected one of: " + kServiceNames},
        BadFile{"ServiceOfWrongType", file(R"({"alarm": 3})"),
                "services.alarm: expected an object with targets, found 3"},
        BadFile{"UnknownKeyOfService", file(R"({"alarm": {"targets": [], "count": 3}})"),
                "services.alarm.count: unknown key; expected one of: targets"},
        BadFile{"NoTargets", file(R"({"alarm": {}})"),
                "services.alarm.targets: missing; expected a list of at most 32 objects"},
        BadFile{"TargetsOfWrongType", alarm(R"({"state": 0})"),
                R"(services.alarm.targets: expected a list of at most 32 objects, found {"state":0})"}),
    [](const testing::TestParamInfo<BadFile> &test) { return test.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Targets, BadFiles,
    testing::Values(
        BadFile{"TooManyTargets", alarm(manyTargets()),
                "services.alarm.targets: expected a list of at most 32 objects, found "
                "[{},{},{},{},{},{},{},{},{},{},{},{},{},{},{},{},{},{},{},{}..."},
        BadFile{"TargetOfWrongType", alarm("[{}, 5]"),
                "services.alarm.targets[1]: expected an object with state, found 5"},
        BadFile{"UnknownField", alarm(R"([{}, {}, {"stat": 0}])"),
                "services.alarm.targets[2].stat: unknown key; expected one of: state"},
        BadFile{"EmptyField", alarm(R"([{"": 0}])"), "services.alarm.targets[0]: unknown key; expected one of: state"},
        BadFile{"FieldOfWrongType", alarm(R"([{}, {}, {"state": "on"}])"),
                R"(services.alarm.targets[2].state: expected an integer from -2147483648 to 2147483647, found "on")"},
        BadFile{"FractionForInteger", alarm(R"([{"state": 1.5}])"),
                "services.alarm.targets[0].state: expected an integer from -2147483648 to 2147483647, found 1.5"},
        BadFile{"OutOfRange", alarm(R"([{"state": 2147483648}])"),
                "services.alarm.targets[0].state: expected an integer from -2147483648 to 2147483647, found "
                "2147483648"},
        BadFile{"FarOutOfRange", alarm(R"([{"state": 18446744073709551615}])"),
                "services.alarm.targets[0].state: expected an integer from -2147483648 to 2147483647, found "
                "18446744073709551615"},
        BadFile{"NumberForFlag", file(R"({"exposure": {"targets": [{"manualMode": 1}]}})"),
                "services.exposure.targets[0].manualMode: expected true or false, found 1"},
        BadFile{"NumberForText", file(R"({"device_information": {"targets": [{"model": 1}]}})"),
                "services.device_information.targets[0].model: expected a text of at most 255 octets or null, found 1"},
        BadFile{"NulInText", file(R"({"device_information": {"targets": [{"model": "a\u0000b"}]}})"),
                "services.device_information.targets[0].model: expected a text of at most 255 octets or null, found "
                R"("a\u0000b")"},
        BadFile{"GroupOfWrongType", file(R"({"relay": {"targets": [{"configuration": 1}]}})"),
                "services.relay.targets[0].configuration: expected an object with c1, c2, c3, c4, c5, c6, c7, found 1"},
        BadFile{"UnknownFieldOfGroup", file(R"({"positioning": {"targets": [{"pan": {"softSpeed": {"max": 1}}}]}})"),
                "services.positioning.targets[0].pan.softSpeed.max: unknown key; expected one of: enabled, minimum, "
                "maximum"},
        BadFile{"DottedKey", file(R"({"positioning": {"targets": [{"pan.position": 0}]}})"),
                "services.positioning.targets[0].pan.position: unknown key; expected one of: position, minimum, "
                "maximum, endless, minimumSpeed, maximumSpeed, acceleration, softPosition, softSpeed"},
        BadFile{"FieldOfListElement",
                file(R"({"presets_tours": {"targets": [{"presets": [{"id": "a"}, {"number": 256}]}]}})"),
                "services.presets_tours.targets[0].presets[1].number: expected an integer from 0 to 255, found 256"}),
    [](const testing::TestParamInfo<BadFile> &test) { return test.param.name; });

INSTANTIATE_TEST_SUITE_P(
    FieldsAgainstEachOther, BadFiles,
    testing::Values(
        BadFile{"IrisPosition", file(R"({"iris": {"targets": [{"position": 3, "maximum": 2}]}})"),
                "services.iris.targets[0].position: expected an integer from 0 to 2 (minimum to maximum), found 3"},
        BadFile{"FocusRange", file(R"({"lens_focus": {"targets": [{"minimum": 3, "maximum": 2}]}})"),
                "services.lens_focus.targets[0].maximum: expected an integer of at least 3 (minimum), found 2"},
        BadFile{"SharpPosition", file(R"({"lens_focus": {"targets": [{"maximum": 2, "sharpPosition": 3}]}})"),
                "services.lens_focus.targets[0].sharpPosition: expected an integer from 0 to 2 (minimum to maximum), "
                "found 3"},
        BadFile{"StepperSharpPosition",
                file(R"({"focus_stepper": {"targets": [{"maximum": 2, "sharpPosition": -1}]}})"),
                "services.focus_stepper.targets[0].sharpPosition: expected an integer from 0 to 2 (minimum to "
                "maximum), found -1"},
        BadFile{"AutomaticPosition", file(R"({"iris": {"targets": [{"position": 5, "minimum": 5, "maximum": 9}]}})"),
                "services.iris.targets[0].automaticPosition: expected an integer from 5 to 9 (minimum to maximum), "
                "found 0"},
        BadFile{"LensSpeed", file(R"({"iris": {"targets": [{"speed": 0}]}})"),
                "services.iris.targets[0].speed: expected an integer from 1 to 2147483647, found 0"},
        BadFile{"StepperSpeedOfTheLastMove", file(R"({"zoom_stepper": {"targets": [{"speed": 0}]}})"),
                "services.zoom_stepper.targets[0].speed: read-only: it follows from commands"},
        BadFile{"StepperSpeed", file(R"({"zoom_stepper": {"targets": [{"minimumSpeed": 5}]}})"),
                "services.zoom_stepper.targets[0].minimumSpeed: expected an integer from 0 to 0 (0 to maximumSpeed), "
                "found 5"},
        BadFile{"AxisPosition", file(R"({"positioning": {"targets": [{"tilt": {"position": 1}}]}})"),
                "services.positioning.targets[0].tilt.position: expected an integer from 0 to 0 (tilt.minimum to "
                "tilt.maximum), found 1"},
        BadFile{"DigitalZoomPosition", file(R"({"positioning": {"targets": [{"zoom": {"position": 40},
                         "digitalZoom": {"enabled": true, "combinedMaximum": 30}}]}})"),
                "services.positioning.targets[0].zoom.position: expected an integer from 0 to 30 (zoom.minimum to "
                "digitalZoom.combinedMaximum), found 40"},
        BadFile{"AxisVelocity", file(R"({"positioning": {"targets": [{"pan": {"velocity": 0}}]}})"),
                "services.positioning.targets[0].pan.velocity: read-only: it follows from commands"},
        BadFile{"SoftLimits", file(R"({"positioning": {"targets": [{"pan": {"maximumSpeed": 9,
                         "softSpeed": {"enabled": true, "minimum": 5, "maximum": 4}}}]}})"),
                "services.positioning.targets[0].pan.softSpeed.maximum: expected an integer from 5 to 9 "
                "(pan.softSpeed.minimum to pan.maximumSpeed), found 4"},
        BadFile{"TooManyPresets", file(R"({"presets_tours": {"targets": [{"maximumPresets": 1,
                         "presets": [{"id": "a", "number": 2}, {"id": "b", "number": 3}]}]}})"),
                "services.presets_tours.targets[0].presets: expected at most 1 presets (maximumPresets), found 2"},
        BadFile{"PresetWithoutId", file(R"({"presets_tours": {"targets": [{"maximumPresets": 9, "presets": [{}]}]}})"),
                "services.presets_tours.targets[0].presets[0].id: expected a text that is not empty"},
        BadFile{"SameNumberTwice", file(R"({"presets_tours": {"targets": [{"maximumPresets": 9,
                         "presets": [{"id": "a"}, {"id": "b"}]}]}})"),
                "services.presets_tours.targets[0].presets[1].number: expected a value other than that of "
                "presets[0]"},
        BadFile{"SameIdTwice", file(R"({"presets_tours": {"targets": [{"maximumPresets": 9,
                         "presets": [{"id": "a"}, {"id": "a", "number": 2}]}]}})"),
                "services.presets_tours.targets[0].presets[1].id: expected a value other than that of presets[0]"}),
    [](const testing::TestParamInfo<BadFile> &test) { return test.param.name; });

std::string errorOf(const std::function<void()> &reading) {
    try {
        reading();
    } catch (const FileError &error) {
        return error.what();
    }
    return "no error";
}

TEST(CameraFiles, ThatAreNotThereAreNamed) {
    EXPECT_EQ("/nowhere/a.json: No such file or directory", errorOf([] { readCameraFile("/nowhere/a.json"); }));
    EXPECT_EQ("/: not a regular file", errorOf([] { readCameraFile("/"); }));
}

TEST(CameraFiles, AreFoundByNameOrPath) {
    const std::string directory = QUARNSNMP_CAMERAS;
    EXPECT_EQ(directory + "/dome.json", findNamedFile("camera", "dome", directory));
    EXPECT_EQ("./dome", findNamedFile("camera", "./dome", directory));
    EXPECT_EQ("dome.json", findNamedFile("camera", "dome.json", directory));
    EXPECT_EQ("no camera 'cube' in " + directory + "; available: dome, minimal, stepper, twinfocus",
              errorOf([&] { findNamedFile("camera", "cube", directory); }));
    EXPECT_EQ("no camera 'dome' in /nowhere; available: none",
              errorOf([] { findNamedFile("camera", "dome", "/nowhere"); }));
}

TEST(ShippedCameras, HaveTheirServices) {
    using testing::ElementsAre;
    EXPECT_THAT(test::shippedCamera("dome")->serviceNames(),
                ElementsAre("alarm", "device_information", "device_management", "exposure", "iris", "lens_focus",
                            "positioning", "power", "presets_tours", "relay", "temperature"));
    EXPECT_THAT(test::shippedCamera("stepper")->serviceNames(),
                ElementsAre("device_information", "device_management", "exposure", "focus_stepper", "temperature",
                            "zoom_stepper"));
    EXPECT_THAT(test::shippedCamera("twinfocus")->serviceNames(),
                ElementsAre("device_information", "device_management", "exposure", "focus_stepper", "iris",
                            "lens_focus", "zoom_stepper"));
    EXPECT_THAT(test::shippedCamera("minimal")->serviceNames(), ElementsAre("device_information", "device_management"));
}

TEST(ShippedCameras, HaveTheirNamesAndDescriptions) {
    for (const NamedFile &file : namedFiles(QUARNSNMP_CAMERAS)) {
        const CameraDescription description = readCameraFile(file.path);
        EXPECT_EQ(file.name, description.name);
        EXPECT_NE("", description.description);
    }
}

TEST(Targets, AreNumberedFromOne) {
    const auto dome = test::shippedCamera("dome");
    EXPECT_THAT(dome->targetIds("alarm"), testing::ElementsAre("alarm/1", "alarm/2", "alarm/3", "alarm/4"));
    EXPECT_THAT(dome->targetIds("zoom_stepper"), testing::IsEmpty());
    EXPECT_THAT(test::makeCamera(alarm("[]"))->targetIds("alarm"), testing::IsEmpty());
}

} // namespace
