// SPDX-License-Identifier: Apache-2.0
// Control program.
#include <csignal>

#include <gmock/gmock.h>

#include "camera_process.h"
#include "scripted_server.h"

using namespace camera::test;
using namespace support;
using nlohmann::json;

namespace {

class Camctl : public ControlProgramTest {
protected:
    void expectDone(const std::vector<std::string> &arguments, const std::string &output) {
        const CommandResult ended = control(arguments);
        EXPECT_EQ(0, ended.status.code);
        EXPECT_EQ(output + "\n", ended.output);
        EXPECT_EQ("", ended.errors);
    }

    json state() {
        return json::parse(control({"state"}).output);
    }

    json target(const std::string &service, const std::string &id) {
        return state()["services"][service]["targets"][id];
    }
};

TEST_F(Camctl, PrintsTheStateAsReadableJson) {
    RunningCamera camera(directory_, "minimal");
    const CommandResult ended = control({"state"});
    EXPECT_EQ(0, ended.status.code);
    EXPECT_EQ("", ended.errors);
    EXPECT_THAT(ended.output, testing::StartsWith("{\n  \"camera\": \"minimal\",\n"));
    EXPECT_EQ("QN-100 Minimal",
              json::parse(ended.output)["services"]["device_information"]["targets"]["device_information/1"]["model"]);
}

TEST_F(Camctl, SetsNumbersFlagsTextsAndGroups) {
    RunningCamera camera(directory_);
    const std::vector<std::vector<std::string>> rows = {
        {"alarm", "state", "1"},
        {"temperature", "temperature", "-5000"},
        {"exposure", "manualMode", "true"},
        {"positioning", "tilt", R"({"acceleration":3,"position":-7})"},
        {"presets_tours", "presets", R"([{"id":"a","name":"","number":2,"pan":0,"tilt":0,"zoom":0}])"},
    };
    for (const std::vector<std::string> &row : rows) {
        const std::string id = row[0] + "/1";
        expectDone({"set", id, row[1], row[2]}, id + " " + row[1] + " is " + row[2]);
        json expected = target(row[0], id);
        expected.merge_patch({{row[1], json::parse(row[2])}});
        EXPECT_EQ(expected, target(row[0], id));
    }
}

TEST_F(Camctl, TakesWhatIsNotJsonAsAText) {
    RunningCamera camera(directory_);
    const std::vector<std::pair<std::string, std::string>> texts = {
        {"QN 5", "QN 5"}, {"\"17\"", "17"}, {"", ""}, {"2.4.1-1", "2.4.1-1"}, {"[x", "[x"}};
    for (const auto &[value, stored] : texts) {
        EXPECT_EQ(0, control({"set", "device_information/1", "serial", value}).status.code) << value;
        EXPECT_EQ(stored, target("device_information", "device_information/1")["serial"]);
    }
    expectRefused({"set", "device_information/1", "serial", "17"},
                  "device_information/1 serial: expected a text of at most 255 octets or null, found 17");
}

TEST_F(Camctl, TakesServicesDownAndUp) {
    RunningCamera camera(directory_);
    expectDone({"down", "alarm"}, "alarm is down");
    EXPECT_EQ(false, state()["services"]["alarm"]["up"]);
    expectDone({"up", "alarm"}, "alarm is up");
    EXPECT_EQ(true, state()["services"]["alarm"]["up"]);
}

TEST_F(Camctl, OrdersAndClearsFaults) {
    RunningCamera camera(directory_);
    expectDone({"fail", "relay", "*", "-3"}, "relay * fails with status -3, once");
    expectDone({"fail", "relay", "get_state_send", "4", "--times", "2"},
               "relay get_state_send fails with status 4, 2 times");
    expectDone({"delay", "directory", "get_target_ids", "250", "--always"},
               "directory get_target_ids answers 250 ms late, always");
    EXPECT_EQ(json::parse(R"([{"service":"relay","operation":"*","status":-3,"times":1},
                              {"service":"relay","operation":"get_state_send","status":4,"times":2}])"),
              state()["failures"]);
    EXPECT_EQ(json::parse(R"([{"service":"directory","operation":"get_target_ids","milliseconds":250,
                               "times":"always"}])"),
              state()["delays"]);
    expectDone({"clear", "relay", "*"}, "no failures and delays for relay *");
    EXPECT_EQ(1U, state()["failures"].size());
    expectDone({"clear", "relay"}, "no failures and delays for relay");
    EXPECT_EQ(json::array(), state()["failures"]);
    EXPECT_EQ(1U, state()["delays"].size());
    expectDone({"clear"}, "no failures and delays");
    EXPECT_EQ(json::array(), state()["delays"]);
}

