// SPDX-License-Identifier: Apache-2.0
// The command-line client through the whole chain: its output, its requests, and the actions of the simulated camera.
#include <csignal>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "camera_agent.h"
#include "eventually.h"
#include "object_oids.h"
#include "ptzctl_client.h"

namespace {

using namespace harness;
using namespace ptzctl_client;
using nlohmann::json;
using std::chrono::seconds;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char *kFocus = "lens_focus/1";
constexpr const char *kIris = "iris/1";

class Ptzctl : public CameraClient {};

class PtzctlMinimal : public CameraClient {
protected:
    PtzctlMinimal() : CameraClient("minimal") {}
};

} // namespace

TEST_F(Ptzctl, StatusIsTheCamerasOwn) {
    setField(camera_, "alarm/2", "state", 1);
    setField(camera_, "temperature/1", "temperature", -4000);
    const std::string text = done({"status"});
    EXPECT_THAT(text,
                StartsWith("Camera       QN-4000 Dome, serial QN4000004711, firmware 2.4.1-20260312, hardware B3\n"
                           "Pan          stop\n"));
    EXPECT_THAT(text, HasSubstr("Temperature  -4 °C\n"));
    EXPECT_THAT(text, EndsWith("Inputs       1 off, 2 on, 3 off, 4 off\nRelays       1 off, 2 off\n"));
    EXPECT_THAT(text, Not(HasSubstr("\033")));
    const json data = json::parse(done({"status", "--json"}));
    EXPECT_EQ(data.at("host"), agent_.peer());
    EXPECT_EQ(data.at("modelName"), "QN-4000 Dome");
    EXPECT_EQ(data.at("alarmStatesTable.3.2"), 1);
}

TEST_F(Ptzctl, MovesGoWhereTheyShould) {
    EXPECT_THAT(done({"pan", "to", "90", "--speed", "100%"}), HasSubstr("stop    to 90.00° at speed 127  accepted\n"));
    done({"tilt", "to", "-30", "--speed", "127"});
    done({"zoom", "to", "100", "--speed", "127"});
    EXPECT_TRUE(arrives("pan", 90000));
    EXPECT_TRUE(arrives("tilt", -30000));
    EXPECT_TRUE(arrives("zoom", 300));
    EXPECT_EQ(get(oids::positionPan), "0x027f2823");
}

TEST_F(Ptzctl, StepsGoInBothDirections) {
    done({"pan", "by", "-5"});
    EXPECT_TRUE(arrives("pan", 355000));
    done({"pan", "by", "7.5"});
    EXPECT_TRUE(arrives("pan", 2500));
}

TEST_F(Ptzctl, RunsGoOnUntilTheyAreStopped) {
    done({"timeouts", "all", "0"});
    const std::vector<std::tuple<std::string, std::string, bool>> runs = {
        {"pan", "left", false}, {"tilt", "down", false}, {"zoom", "in", true}};
    for (const auto &[name, direction, up] : runs) {
        done({name, direction, "--speed", "10"});
        EXPECT_TRUE(eventually(seconds(10), [&, name = name, up = up] {
            const int velocity = axis(name).at("velocity");
            return up ? velocity > 0 : velocity < 0;
        })) << axis(name);
    }
    const CameraEvents events(camera_);
    EXPECT_THAT(done({"stop"}), HasSubstr("positionZoomLens  stop  accepted\n"));
    EXPECT_TRUE(eventually(seconds(15), [&] {
        return axis("pan").at("velocity") == 0 && axis("tilt").at("velocity") == 0 && axis("zoom").at("velocity") == 0;
    }));
}

