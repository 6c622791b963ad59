// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "control_command_handler.h"
#include "fake_service_control.h"
#include "invented_camera.h"
#include "wire.h"

using namespace camera;
using nlohmann::json;

namespace {

const json kDone = {{"ok", true}};

class Control : public testing::Test {
protected:
    json execute(const std::string &line) {
        const ControlReply reply = handler_.execute(line);
        EXPECT_EQ('\n', reply.line.back());
        return json::parse(reply.line);
    }

    void addFaults() {
        for (const char *service : {"gadget", "directory"}) {
            faults_.failures().set(service, "*", 1, std::nullopt);
            faults_.delays().set(service, "*", 1, std::nullopt);
        }
    }

    std::unique_ptr<CameraModel> camera_ = test::inventedCamera();
    Faults faults_;
    test::FakeServiceControl services_;
    ServiceSupervisor supervisor_{*camera_, services_, [](const std::string &line) { ADD_FAILURE() << line; }};
    ControlCommandHandler handler_{*camera_, faults_, supervisor_};
};

TEST_F(Control, ShowsTheWholeCamera) {
    services_.down = {"gizmo"};
    faults_.failures().set("gizmo", "*", 4, 2);
    faults_.delays().set("directory", "get_target_ids", 100, std::nullopt);
    EXPECT_EQ(json::parse(R"({"ok": true, "state": {
        "camera": "invented",
        "description": "Camera of tests",
        "time": 1.5,
        "rebooting": false,
        "services": {
            "gadget": {"up": true, "targets": {"gadget/1": {"label": null, "highest": 9, "level": 0}}},
            "gizmo": {"up": false, "targets": {"gizmo/1": {"count": 0}}}
        },
        "failures": [{"service": "gizmo", "operation": "*", "status": 4, "times": 2}],
        "delays": [{"service": "directory", "operation": "get_target_ids", "milliseconds": 100, "times": "always"}]
    }})"),
              execute(R"({"command": "state"})"));
}

TEST_F(Control, SetsFields) {
    EXPECT_EQ(kDone, execute(R"({"command":"set","target":"gadget/1","field":"label","value":"X"})"));
    EXPECT_EQ("X", camera_->state("gadget/1")["label"]);
}

TEST_F(Control, TakesServicesDownAndUp) {
    std::vector<std::string> events;
    const auto subscription = camera_->events().subscribe([&](const json &event) {
        events.push_back(event["event"].get<std::string>() + " " + event["service"].get<std::string>());
    });
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(kDone, execute(R"({"command":"down","service":"gadget"})"));
        EXPECT_EQ(std::set<std::string>{"gadget"}, services_.down);
    }
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(kDone, execute(R"({"command":"up","service":"gadget"})"));
        EXPECT_TRUE(services_.down.empty());
    }
    EXPECT_THAT(events, testing::ElementsAre("service_down gadget", "service_up gadget"));
}

TEST_F(Control, ReportsAServiceThatDoesNotComeUp) {
    services_.down = {"gadget"};
    services_.broken = "no space";
    EXPECT_EQ(json({{"ok", false}, {"error", "cannot bring up gadget: no space"}}),
              execute(R"({"command":"up","service":"gadget"})"));
}

TEST_F(Control, AddsFaults) {
    execute(R"({"command":"fail","service":"gadget","operation":"set_level_send","status":-1})");
    execute(R"({"command":"fail","service":"gadget","operation":"*","status":2,"times":3})");
    execute(R"({"command":"delay","service":"directory","operation":"*","milliseconds":600000,"times":"always"})");
    execute(R"({"command":"delay","service":"gadget","operation":"initiator_init","milliseconds":1})");
    EXPECT_EQ(json::parse(R"([{"service":"gadget","operation":"*","status":2,"times":3},
                              {"service":"gadget","operation":"set_level_send","status":-1,"times":1}])"),
              faults_.failures().list("status"));
    EXPECT_EQ(json::parse(R"([{"service":"directory","operation":"*","milliseconds":600000,"times":"always"},
                              {"service":"gadget","operation":"initiator_init","milliseconds":1,"times":1}])"),
              faults_.delays().list("milliseconds"));
}

TEST_F(Control, ClearsFaults) {
    addFaults();
    EXPECT_EQ(kDone, execute(R"({"command":"clear","service":"directory","operation":"*"})"));
    EXPECT_EQ(1U, faults_.failures().list("").size());
    EXPECT_EQ(1U, faults_.delays().list("").size());
    addFaults();
    EXPECT_EQ(kDone, execute(R"({"command":"clear","service":"gadget"})"));
    EXPECT_EQ("directory", faults_.failures().list("").at(0)["service"]);
    EXPECT_EQ(kDone, execute(R"({"command":"clear"})"));
    EXPECT_EQ(json::array(), faults_.failures().list(""));
    EXPECT_EQ(json::array(), faults_.delays().list(""));
}