TEST_F(Camctl, PrintsRefusals) {
    RunningCamera camera(directory_, "minimal");
    expectRefused({"down", "alarm"},
                  "unknown service \"alarm\"; expected one of: device_information, device_management");
    expectRefused({"fail", "device_management", "reboot_send", "0"},
                  "status: 0 is success; expected the status of a failure");
    expectRefused({"fail", "device_management", "reboot_send", "1", "--times", "0"},
                  "times: expected an integer from 1 to 1000000 or \"always\", found 0");
    expectRefused({"set", "device_management/1", "reboots", "many"},
                  "device_management/1 reboots: expected an integer from 0 to 4294967295, found \"many\"");
}

TEST_F(Camctl, FollowsUntilTheCameraEnds) {
    RunningCamera camera(directory_);
    Process follow({{controlPath(), "--directory", directory_, "follow"}});
    // Events before the follower is there are not told, so the first may take several attempts.
    int state = 0;
    ASSERT_TRUE(eventually([&] {
        control({"set", "alarm/1", "state", std::to_string(++state)});
        return follow.output().size() > 0;
    }));
    const json event = json::parse(follow.output().awaitLine(0));
    EXPECT_EQ("changed", event["event"]);
    EXPECT_EQ("alarm/1", event["target"]);
    EXPECT_TRUE(camera.stop().clean());
    const CommandResult ended = follow.result();
    EXPECT_EQ(1, ended.status.code);
    EXPECT_EQ("quarnsnmp-camctl: the camera in " + directory_ + " has ended\n", ended.errors);
}

TEST_F(Camctl, SaysThatNoCameraIsThere) {
    expectRefused({"state"}, "no camera answers in " + directory_ + ": No such file or directory");
    {
        RunningCamera camera(directory_);
        camera.kill();
    }
    expectRefused({"follow"}, "no camera answers in " + directory_ + ": Connection refused");
}

TEST_F(Camctl, DoesNotWaitForEverForACamera) {
    RunningCamera camera(directory_);
    camera.signal(SIGSTOP);
    const auto start = std::chrono::steady_clock::now();
    expectRefused({"state"}, "the camera in " + directory_ + " does not answer");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(15));
    camera.signal(SIGCONT);
}

TEST_F(Camctl, SaysWhenAnAnswerCannotBeUnderstood) {
    for (const auto &[text, error] :
         {std::pair<std::string, std::string>{"rubbish\n", "sent an answer that cannot be understood"},
          {"[1]\n", "sent an answer that cannot be understood"},
          {"{\"ok\":", "ended the connection without an answer"}}) {
        directory_ = root_.path();
        const ScriptedServer camera(directory_, "control", [sent = text](Peer &peer, const std::string &) {
            peer.send(sent);
            peer.hangUp();
        });
        expectRefused({"state"}, "the camera in " + directory_ + " " + error);
    }
}

TEST_F(Camctl, RefusesWrongUsage) {
    const std::vector<std::vector<std::string>> wrong = {
        {},
        {"status"},
        {"state", "now"},
        {"set", "alarm/1", "state"},
        {"down"},
        {"fail", "alarm", "*"},
        {"fail", "alarm", "*", "bad"},
        {"fail", "alarm", "*", "1", "--times", "often"},
        {"fail", "alarm", "*", "1", "--times", "2", "--always"},
        {"delay", "alarm", "*", "1.5"},
        {"state", "follow"},
    };
    for (const std::vector<std::string> &arguments : wrong) {
        const CommandResult ended = control(arguments);
        EXPECT_EQ(2, ended.status.code) << testing::PrintToString(arguments);
        EXPECT_EQ("", ended.output);
        EXPECT_THAT(ended.errors, testing::StartsWith("quarnsnmp-camctl: "));
    }
}

} // namespace