TEST_F(Ptzctl, TheLensMovesByHandOnceItIsManual) {
    EXPECT_THAT(done({"focus", "to", "25"}), HasSubstr("The focus is automatic and may not move"));
    EXPECT_THAT(done({"auto", "focus", "off"}), HasSubstr("Automatic now: iris\n"));
    EXPECT_THAT(done({"auto", "iris", "off"}), HasSubstr("Automatic now: nothing\n"));
    EXPECT_EQ(field(kFocus, "manualMode"), true);
    EXPECT_EQ(field("exposure/1", "manualMode"), true);
    EXPECT_THAT(done({"focus", "to", "25"}), Not(HasSubstr("automatic")));
    EXPECT_TRUE(lensArrives(kFocus, 2500));
    done({"focus", "by", "50"});
    EXPECT_TRUE(lensArrives(kFocus, 7500));
    done({"focus", "near"});
    EXPECT_TRUE(lensArrives(kFocus, 0));
    done({"iris", "open"});
    EXPECT_TRUE(lensArrives(kIris, 255));
    done({"iris", "close"});
    EXPECT_TRUE(lensArrives(kIris, 0));
    done({"auto", "focus", "on"});
    EXPECT_EQ(field(kFocus, "manualMode"), false);
}

TEST_F(Ptzctl, PresetsAreStoredAndFound) {
    setField(camera_, kPositioning, "pan.position", 45000);
    EXPECT_THAT(done({"preset", "store", "3"}), HasSubstr("none    preset 3  accepted\n"));
    EXPECT_EQ(field("presets_tours/1", "presets").at(0).at("number"), 3);
    setField(camera_, kPositioning, "pan.position", 0);
    done({"preset", "go", "3"});
    EXPECT_TRUE(arrives("pan", 45000));
}

TEST_F(Ptzctl, RelaysAreSwitchedAndLookedAt) {
    EXPECT_THAT(done({"relay", "2", "on"}), EndsWith("Relays now: 1 off, 2 on\n"));
    EXPECT_EQ(field("relay/2", "state"), 1);
    done({"relay", "2", "off"});
    EXPECT_EQ(field("relay/2", "state"), 0);
    EXPECT_THAT(complains(kUsage, {"relay", "3", "on"}), HasSubstr("the camera has no relay 3\n"));
    control("fail", "relay", "set_state_send", "1", "--always");
    EXPECT_THAT(complains(kRefused, {"relay", "1", "on"}),
                HasSubstr("the camera refused outputControl = 01 80: genErr\n"));
}

TEST_F(Ptzctl, SettingsAreReadAndWritten) {
    setField(camera_, "alarm/4", "state", 1);
    EXPECT_EQ(done({"inputs"}), "Inputs  1 off, 2 off, 3 off, 4 on\n");
    EXPECT_THAT(done({"limits"}), HasSubstr("Tilt     up 20.00°, down -90.00°, steps of 0.01°\n"));
    done({"timeouts", "tilt", "5000"});
    EXPECT_THAT(done({"timeouts"}), HasSubstr("Tilt   5000 ms\n"));
    EXPECT_EQ(get(oids::timeoutTilt), "5000");
    done({"set", "timeoutPan", "1234"});
    EXPECT_EQ(done({"get", "timeoutPan", oids::modelName}), "timeoutPan  1234 ms\nmodelName   QN-4000 Dome\n");
    EXPECT_THAT(complains(kRefused, {"set", "rangeTrueNorthOffset", "5"}),
                HasSubstr("the camera refused rangeTrueNorthOffset = 5: wrongValue\n  "));
    EXPECT_THAT(complains(kRefused, {"timeouts", "focus", "5"}), HasSubstr("genErr"));
}

TEST_F(Ptzctl, ARestartIsAskedForOnlyWithConsent) {
    const CameraEvents events(camera_);
    EXPECT_THAT(complains(kUsage, {"reboot"}), HasSubstr("use --yes"));
    done({"reboot", "--yes"});
    EXPECT_TRUE(events.waitFor({{"event", "reboot"}}));
    EXPECT_EQ(events.matching({{"event", "reboot"}}).size(), 1U);
}

TEST_F(Ptzctl, OctetsCanBeInTheOrderOfPublicTexts) {
    EXPECT_THAT(done({"--byte-order", "high", "pan", "to", "180", "--verbose"}), HasSubstr("[02 40 46 50]"));
    EXPECT_EQ(get(oids::positionPan), "0x02404650");
}

