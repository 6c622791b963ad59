// SPDX-License-Identifier: Apache-2.0
// Scenario files: reading, checking for a camera, and playing.
#include <cstdlib>
#include <map>
#include <set>
#include <sstream>

#include <gmock/gmock.h>

#include "control_desk.h"
#include "noted_services.h"
#include "scenario.h"
#include "test_cameras.h"
#include "wire.h"

using namespace camera;
using nlohmann::json;

namespace {

std::string file(const std::string &steps, const std::string &more = "") {
    return R"({"name": "test", )" + more + R"("steps": )" + steps + "}";
}

/** What is wrong with something that reads or checks a file. */
std::string errorOf(const std::function<void()> &reading) {
    try {
        reading();
    } catch (const FileError &error) {
        return error.what();
    }
    return "no error";
}

/** The state of a shipped camera as its control socket tells it. */
json stateOf(const std::string &name) {
    const auto camera = test::shippedCamera(name);
    Faults faults;
    test::NotedServices services;
    ServiceKeeper keeper(*camera, services, [](const std::string & /*line*/) {});
    return ControlDesk(*camera, faults, keeper).state();
}

struct BadScenario {
    const char *name;
    std::string text;
    std::string error; ///< without the file's name in front
};

void PrintTo(const BadScenario &bad, std::ostream *out) {
    *out << bad.name;
}

class BadScenarios : public testing::TestWithParam<BadScenario> {};

/** Of any scenario that is wrong, whatever the camera has. */
TEST_P(BadScenarios, AreRefusedWithOneClearLine) {
    const std::string error = errorOf([] { parseScenario(GetParam().text, "bad.json"); });
    EXPECT_EQ("bad.json: " + GetParam().error, error);
    EXPECT_EQ(error.find('\n'), std::string::npos);
}

const std::string kCommands = "set, down, up, fail, delay, clear";

INSTANTIATE_TEST_SUITE_P(
    Files, BadScenarios,
    testing::Values(
        BadScenario{
            "Syntax", "{]",
            "line 1, column 2: syntax error while parsing object key - unexpected ']'; expected string literal"},
        BadScenario{"NoObject", "3", "expected an object with name, description, skipMissingServices, steps, found 3"},
        BadScenario{"NoName", R"({"steps": []})", "name: missing; expected a text of 1 to 255 octets"},
        BadScenario{"NoSteps", R"({"name": "test"})", "steps: missing; expected a list of steps"},
        BadScenario{"StepsOfWrongType", file("{}"), "steps: expected a list of steps, found {}"},
        BadScenario{"UnknownKey", file("[]", R"("speed": 2, )"),
                    "speed: unknown key; expected one of: name, description, skipMissingServices, steps"},
        BadScenario{"SkipOfWrongType", file("[]", R"("skipMissingServices": 1, )"),
                    "skipMissingServices: expected true or false, found 1"},
        BadScenario{"DescriptionOfWrongType", file("[]", R"("description": 1, )"),
                    "description: expected a text of at most 255 octets, found 1"}),
    [](const testing::TestParamInfo<BadScenario> &test) { return test.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Steps, BadScenarios,
    testing::Values(
        BadScenario{"NoObject", file("[7]"), "steps[0]: expected an object with at, " + kCommands + ", found 7"},
        BadScenario{"UnknownCommand", file(R"([{"at": 0, "down": "alarm"}, {"at": 1, "reboot": 1}])"),
                    "steps[1].reboot: unknown key; expected one of: at, " + kCommands},
        BadScenario{"NoCommand", file(R"([{"at": 0}])"),
                    "steps[0]: expected one command besides \"at\", one of: " + kCommands},
        BadScenario{"TwoCommands", file(R"([{"at": 0, "down": "alarm", "up": "alarm"}])"),
                    "steps[0]: expected one command besides \"at\", one of: " + kCommands},
        BadScenario{"NoTime", file(R"([{"down": "alarm"}])"),
                    "steps[0].at: missing; expected a number of seconds from 0 to 1000000"},
        BadScenario{"TimeOfWrongType", file(R"([{"at": "0", "down": "alarm"}])"),
                    "steps[0].at: expected a number of seconds from 0 to 1000000, found \"0\""},
        BadScenario{"TimeBelowRange", file(R"([{"at": -0.5, "down": "alarm"}])"),
                    "steps[0].at: expected a number of seconds from 0 to 1000000, found -0.5"},
        BadScenario{"TimeAboveRange", file(R"([{"at": 1000000.5, "down": "alarm"}])"),
                    "steps[0].at: expected a number of seconds from 0 to 1000000, found 1000000.5"},
        BadScenario{"TimeGoesBack", file(R"([{"at": 5, "down": "alarm"}, {"at": 4.5, "up": "alarm"}])"),
                    "steps[1].at: expected at least 5.0 (the time of the step before), found 4.5"},
        BadScenario{"TargetsOfWrongType", file(R"([{"at": 0, "set": "alarm/1"}])"),
                    "steps[0].set: expected an object of targets, each with an object of fields, found \"alarm/1\""},
        BadScenario{"NoTargets", file(R"([{"at": 0, "set": {}}])"),
                    "steps[0].set: expected an object of targets, each with an object of fields, found {}"},
        BadScenario{"FieldsOfWrongType", file(R"([{"at": 0, "set": {"alarm/1": 1}}])"),
                    "steps[0].set.alarm/1: expected an object of fields, found 1"},
        BadScenario{"ServiceOfWrongType", file(R"([{"at": 0, "down": ["alarm"]}])"),
                    "steps[0].down: expected the name of a service, found [\"alarm\"]"},
        BadScenario{"KeysOfWrongType", file(R"([{"at": 0, "clear": true}])"),
                    "steps[0].clear: expected an object with the keys of the command, found true"},
        BadScenario{"AnotherCommand", file(R"([{"at": 0, "clear": {"command": "down", "service": "alarm"}}])"),
                    "steps[0].clear.command: unknown key; the command is clear"}),
    [](const testing::TestParamInfo<BadScenario> &test) { return test.param.name; });

class UnfitScenarios : public testing::TestWithParam<BadScenario> {};

/** Of scenarios that the camera cannot play. */
TEST_P(UnfitScenarios, AreRefusedWithOneClearLine) {
    Scenario scenario = parseScenario(GetParam().text, "unfit.json");
    EXPECT_EQ("unfit.json: " + GetParam().error, errorOf([&] { rehearse(scenario, stateOf("minimal")); }));
}

const std::string kServices = "device_information, device_management";

INSTANTIATE_TEST_SUITE_P(
    ForACamera, UnfitScenarios,
    testing::Values(
        BadScenario{"UnknownTarget", file(R"([{"at": 0, "set": {"alarm/1": {"state": 1}}}])"),
                    "steps[0]: alarm/1: unknown target; expected one of: device_information/1, device_management/1"},
        BadScenario{"UnknownField",
                    file(R"([{"at": 0, "clear": {}}, {"at": 0, "set": {"device_management/1": {"boots": 1}}}])"),
                    "steps[1]: device_management/1 boots: unknown key; expected one of: reboots, rebootSeconds"},
        BadScenario{"WrongValue", file(R"([{"at": 0, "set": {"device_management/1": {"reboots": -1}}}])"),
                    "steps[0]: device_management/1 reboots: expected an integer from 0 to 4294967295, found -1"},
        BadScenario{"ServiceNotThere", file(R"([{"at": 0, "down": "alarm"}])"),
                    "steps[0]: unknown service \"alarm\"; expected one of: " + kServices},
        BadScenario{"UnknownServiceWhereMissingOnesAreSkipped",
                    file(R"([{"at": 0, "up": "radar"}])", R"("skipMissingServices": true, )"),
                    "steps[0]: unknown service \"radar\"; expected one of: " + kServices},
        BadScenario{
            "UnknownTargetWhereMissingServicesAreSkipped",
            file(R"([{"at": 0, "set": {"device_management/2": {"reboots": 1}}}])", R"("skipMissingServices": true, )"),
            "steps[0]: device_management/2: unknown target; expected one of: device_information/1, "
            "device_management/1"},
        BadScenario{"MissingKey", file(R"([{"at": 0, "fail": {"service": "directory", "operation": "*"}}])"),
                    "steps[0]: command \"fail\" needs the key \"status\""},
        BadScenario{"WrongTimes",
                    file(R"([{"at": 0, "delay": {"service": "directory", "operation": "*", "milliseconds": 1,
                              "times": 0}}])"),
                    "steps[0]: times: expected an integer from 1 to 1000000 or \"always\", found 0"}),
    [](const testing::TestParamInfo<BadScenario> &test) { return test.param.name; });