TEST_F(Control, ChangesTheModeOfTheConnectionOnRequest) {
    EXPECT_EQ(ControlMode::commands, handler_.execute(R"({"command":"state"})").mode);
    EXPECT_EQ(ControlMode::follow, handler_.execute(R"({"command":"follow"})").mode);
    EXPECT_EQ(ControlMode::dryRun, handler_.execute(R"({"command":"dryRun"})").mode);
    EXPECT_FALSE(handler_.execute(R"({"command":"dryRun"})").skipMissingServices);
    EXPECT_TRUE(handler_.execute(R"({"command":"dryRun","skipMissingServices":true})").skipMissingServices);
}

TEST_F(Control, RefusesInvalidCommandsAndChangesNothing) {
    const std::string commands = "state, set, down, up, fail, delay, clear, follow, dryRun";
    const std::string noCommand =
        "expected an object {\"command\": NAME, ...} on one line, with one of the commands: " + commands;
    const std::string times = "times: expected an integer from 1 to 1000000 or \"always\", found ";
    const std::vector<std::pair<std::string, std::string>> rows = {
        // Form of the line.
        {"", noCommand},
        {"state", noCommand},
        {R"(["state"])", noCommand},
        {R"({"x": 1})", noCommand},
        {std::string(60000, '['), noCommand},
        {R"({"command": 1})", "command: expected a text, found 1"},
        {R"({"command": "stat"})", R"(unknown command "stat"; expected one of: )" + commands},
        {R"({"command": "down"})", R"(command "down" needs the key "service")"},
        {R"({"command": "clear", "tiems": 1})",
         R"(unknown key "tiems"; command "clear" has: command, service, operation)"},
        {R"({"command": "follow", "x": 1})", R"(unknown key "x"; command "follow" has: command)"},
        {R"({"command": "down", "service": 1})", "service: expected a text, found 1"},
        {R"({"command": "dryRun", "skipMissingServices": 1})", "skipMissingServices: expected true or false, found 1"},
        // Targets and services.
        {R"({"command":"set","target":"alarm/1","field":"state","value":1})",
         "alarm/1: unknown target; expected one of: gadget/1, gizmo/1"},
        {R"({"command":"set","target":"gadget/1","field":"lvl","value":1})",
         "gadget/1 lvl: unknown key; expected one of: label, highest, level"},
        {R"({"command":"set","target":"gadget/1","field":"highest","value":-1})",
         "gadget/1 highest: expected an integer from 0 to 99, found -1"},
        {R"({"command":"down","service":"alarm"})", R"(unknown service "alarm"; expected one of: gadget, gizmo)"},
        {R"({"command":"up","service":"directory"})", R"(unknown service "directory"; expected one of: gadget, gizmo)"},
        // Faults.
        {R"({"command":"fail","service":"alarm","operation":"*","status":1})",
         R"(unknown service "alarm"; expected one of: gadget, gizmo, directory)"},
        {R"({"command":"fail","service":"gadget","operation":"set","status":1})",
         R"(unknown operation "set"; expected one of: *, initiator_init, initiator_deinit, set_level_send)"},
        {R"({"command":"delay","service":"directory","operation":"x","milliseconds":1})",
         R"(unknown operation "x"; expected one of: *, get_target_ids)"},
        {R"({"command":"fail","service":"directory","operation":"*","status":0})",
         "status: 0 is success; expected the status of a failure"},
        {R"({"command":"fail","service":"directory","operation":"*","status":"1"})",
         R"(status: expected an integer from -2147483648 to 2147483647, found "1")"},
        {R"({"command":"delay","service":"directory","operation":"*","milliseconds":0})",
         "milliseconds: expected an integer from 1 to 600000, found 0"},
        {R"({"command":"fail","service":"directory","operation":"*","status":1,"times":0})", times + "0"},
        {R"({"command":"delay","service":"directory","operation":"*","milliseconds":1,"times":"ever"})",
         times + "\"ever\""},
        {R"({"command":"clear","operation":"*"})",
         R"(command "clear" needs the key "service" with the key "operation")"},
    };
    const json before = handler_.state();
    for (const auto &[line, error] : rows) {
        SCOPED_TRACE(line.substr(0, 100));
        EXPECT_EQ((json{{"ok", false}, {"error", error}}), execute(line));
        EXPECT_EQ(ControlMode::commands, handler_.execute(line).mode);
        EXPECT_EQ(before, handler_.state());
    }
}

} // namespace
