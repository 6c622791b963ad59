// SPDX-License-Identifier: Apache-2.0
// Scenario files: parsing, dry run and execution.
#include <cstdlib>
#include <map>
#include <set>
#include <sstream>

#include <gmock/gmock.h>

#include "dry_run.h"
#include "invented_camera.h"
#include "scenario.h"
#include "scenario_runner.h"
#include "shipped_files.h"
#include "test_cameras.h"
#include "text_file.h"
#include "wire.h"

using namespace camera;
using nlohmann::json;

namespace {

/** Input of an erroneous file, and its error message without the name of the file. */
using ErrorRows = std::vector<std::pair<std::string, std::string>>;

const std::string kSkip = R"("skipMissingServices": true, )";

std::string file(const std::string &steps, const std::string &more = "") {
    return R"({"name": "test", )" + more + R"("steps": )" + steps + "}";
}

/** Dry run of a scenario on a camera in this process. */
void dryRunOn(CameraModel &camera, Scenario &scenario) {
    std::unique_ptr<DryRun> run;
    dryRun(scenario, [&](const json &command) {
        if (run == nullptr) {
            EXPECT_EQ("dryRun", command["command"]);
            run = std::make_unique<DryRun>(camera, command["skipMissingServices"]);
            return json{{"ok", true}};
        }
        return wire::decode(run->execute(wire::encode(command)));
    });
}

TEST(ScenarioFiles, WithErrorsAreRefusedInOneLine) {
    const std::string commands = "set, down, up, fail, delay, clear";
    const std::string command = "expected one command besides \"at\", one of: " + commands;
    const std::string time = "expected a number of seconds from 0 to 1000000";
    const std::string targets = "expected an object of targets, each with an object of fields";
    const ErrorRows rows = {
        {"{]", "line 1, column 2: syntax error while parsing object key - unexpected ']'; expected string literal"},
        {"3", "expected an object with name, description, skipMissingServices, steps, found 3"},
        {R"({"steps": []})", "name: missing; expected a text of 1 to 255 octets"},
        {R"({"name": "test"})", "steps: missing; expected a list of steps"},
        {file("{}"), "steps: expected a list of steps, found {}"},
        {file("[]", R"("speed": 2, )"),
         "speed: unknown key; expected one of: name, description, skipMissingServices, steps"},
        {file("[]", R"("skipMissingServices": 1, )"), "skipMissingServices: expected true or false, found 1"},
        {file("[]", R"("description": 1, )"), "description: expected a text of at most 255 octets, found 1"},
        {file("[7]"), "steps[0]: expected an object with at, " + commands + ", found 7"},
        {file(R"([{"at": 0, "down": "alarm"}, {"at": 1, "reboot": 1}])"),
         "steps[1].reboot: unknown key; expected one of: at, " + commands},
        {file(R"([{"at": 0}])"), "steps[0]: " + command},
        {file(R"([{"at": 0, "down": "alarm", "up": "alarm"}])"), "steps[0]: " + command},
        {file(R"([{"down": "alarm"}])"), "steps[0].at: missing; " + time},
        {file(R"([{"at": "0", "down": "alarm"}])"), "steps[0].at: " + time + ", found \"0\""},
        {file(R"([{"at": -0.5, "down": "alarm"}])"), "steps[0].at: " + time + ", found -0.5"},
        {file(R"([{"at": 1000000.5, "down": "alarm"}])"), "steps[0].at: " + time + ", found 1000000.5"},
        {file(R"([{"at": 5, "down": "alarm"}, {"at": 4.5, "up": "alarm"}])"),
         "steps[1].at: expected at least 5.0 (the time of the step before), found 4.5"},
        {file(R"([{"at": 0, "set": "alarm/1"}])"), "steps[0].set: " + targets + ", found \"alarm/1\""},
        {file(R"([{"at": 0, "set": {}}])"), "steps[0].set: " + targets + ", found {}"},
        {file(R"([{"at": 0, "set": {"alarm/1": 1}}])"), "steps[0].set.alarm/1: expected an object of fields, found 1"},
        {file(R"([{"at": 0, "down": ["alarm"]}])"), "steps[0].down: expected the name of a service, found [\"alarm\"]"},
        {file(R"([{"at": 0, "clear": true}])"),
         "steps[0].clear: expected an object with the keys of the command, found true"},
        {file(R"([{"at": 0, "clear": {"command": "down", "service": "alarm"}}])"),
         "steps[0].clear.command: unknown key; the command is clear"},
    };
    for (const auto &[text, error] : rows) {
        EXPECT_EQ("bad.json: " + error, test::errorOf([&, &text = text] { parseScenario(text, "bad.json"); })) << text;
    }
}

TEST(DryRuns, RefuseTheFirstInvalidCommandOfAScenario) {
    const std::string services = "gadget, gizmo";
    const std::string targets = "unknown target; expected one of: gadget/1, gizmo/1";
    const std::string narrow = R"([{"at": 0, "set": {"gadget/1": {"highest": 5}}},)";
    const ErrorRows rows = {
        {file(R"([{"at": 0, "set": {"alarm/1": {"state": 1}}}])"), "steps[0]: alarm/1: " + targets},
        {file(R"([{"at": 0, "clear": {}}, {"at": 0, "set": {"gadget/1": {"lvl": 1}}}])"),
         "steps[1]: gadget/1 lvl: unknown key; expected one of: label, highest, level"},
        {file(R"([{"at": 0, "set": {"gadget/1": {"highest": -1}}}])"),
         "steps[0]: gadget/1 highest: expected an integer from 0 to 99, found -1"},
        {file(R"([{"at": 0, "down": "alarm"}])"), "steps[0]: unknown service \"alarm\"; expected one of: " + services},
        {file(R"([{"at": 0, "up": "radar"}])", kSkip),
         "steps[0]: unknown service \"radar\"; expected one of: " + services},
        {file(R"([{"at": 0, "set": {"gadget/2": {"level": 1}}}])", kSkip), "steps[0]: gadget/2: " + targets},
        {file(R"([{"at": 0, "fail": {"service": "directory", "operation": "*"}}])"),
         "steps[0]: command \"fail\" needs the key \"status\""},
        {file(R"([{"at": 0, "delay": {"service": "directory", "operation": "*", "milliseconds": 1, "times": 0}}])"),
         "steps[0]: times: expected an integer from 1 to 1000000 or \"always\", found 0"},
        // Effects of earlier steps, and of the camera's present state.
        {file(narrow + R"({"at": 0, "set": {"gadget/1": {"level": 6}}}])"),
         "steps[1]: gadget/1 level: expected an integer from 0 to 5 (0 to highest), found 6"},
        {file(R"([{"at": 0, "set": {"gadget/1": {"highest": 2}}}])"),
         "steps[0]: gadget/1 level: expected an integer from 0 to 2 (0 to highest), found 3"},
    };
    const auto camera = test::inventedCamera();
    ASSERT_FALSE(camera->set("gadget/1", "level", 3));
    const json before = camera->state("gadget/1");
    for (const auto &[text, error] : rows) {
        Scenario scenario = parseScenario(text, "unfit.json");
        EXPECT_EQ("unfit.json: " + error, test::errorOf([&] { dryRunOn(*camera, scenario); })) << text;
    }
    Scenario fits = parseScenario(file(narrow + R"({"at": 0, "set": {"gadget/1": {"level": 5}}}])"), "fits.json");
    EXPECT_EQ("no error", test::errorOf([&] { dryRunOn(*camera, fits); }));
    EXPECT_EQ(before, camera->state("gadget/1")) << "a dry run changes the camera";
}

TEST(DryRuns, HaveNoModesOfTheirOwn) {
    const auto camera = test::inventedCamera();
    DryRun run(*camera, false);
    for (const char *command : {"follow", "dryRun"}) {
        EXPECT_EQ((json{{"ok", false}, {"error", "a dry run has no such command"}}),
                  json::parse(run.execute(json{{"command", command}}.dump())));
    }
}

TEST(DryRuns, CopyTheStateOfEachShippedCamera) {
    for (const NamedFile &file : namedFiles(QUARNSNMP_CAMERAS)) {
        const auto camera = test::shippedCamera(file.name, [] { return 0.0; });
        const auto copy = camera->copy();
        EXPECT_EQ(camera->name(), copy->name());
        EXPECT_EQ(camera->serviceNames(), copy->serviceNames());
        for (const std::string &service : camera->serviceNames()) {
            for (const std::string &target : camera->targetIds(service)) {
                EXPECT_EQ(camera->state(target), copy->state(target)) << file.name << " " << target;
            }
        }
    }
}

TEST(DryRuns, CopyMovesInTheirCourse) {
    double now = 0.0;
    const auto camera = test::shippedCamera("dome", [&] { return now; });
    ASSERT_EQ(wire::kSuccess,
              camera->call("positioning", {"set_velocity_send", "positioning/1", 1, 5000, 0, 0, 0, 0, 1}).status);
    now = 2.0;
    const auto copy = camera->copy();
    const json state = copy->state("positioning/1");
    EXPECT_EQ(camera->state("positioning/1"), state);
    EXPECT_EQ(5000, state["pan"]["velocity"]);
    now = 3.0;
    EXPECT_EQ(state, copy->state("positioning/1")) << "the time of a copy stands still";
}

/** Plays scenarios for the invented camera and records the calls of the runner. */
class Played : public testing::Test {
protected:
    void playText(const std::string &steps, double speed = 1.0, const std::string &more = "") {
        Scenario scenario = parseScenario(file(steps, more), "test.json");
        dryRunOn(*test::inventedCamera(), scenario);
        const ScenarioRunner runner = {
            [this](double seconds) {
                happened_.push_back({{"wait", seconds}});
            },
            [this](const json &command) {
                happened_.push_back(command);
                return command == refused_ ? json{{"ok", false}, {"error", "not now"}} : json{{"ok", true}};
            },
            output_};
        runner.play(scenario, speed);
    }