TEST(ARehearsal, KnowsWhatEarlierStepsHaveSet) {
    const std::string narrow = R"([{"at": 0, "set": {"positioning/1": {"tilt": {"minimum": -100}}}},)";
    Scenario fits = parseScenario(
        file(narrow + R"({"at": 0, "set": {"positioning/1": {"tilt": {"position": -100}}}}])"), "fits.json");
    Scenario unfit = parseScenario(
        file(narrow + R"({"at": 0, "set": {"positioning/1": {"tilt": {"position": -101}}}}])"), "unfit.json");
    EXPECT_EQ("no error", errorOf([&] { rehearse(fits, stateOf("dome")); }));
    EXPECT_EQ("unfit.json: steps[1]: positioning/1 tilt.position: expected an integer from -100 to 20000 "
              "(tilt.minimum to tilt.maximum), found -101",
              errorOf([&] { rehearse(unfit, stateOf("dome")); }));
}

TEST(ARehearsal, KnowsTheStateOfTheCamera) {
    json state = stateOf("dome");
    json &presets = state["services"]["presets_tours"]["targets"]["presets_tours/1"];
    presets["presets"] = json::array({{{"id", "a"}, {"number", 1}}, {{"id", "b"}, {"number", 2}}});
    Scenario scenario =
        parseScenario(file(R"([{"at": 0, "set": {"presets_tours/1": {"maximumPresets": 1}}}])"), "few.json");
    EXPECT_EQ("few.json: steps[0]: presets_tours/1 presets: expected at most 1 presets (maximumPresets), found 2",
              errorOf([&] { rehearse(scenario, state); }));
}

