// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "camera_file.h"
#include "shipped_files.h"
#include "test_cameras.h"

using namespace camera;

namespace {

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

const std::string kServiceNames = listed(knownServices());

/** Erroneous texts of camera files, and their error messages without the name of the file. */
using ErrorRows = std::vector<std::pair<std::string, std::string>>;

void expectErrors(const ErrorRows &rows) {
    for (const auto &[text, error] : rows) {
        EXPECT_EQ("bad.json: " + error, test::errorOf([&, &text = text] { parseCamera(text, "bad.json"); })) << text;
    }
}

TEST(CameraFiles, ThatAreMalformedAreRefused) {
    expectErrors({
        {"", "line 1, column 1: syntax error while parsing value - unexpected end of input; expected '[', '{', or a "
             "literal"},
        {"{\n  \"name\": \"a\"\n  \"services\": {}\n}",
         "line 3, column 12: syntax error while parsing object - unexpected string literal; expected '}'"},
        {R"({"name": 1e999})", "number overflow parsing '1e999'"},
        {alarm(R"([{}, {"state": 1, "state": 2}])"), "services.alarm.targets[1].state: duplicate key"},
        {file(R"({"alarm": {"targets": []}, "alarm": {"targets": []}})"), "services.alarm: duplicate key"},
        {std::string(40, '[') + std::string(40, ']'), "nested deeper than 32 levels"},
        {"[1]", "expected an object with name, description, services, found [1]"},
        {R"({"services": {}})", "name: missing; expected a text of 1 to 255 octets"},
        {R"({"name": "", "services": {}})", R"(name: expected a text of 1 to 255 octets, found "")"},
        {R"({"name": 7, "services": {}})", "name: expected a text of 1 to 255 octets, found 7"},
        {R"({"name": "a", "description": null, "services": {}})",
         "description: expected a text of at most 255 octets, found null"},
        {R"({"name": "a"})", "services: missing; expected an object with the camera's services"},
        {file("[]"), "services: expected an object with " + kServiceNames + ", found []"},
        {R"({"name": "a", "service": {}})", "service: unknown key; expected one of: name, description, services"},
        {file(R"({"alarms": {"targets": []}})"), "services.alarms: unknown key; expected one of: " + kServiceNames},
        {file(R"({"alarm": 3})"), "services.alarm: expected an object with targets, found 3"},
        {file(R"({"alarm": {"targets": [], "count": 3}})"),
         "services.alarm.count: unknown key; expected one of: targets"},
        {file(R"({"alarm": {}})"), "services.alarm.targets: missing; expected a list of at most 32 objects"},
        {alarm(R"({"state": 0})"),
         R"(services.alarm.targets: expected a list of at most 32 objects, found {"state":0})"},
    });
}

TEST(CameraFiles, WithInvalidTargetsAreRefused) {
    expectErrors({
        {alarm(manyTargets()), "services.alarm.targets: expected a list of at most 32 objects, found "
                               "[{},{},{},{},{},{},{},{},{},{},{},{},{},{},{},{},{},{},{},{}..."},
        {alarm("[{}, 5]"), "services.alarm.targets[1]: expected an object with state, found 5"},
        {alarm(R"([{}, {}, {"stat": 0}])"), "services.alarm.targets[2].stat: unknown key; expected one of: state"},
        {alarm(R"([{"": 0}])"), "services.alarm.targets[0]: unknown key; expected one of: state"},
        {alarm(R"([{}, {}, {"state": "on"}])"),
         R"(services.alarm.targets[2].state: expected an integer from -2147483648 to 2147483647, found "on")"},
        {alarm(R"([{"state": 1.5}])"),
         "services.alarm.targets[0].state: expected an integer from -2147483648 to 2147483647, found 1.5"},
        {alarm(R"([{"state": 2147483648}])"),
         "services.alarm.targets[0].state: expected an integer from -2147483648 to 2147483647, found "
         "2147483648"},
        {alarm(R"([{"state": 18446744073709551615}])"),
         "services.alarm.targets[0].state: expected an integer from -2147483648 to 2147483647, found "
         "18446744073709551615"},
    });
}

TEST(CameraFiles, WithInvalidFieldsAreRefused) {
    const auto expect = [](const std::string &service, const std::string &fields, const std::string &error) {
        expectErrors({{file("{\"" + service + "\": {\"targets\": [" + fields + "]}}"),
                       "services." + service + ".targets[0]." + error}});
    };
    expect("exposure", R"({"manualMode": 1})", "manualMode: expected true or false, found 1");
    expect("device_information", R"({"model": 1})", "model: expected a text of at most 255 octets or null, found 1");
    expect("device_information", R"({"model": "a\u0000b"})",
           R"(model: expected a text of at most 255 octets or null, found "a\u0000b")");
    expect("relay", R"({"configuration": 1})",
           "configuration: expected an object with c1, c2, c3, c4, c5, c6, c7, found 1");
    expect("positioning", R"({"pan": {"softSpeed": {"max": 1}}})",
           "pan.softSpeed.max: unknown key; expected one of: enabled, minimum, maximum");
    expect("positioning", R"({"pan.position": 0})",
           "pan.position: unknown key; expected one of: position, minimum, maximum, endless, minimumSpeed, "
           "maximumSpeed, acceleration, softPosition, softSpeed");
    expect("presets_tours", R"({"presets": [{"id": "a"}, {"number": 256}]})",
           "presets[1].number: expected an integer from 0 to 255, found 256");
    expect("iris", R"({"position": 3, "maximum": 2})",
           "position: expected an integer from 0 to 2 (minimum to maximum), found 3");
    expect("lens_focus", R"({"minimum": 3, "maximum": 2})",
           "maximum: expected an integer of at least 3 (minimum), found 2");
    expect("lens_focus", R"({"maximum": 2, "sharpPosition": 3})",
           "sharpPosition: expected an integer from 0 to 2 (minimum to maximum), found 3");
    expect("focus_stepper", R"({"maximum": 2, "sharpPosition": -1})",
           "sharpPosition: expected an integer from 0 to 2 (minimum to maximum), found -1");
    expect("iris", R"({"position": 5, "minimum": 5, "maximum": 9})",
           "automaticPosition: expected an integer from 5 to 9 (minimum to maximum), found 0");
    expect("iris", R"({"speed": 0})", "speed: expected an integer from 1 to 2147483647, found 0");
    expect("zoom_stepper", R"({"speed": 0})", "speed: read-only: it follows from commands");
    expect("zoom_stepper", R"({"minimumSpeed": 5})",
           "minimumSpeed: expected an integer from 0 to 0 (0 to maximumSpeed), found 5");
    expect("positioning", R"({"tilt": {"position": 1}})",
           "tilt.position: expected an integer from 0 to 0 (tilt.minimum to tilt.maximum), found 1");
    expect("positioning", R"({"zoom": {"position": 40}, "digitalZoom": {"enabled": true, "combinedMaximum": 30}})",
           "zoom.position: expected an integer from 0 to 30 (zoom.minimum to digitalZoom.combinedMaximum), found 40");
    expect("positioning", R"({"pan": {"velocity": 0}})", "pan.velocity: read-only: it follows from commands");
    expect(
        "positioning", R"({"pan": {"maximumSpeed": 9, "softSpeed": {"enabled": true, "minimum": 5, "maximum": 4}}})",
        "pan.softSpeed.maximum: expected an integer from 5 to 9 (pan.softSpeed.minimum to pan.maximumSpeed), found 4");
    expect("presets_tours", R"({"maximumPresets": 1, "presets": [{"id": "a", "number": 2}, {"id": "b", "number": 3}]})",
           "presets: expected at most 1 presets (maximumPresets), found 2");
    expect("presets_tours", R"({"maximumPresets": 9, "presets": [{}]})",
           "presets[0].id: expected a text that is not empty");
    expect("presets_tours", R"({"maximumPresets": 9, "presets": [{"id": "a"}, {"id": "b"}]})",
           "presets[1].number: expected a value other than that of presets[0]");
    expect("presets_tours", R"({"maximumPresets": 9, "presets": [{"id": "a"}, {"id": "a", "number": 2}]})",
           "presets[1].id: expected a value other than that of presets[0]");
}

TEST(CameraFiles, ThatAreMissingAreNamed) {
    EXPECT_EQ("/nowhere/a.json: No such file or directory", test::errorOf([] { readCameraFile("/nowhere/a.json"); }));
    EXPECT_EQ("/: not a regular file", test::errorOf([] { readCameraFile("/"); }));
}

TEST(CameraFiles, AreFoundByNameOrPath) {
    const std::string directory = QUARNSNMP_CAMERAS;
    EXPECT_EQ(directory + "/dome.json", findNamedFile("camera", "dome", directory));
    EXPECT_EQ("./dome", findNamedFile("camera", "./dome", directory));
    EXPECT_EQ("dome.json", findNamedFile("camera", "dome.json", directory));
    EXPECT_EQ("no camera 'cube' in " + directory + "; available: dome, minimal, stepper, twinfocus",
              test::errorOf([&] { findNamedFile("camera", "cube", directory); }));
    EXPECT_EQ("no camera 'dome' in /nowhere; available: none",
              test::errorOf([] { findNamedFile("camera", "dome", "/nowhere"); }));
}

TEST(CameraFiles, WithoutTheKernelsLinkToTheProgramAreFoundByPathOnly) {
    EXPECT_EQ(
        "cannot find the directory of the cameras, because /nowhere/exe is unreadable: No such file or directory; "
        "mount /proc, or give the path of a file",
        test::errorOf([] { findShippedFile("camera", "dome", "/nowhere/exe"); }));
    EXPECT_EQ("./dome.json", findShippedFile("camera", "./dome.json", "/nowhere/exe"));
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