    std::vector<json> happened_;
    json refused_;
    std::ostringstream output_;
};

TEST_F(Played, SendsItsCommandsInTimeAndOrder) {
    playText(R"([{"at": 0.5, "set": {"gizmo/1": {"count": 3}, "gadget/1": {"level": 4, "label": "X"}}},
                 {"at": 0.5, "down": "gizmo"},
                 {"at": 30, "up": "gizmo"},
                 {"at": 30, "fail": {"service": "directory", "operation": "*", "status": 7, "times": "always"}},
                 {"at": 61.25, "delay": {"service": "gizmo", "operation": "*", "milliseconds": 250}},
                 {"at": 3600, "clear": {"service": "directory"}}])",
             2.0);
    EXPECT_EQ(json::parse(R"([
        {"wait": 0.25},
        {"command": "set", "target": "gadget/1", "field": "label", "value": "X"},
        {"command": "set", "target": "gadget/1", "field": "level", "value": 4},
        {"command": "set", "target": "gizmo/1", "field": "count", "value": 3},
        {"wait": 0.25}, {"command": "down", "service": "gizmo"},
        {"wait": 15.0}, {"command": "up", "service": "gizmo"},
        {"wait": 15.0}, {"command": "fail", "service": "directory", "operation": "*", "status": 7, "times": "always"},
        {"wait": 30.625}, {"command": "delay", "service": "gizmo", "operation": "*", "milliseconds": 250},
        {"wait": 1800.0}, {"command": "clear", "service": "directory"}])"),
              json(happened_));
    EXPECT_EQ("      0.5 s  gadget/1 label is \"X\"\n"
              "      0.5 s  gadget/1 level is 4\n"
              "      0.5 s  gizmo/1 count is 3\n"
              "      0.5 s  gizmo is down\n"
              "     30.0 s  gizmo is up\n"
              "     30.0 s  directory * fails with status 7, always\n"
              "     61.2 s  gizmo * answers 250 ms late, once\n"
              "   3600.0 s  no failures and delays for directory\n",
              output_.str());
}