TEST(ARehearsal, CopesWithEachShippedCamera) {
    for (const NamedFile &camera : namedFiles(QUARNSNMP_CAMERAS)) {
        Scenario scenario = parseScenario(file(R"([{"at": 0, "clear": {}}])"), "clear.json");
        EXPECT_EQ("no error", errorOf([&] { rehearse(scenario, stateOf(camera.name)); })) << camera.name;
    }
}

/** Plays scenarios on a stage that notes what happens on it. */
class Played : public testing::Test {
protected:
    void playText(const std::string &steps, double speed = 1.0, const std::string &more = "") {
        Scenario scenario = parseScenario(file(steps, more), "test.json");
        rehearse(scenario, stateOf("minimal"));
        play(scenario, speed,
             {[this](double seconds) {
                  happened_.push_back({{"wait", seconds}});
              },
              [this](const json &command) {
                  happened_.push_back(command);
                  return command == refused_ ? json{{"ok", false}, {"error", "not now"}} : json{{"ok", true}};
              },
              output_});
    }

    std::vector<json> happened_;
    json refused_;
    std::ostringstream output_;
};

TEST_F(Played, GivesItsCommandsInTimeAndOrder) {
    playText(R"([{"at": 0.5, "set": {"device_management/1": {"reboots": 3, "rebootSeconds": 4},
                                     "device_information/1": {"model": "X"}}},
                 {"at": 0.5, "down": "device_management"},
                 {"at": 30, "up": "device_management"},
                 {"at": 30, "fail": {"service": "directory", "operation": "*", "status": 7, "times": "always"}},
                 {"at": 61.25, "delay": {"service": "device_management", "operation": "*", "milliseconds": 250}},
                 {"at": 3600, "clear": {"service": "directory"}}])",
             2.0);
    const auto set = [](const char *target, const char *field, const json &value) {
        return json{{"command", "set"}, {"target", target}, {"field", field}, {"value", value}};
    };
    EXPECT_THAT(
        happened_,
        testing::ElementsAre(
            json{{"wait", 0.25}}, set("device_information/1", "model", "X"),
            set("device_management/1", "rebootSeconds", 4), set("device_management/1", "reboots", 3),
            json{{"wait", 0.25}}, json{{"command", "down"}, {"service", "device_management"}}, json{{"wait", 15.0}},
            json{{"command", "up"}, {"service", "device_management"}}, json{{"wait", 15.0}},
            json{{"command", "fail"}, {"service", "directory"}, {"operation", "*"}, {"status", 7}, {"times", "always"}},
            json{{"wait", 30.625}},
            json{{"command", "delay"}, {"service", "device_management"}, {"operation", "*"}, {"milliseconds", 250}},
            json{{"wait", 1800.0}}, json{{"command", "clear"}, {"service", "directory"}}));
    EXPECT_EQ("      0.5 s  device_information/1 model is \"X\"\n"
              "      0.5 s  device_management/1 rebootSeconds is 4\n"
              "      0.5 s  device_management/1 reboots is 3\n"
              "      0.5 s  device_management is down\n"
              "     30.0 s  device_management is up\n"
              "     30.0 s  directory * fails with status 7, always\n"
              "     61.2 s  device_management * answers 250 ms late, once\n"
              "   3600.0 s  no failures and delays for directory\n",
              output_.str());
}

