// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "control_desk.h"
#include "noted_services.h"
#include "test_cameras.h"
#include "wire.h"

using namespace camera;
using camera::test::NotedServices;
using nlohmann::json;

namespace {

class Control : public testing::Test {
protected:
    json execute(const std::string &line) {
        const ControlReply reply = desk_.execute(line);
        EXPECT_EQ('\n', reply.line.back());
        return json::parse(reply.line);
    }

    std::unique_ptr<CameraModel> camera_ = test::shippedCamera("minimal");
    Faults faults_;
    NotedServices services_;
    ServiceKeeper keeper_{*camera_, services_, [](const std::string &line) { ADD_FAILURE() << line; }};
    ControlDesk desk_{*camera_, faults_, keeper_};
};

TEST_F(Control, ShowsTheWholeCamera) {
    services_.down = {"device_management"};
    faults_.failures().set("device_management", "*", 4, 2);
    faults_.delays().set("directory", "get_target_ids", 100, std::nullopt);
    json reply = execute(R"({"command": "state"})");
    EXPECT_TRUE(reply["ok"]);
    json &state = reply["state"];
    EXPECT_TRUE(state["time"].is_number());
    state.erase("time");
    EXPECT_EQ(json::parse(R"({
        "camera": "minimal",
        "rebooting": false,
        "description": "A camera that only says who it is",
        "services": {
            "device_information": {"up": true, "targets": {"device_information/1": {
                "model": "QN-100 Minimal", "firmware": "1.0.3-20251104", "hardware": "A", "serial": "QN1000000217",
                "text5": null, "text6": null, "text7": null, "text8": null, "flag": 0}}},
            "device_management": {"up": false, "targets": {"device_management/1": {"reboots": 0, "rebootSeconds": 5}}}
        },
        "failures": [{"service": "device_management", "operation": "*", "status": 4, "times": 2}],
        "delays": [{"service": "directory", "operation": "get_target_ids", "milliseconds": 100, "times": "always"}]
    })"),
              state);
}

TEST_F(Control, SetsFields) {
    EXPECT_EQ(json({{"ok", true}}),
              execute(R"({"command":"set","target":"device_information/1","field":"model","value":"X"})"));
    EXPECT_EQ("X", camera_->state("device_information/1")["model"]);
}

TEST_F(Control, TakesServicesDownAndUp) {
    std::vector<std::string> events;
    const auto subscription = camera_->events().subscribe([&](const json &event) {
        events.push_back(event["event"].get<std::string>() + " " + event["service"].get<std::string>());
    });
    EXPECT_EQ(json({{"ok", true}}), execute(R"({"command":"down","service":"device_information"})"));
    EXPECT_EQ(std::set<std::string>{"device_information"}, services_.down);
    EXPECT_EQ(json({{"ok", true}}), execute(R"({"command":"down","service":"device_information"})"));
    EXPECT_EQ(json({{"ok", true}}), execute(R"({"command":"up","service":"device_information"})"));
    EXPECT_TRUE(services_.down.empty());
    EXPECT_EQ(json({{"ok", true}}), execute(R"({"command":"up","service":"device_information"})"));
    EXPECT_THAT(events, testing::ElementsAre("service_down device_information", "service_up device_information"));
}

TEST_F(Control, SaysWhenAServiceDoesNotComeUp) {
    services_.down = {"device_information"};
    services_.broken = "no space";
    EXPECT_EQ(json({{"ok", false}, {"error", "cannot bring up device_information: no space"}}),
              execute(R"({"command":"up","service":"device_information"})"));
}

TEST_F(Control, OrdersFaults) {
    execute(R"({"command":"fail","service":"device_management","operation":"reboot_send","status":-1})");
    execute(R"({"command":"fail","service":"device_management","operation":"*","status":2,"times":3})");
    execute(R"({"command":"delay","service":"directory","operation":"*","milliseconds":600000,"times":"always"})");
    execute(R"({"command":"delay","service":"device_management","operation":"initiator_init","milliseconds":1})");
    EXPECT_EQ(json::parse(R"([{"service":"device_management","operation":"*","status":2,"times":3},
                              {"service":"device_management","operation":"reboot_send","status":-1,"times":1}])"),
              faults_.failures().list("status"));
    EXPECT_EQ(json::parse(R"([{"service":"device_management","operation":"initiator_init","milliseconds":1,"times":1},
                        {"service":"directory","operation":"*","milliseconds":600000,"times":"always"}])"),
              faults_.delays().list("milliseconds"));
}

TEST_F(Control, ClearsFaults) {
    const auto order = [this] {
        for (const char *service : {"device_management", "directory"}) {
            faults_.failures().set(service, "*", 1, std::nullopt);
            faults_.delays().set(service, "*", 1, std::nullopt);
        }
    };
    order();
    EXPECT_EQ(json({{"ok", true}}), execute(R"({"command":"clear","service":"directory","operation":"*"})"));
    EXPECT_EQ(1U, faults_.failures().list("").size());
    EXPECT_EQ(1U, faults_.delays().list("").size());
    order();
    EXPECT_EQ(json({{"ok", true}}), execute(R"({"command":"clear","service":"device_management"})"));
    EXPECT_EQ("directory", faults_.failures().list("").at(0)["service"]);
    EXPECT_EQ(json({{"ok", true}}), execute(R"({"command":"clear"})"));
    EXPECT_EQ(json::array(), faults_.failures().list(""));
    EXPECT_EQ(json::array(), faults_.delays().list(""));
}