TEST_F(Played, SkipsCommandsForMissingServices) {
    playText(R"([{"at": 1, "down": "alarm"}, {"at": 2, "set": {"relay/1": {"state": 1}}}, {"at": 3, "clear": {}},
                 {"at": 4, "fail": {"service": "power", "operation": "nonsense", "status": 7}}])",
             1.0, kSkip);
    EXPECT_EQ(json::parse(R"([{"wait": 1.0}, {"wait": 2.0}, {"wait": 3.0}, {"command": "clear"}, {"wait": 4.0}])"),
              json(happened_));
    EXPECT_EQ("      1.0 s  skipped: the camera has no alarm\n"
              "      2.0 s  skipped: the camera has no relay\n"
              "      3.0 s  no failures and delays\n"
              "      4.0 s  skipped: the camera has no power\n",
              output_.str());
}

TEST_F(Played, EndsWhenTheCameraRefusesAStep) {
    refused_ = {{"command", "up"}, {"service", "gizmo"}};
    EXPECT_EQ("test.json: steps[1]: not now", test::errorOf([this] {
                  playText(R"([{"at": 0, "down": "gizmo"}, {"at": 1, "up": "gizmo"}, {"at": 2, "clear": {}}])");
              }));
    EXPECT_EQ("      0.0 s  gizmo is down\n", output_.str());
    EXPECT_EQ(refused_, happened_.back());
}

TEST(EachShippedScenario, FitsTheDomeAndHasTheNameOfItsFile) {
    const std::vector<NamedFile> files = namedFiles(QUARNSNMP_SCENARIOS);
    EXPECT_FALSE(files.empty());
    const auto dome = test::shippedCamera("dome");
    for (const NamedFile &file : files) {
        Scenario scenario = readScenarioFile(file.path);
        EXPECT_EQ(file.name, scenario.name);
        EXPECT_NE("", scenario.description);
        EXPECT_EQ("no error", test::errorOf([&] { dryRunOn(*dome, scenario); }));
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

/** The agent polls once a minute, and sends traps for temperature changes of more than two whole degrees. */
TEST(WarmUp, CausesTrapsAndOneChangeWithout) {
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
    EXPECT_LE(1, quiet) << "a change too small for a trap";
    EXPECT_EQ(2U, power["powerState"].size());
    EXPECT_EQ(2U, power["voltageState"].size());
}

} // namespace