TEST_F(Played, SkipsWhatIsForMissingServices) {
    playText(R"([{"at": 1, "down": "alarm"}, {"at": 2, "set": {"relay/1": {"state": 1}}}, {"at": 3, "clear": {}},
                 {"at": 4, "fail": {"service": "power", "operation": "nonsense", "status": 7}}])",
             1.0, R"("skipMissingServices": true, )");
    EXPECT_THAT(happened_, testing::ElementsAre(json{{"wait", 1.0}}, json{{"wait", 2.0}}, json{{"wait", 3.0}},
                                                json{{"command", "clear"}}, json{{"wait", 4.0}}));
    EXPECT_EQ("      1.0 s  skipped: the camera has no alarm\n"
              "      2.0 s  skipped: the camera has no relay\n"
              "      3.0 s  no failures and delays\n"
              "      4.0 s  skipped: the camera has no power\n",
              output_.str());
}

TEST_F(Played, EndsWhenTheCameraRefusesAStep) {
    refused_ = {{"command", "up"}, {"service", "device_management"}};
    EXPECT_EQ("test.json: steps[1]: not now", errorOf([this] {
                  playText(R"([{"at": 0, "down": "device_management"}, {"at": 1, "up": "device_management"},
                               {"at": 2, "clear": {}}])");
              }));
    EXPECT_EQ("      0.0 s  device_management is down\n", output_.str());
    EXPECT_EQ(refused_, happened_.back());
}

TEST(EachShippedScenario, FitsTheDomeAndIsCalledLikeItsFile) {
    const std::vector<NamedFile> files = namedFiles(QUARNSNMP_SCENARIOS);
    EXPECT_LE(2U, files.size());
    for (const NamedFile &file : files) {
        Scenario scenario = readScenarioFile(file.path);
        EXPECT_EQ(file.name, scenario.name);
        EXPECT_NE("", scenario.description);
        EXPECT_EQ("no error", errorOf([&] { rehearse(scenario, stateOf("dome")); }));
    }
}

TEST(DropServices, TakesEachServiceDownAndUpBeforeTheNext) {
    std::vector<std::string> commands;
    for (const ScenarioStep &step : readScenarioFile(QUARNSNMP_SCENARIOS "/drop-services.json").steps) {
        for (const ScenarioCommand &each : step.commands) {
            commands.push_back(each.command["command"].get<std::string>() + " " +
                               each.command["service"].get<std::string>());
        }
    }
    std::vector<std::string> expected;
    for (const std::string &service : knownServices()) {
        expected.push_back("down " + service);
        expected.push_back("up " + service);
    }
    EXPECT_EQ(expected, commands);
}

/** The agent looks once a minute, and tells of temperatures that differ by more than two whole degrees. */
TEST(WarmUp, ChangesWhatTheAgentTellsOf) {
    constexpr double kPoll = 60.0;
    constexpr int kTolerance = 2;
    constexpr int kThousandths = 1000;
    double last = -2 * kPoll;
    std::optional<int> known;
    int traps = 0;
    int quiet = 0;
    std::map<std::string, std::set<json>> power;
    for (const ScenarioStep &step : readScenarioFile(QUARNSNMP_SCENARIOS "/warm-up.json").steps) {
        EXPECT_GT(step.at - last, kPoll) << "the agent would miss the step before the one at " << step.at;
        last = step.at;
        for (const ScenarioCommand &each : step.commands) {
            if (each.command["target"] == "power/1") {
                power[each.command["field"]].insert(each.command["value"]);
                continue;
            }
            ASSERT_EQ("temperature/1", each.command["target"]);
            const int degrees = each.command["value"].get<int>() / kThousandths;
            const bool trap = known && std::abs(degrees - *known) > kTolerance;
            traps += trap ? 1 : 0;
            quiet += known && !trap ? 1 : 0;
            known = trap || !known ? degrees : known;
        }
    }
    EXPECT_LE(2, traps);
    EXPECT_LE(1, quiet) << "one change is too small to tell of";
    EXPECT_EQ(2U, power["powerState"].size());
    EXPECT_EQ(2U, power["voltageState"].size());
}

} // namespace