TEST_F(Control, LetsClientsFollow) {
    EXPECT_TRUE(desk_.execute(R"({"command":"follow"})").follow);
    EXPECT_FALSE(desk_.execute(R"({"command":"follow","x":1})").follow);
    EXPECT_FALSE(desk_.execute(R"({"command":"state"})").follow);
}

struct Refused {
    const char *name;
    std::string line;
    std::string error;
};

void PrintTo(const Refused &refused, std::ostream *out) {
    *out << refused.name;
}

class RefusedCommands : public testing::TestWithParam<Refused> {};

TEST_P(RefusedCommands, SayWhatIsWrongAndChangeNothing) {
    const auto camera = test::shippedCamera("minimal");
    Faults faults;
    NotedServices services;
    ServiceKeeper keeper(*camera, services, [](const std::string &line) { ADD_FAILURE() << line; });
    ControlDesk desk(*camera, faults, keeper);
    json before = desk.state();
    const ControlReply reply = desk.execute(GetParam().line);
    EXPECT_EQ(json({{"ok", false}, {"error", GetParam().error}}), json::parse(reply.line));
    EXPECT_FALSE(reply.follow);
    json after = desk.state();
    before.erase("time");
    after.erase("time");
    EXPECT_EQ(before, after);
}

const std::string kCommands = "state, set, down, up, fail, delay, clear, follow";
const std::string kNoCommand =
    "expected an object {\"command\": NAME, ...} on one line, with one of the commands: " + kCommands;

INSTANTIATE_TEST_SUITE_P(
    Shapes, RefusedCommands,
    testing::Values(
        Refused{"Empty", "", kNoCommand}, Refused{"Rubbish", "state", kNoCommand},
        Refused{"Array", R"(["state"])", kNoCommand}, Refused{"NoCommand", R"({"x": 1})", kNoCommand},
        Refused{"Deep", std::string(60000, '['), kNoCommand},
        Refused{"CommandOfWrongType", R"({"command": 1})", "command: expected a text, found 1"},
        Refused{"UnknownCommand", R"({"command": "stat"})", R"(unknown command "stat"; expected one of: )" + kCommands},
        Refused{"KeyMissing", R"({"command": "down"})", R"(command "down" needs the key "service")"},
        Refused{"UnknownKey", R"({"command": "clear", "tiems": 1})",
                R"(unknown key "tiems"; command "clear" has: command, service, operation)"},
        Refused{"TextOfWrongType", R"({"command": "down", "service": 1})", "service: expected a text, found 1"}),
    [](const testing::TestParamInfo<Refused> &test) { return test.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Values, RefusedCommands,
    testing::Values(
        Refused{"UnknownTarget", R"({"command":"set","target":"alarm/1","field":"state","value":1})",
                "alarm/1: unknown target; expected one of: device_information/1, device_management/1"},
        Refused{"UnknownField", R"({"command":"set","target":"device_management/1","field":"boots","value":1})",
                "device_management/1 boots: unknown key; expected one of: reboots, rebootSeconds"},
        Refused{"WrongValue", R"({"command":"set","target":"device_management/1","field":"reboots","value":-1})",
                "device_management/1 reboots: expected an integer from 0 to 4294967295, found -1"},
        Refused{"ServiceNotThere", R"({"command":"down","service":"alarm"})",
                R"(unknown service "alarm"; expected one of: device_information, device_management)"},
        Refused{"DirectoryIsNoService", R"({"command":"up","service":"directory"})",
                R"(unknown service "directory"; expected one of: device_information, device_management)"},
        Refused{"FaultOfServiceNotThere", R"({"command":"fail","service":"alarm","operation":"*","status":1})",
                R"(unknown service "alarm"; expected one of: device_information, device_management, directory)"},
        Refused{"UnknownOperation",
                R"({"command":"fail","service":"device_management","operation":"reboot","status":1})",
                R"(unknown operation "reboot"; expected one of: *, initiator_init, initiator_deinit, reboot_send)"},
        Refused{"UnknownDirectoryOperation",
                R"({"command":"delay","service":"directory","operation":"x","milliseconds":1})",
                R"(unknown operation "x"; expected one of: *, get_target_ids)"},
        Refused{"SuccessIsNoFailure", R"({"command":"fail","service":"directory","operation":"*","status":0})",
                "status: 0 is success; expected the status of a failure"},
        Refused{"StatusOfWrongType", R"({"command":"fail","service":"directory","operation":"*","status":"1"})",
                R"(status: expected an integer from -2147483648 to 2147483647, found "1")"},
        Refused{"NoDelay", R"({"command":"delay","service":"directory","operation":"*","milliseconds":0})",
                "milliseconds: expected an integer from 1 to 600000, found 0"},
        Refused{"TimesZero", R"({"command":"fail","service":"directory","operation":"*","status":1,"times":0})",
                "times: expected an integer from 1 to 1000000 or \"always\", found 0"},
        Refused{"TimesText",
                R"({"command":"delay","service":"directory","operation":"*","milliseconds":1,"times":"ever"})",
                "times: expected an integer from 1 to 1000000 or \"always\", found \"ever\""},
        Refused{"OperationOfNoService", R"({"command":"clear","operation":"*"})",
                R"(command "clear" needs the key "service" with the key "operation")"}),
    [](const testing::TestParamInfo<Refused> &test) { return test.param.name; });

} // namespace