TEST_F(Ptzctl, WhoMayNotWriteMovesNothing) {
    const CameraEvents events(camera_);
    EXPECT_THAT(complains(kRefused, {"pan", "to", "90"}, "public"),
                HasSubstr("the camera refused positionPan = 02 40 28 23: noAccess\n  "));
    done({"pan", "stop"}); // comes behind it
    EXPECT_TRUE(events.matching({{"event", "move_started"}}).empty());
}

TEST_F(Ptzctl, WhoIsNotKnownGetsNoAnswer) {
    EXPECT_THAT(complains(kNoAnswer, {"--timeout", "0.2", "status"}, "wrong"), HasSubstr(": no answer\n  check"));
}

TEST_F(Ptzctl, ACameraThatDoesNotAnswerHidesNoOther) {
    const ReservedPort nobody;
    const std::string dead = "127.0.0.1:" + std::to_string(nobody.number());
    const std::vector<std::string> hosts = {"-c", "public", "-t", "0.3", "-H", dead + "," + agent_.peer()};
    std::vector<std::string> command = hosts;
    command.emplace_back("status");
    const CommandResult text = client_.run(command);
    EXPECT_EQ(text.status.code, kSomeFailed);
    EXPECT_THAT(text.output, StartsWith(dead + "\nno answer\n\n" + agent_.peer() + "\nCamera       QN-4000 Dome"));
    EXPECT_THAT(text.errors, StartsWith("ptzctl: " + dead + ": no answer\n"));
    command.emplace_back("--json");
    const json data = json::parse(client_.run(command).output);
    EXPECT_EQ(data.at(0).at("error").at("code"), kNoAnswer);
    EXPECT_EQ(data.at(1).at("modelName"), "QN-4000 Dome");
}

TEST_F(Ptzctl, TheUsersOwnConfigurationSaysWhoAsks) {
    client_.directory.write("snmp.conf", "defVersion 2c\ndefCommunity public\n");
    const CommandResult read = client_.run({"get", "modelName"}, {{"PTZCTL_HOST", agent_.peer()}});
    EXPECT_EQ(read.output, "modelName  QN-4000 Dome\n") << read.errors;
    // The environment goes before the file, and an option before the environment.
    const ClientEnvironment environment = {{"PTZCTL_HOST", agent_.peer()}, {"PTZCTL_COMMUNITY", "private"}};
    EXPECT_EQ(client_.run({"pan", "stop"}, environment).status.code, 0);
    EXPECT_EQ(client_.run({"pan", "stop", "-c", "public"}, environment).status.code, kRefused);
    client_.directory.write("snmp.conf", "defVersion 1\ndefCommunity public\n");
    EXPECT_THAT(client_.run({"get", "modelName"}, {{"PTZCTL_HOST", agent_.peer()}}).errors, HasSubstr("SNMPv1"));
}

TEST_F(Ptzctl, WatchingEndsWithCtrlC) {
    const std::string output = client_.directory.file("out");
    Process watch({Client::commandLine(withCommunity({"watch", "--interval", "0.05", "--json"}, "public")),
                   client_.completed({}), output});
    EXPECT_TRUE(eventually(seconds(15), [&] { return LogFile(output).lines().size() >= 2; }));
    watch.signal(SIGINT);
    const std::optional<ExitStatus> status = watch.wait(patient(seconds(10)));
    ASSERT_TRUE(status);
    EXPECT_TRUE(status->clean()) << status->describe();
    EXPECT_EQ(json::parse(LogFile(output).lines().front()).at("modelName"), "QN-4000 Dome");
}

TEST_F(PtzctlMinimal, WhatTheCameraDoesNotHaveIsLeftOut) {
    const std::string text = done({"status"});
    EXPECT_THAT(text, StartsWith("Camera   QN-100 Minimal"));
    EXPECT_THAT(text, Not(HasSubstr("Focus")));
    EXPECT_THAT(done({"stop"}), StartsWith("The camera does not have positionZoomLens.\n"));
    EXPECT_THAT(complains(kRefused, {"inputs"}), HasSubstr("no objects for alarm inputs"));
    EXPECT_THAT(complains(kRefused, {"focus", "near"}), HasSubstr("the camera refused positionFocusLens"));
}
