// SPDX-License-Identifier: Apache-2.0
// `probe`: ranges, states, lines and time-outs.
#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "object_oids.h"
#include "parsed_command_line.h"
#include "probe/probe.h"
#include "probe/run_probe.h"
#include "process.h"
#include "scripted_camera.h"

using namespace ptzctl;
using scripted::Camera;
using scripted::kGenErr;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr std::chrono::seconds kTime(10);

class Probe : public testing::Test {
protected:
    Probe() {
        camera_.put("modelName", "QN-4000 Dome");
        camera_.put("temperature", 31);
        camera_.put("alarmStatesTable.3.2", 0);
    }

    /** Probes the camera with the options of a command line. @return the line without the latency */
    std::string line(std::vector<std::string> options = {}) {
        options.insert(options.begin(), {"-H", "camera", "probe"});
        Invocation invocation;
        EXPECT_EQ(complaint(invocation, options), "");
        const std::string text = pluginLine(probe(camera_, invocation.expectations.value(), kTime));
        const std::size_t latency = text.find("'latency'=");
        EXPECT_EQ(text.find('\n'), std::string::npos);
        return latency == std::string::npos ? text : text.substr(0, latency - 1);
    }

    Camera camera_;
};

} // namespace

TEST(ProbeRange, AlertsAreThoseOfTheGuidelines) {
    struct Row {
        const char *text;
        std::vector<double> alerts;
        std::vector<double> fine;
    };
    const std::vector<Row> rows = {
        {"10", {-1, -0.1, 10.1, 11}, {0, 5, 10}},
        {"10:", {-10, 9.9}, {10, 1e9}},
        {"~:10", {10.1, 11}, {-1e9, -1, 0, 10}},
        {"10:20", {9, 21}, {10, 15, 20}},
        {"@10:20", {10, 15, 20}, {9.9, 20.1, -5}},
        {"@10", {0, 10}, {-1, 11}},
        {"@~:10", {-5, 10}, {11}},
        {"-20:60", {-21, 61}, {-20, 0, 60}},
        {"-20:-10", {-21, -9, 0}, {-20, -10}},
        {"0:0", {-1, 1}, {0}},
        {"1.5:2.5", {1.4, 2.6}, {1.5, 2.5}},
        {"~:", {}, {-1e9, 0, 1e9}},
    };
    for (const auto &[text, alerts, fine] : rows) {
        const AlertRange range = parseRange(text);
        for (const double value : alerts) {
            EXPECT_TRUE(range.alertsFor(value)) << text << " " << value;
        }
        for (const double value : fine) {
            EXPECT_FALSE(range.alertsFor(value)) << text << " " << value;
        }
        EXPECT_EQ(range.text, text);
    }
    EXPECT_EQ(parseRange("10:20").alertText(), "outside 10:20");
    EXPECT_EQ(parseRange("@10:20").alertText(), "inside 10:20");
}

TEST(ProbeRange, OtherTextsAreRefused) {
    for (const char *text : {"",    "@",   ":",    ":10", "~",   "10:~", "10:20:30", "20:10", "x",    "1e3",
                             "inf", "nan", "0x10", "+5",  " 10", "10 ",  "1.2.3",    "-",     "@@10", "10,20"}) {
        EXPECT_THROW(parseRange(text), std::invalid_argument) << text;
    }
}

TEST(ProbeState, AKnownProblemIsWorseThanAnUnknownState) {
    EXPECT_EQ(worse(State::Ok, State::Unknown), State::Unknown);
    EXPECT_EQ(worse(State::Unknown, State::Warning), State::Warning);
    EXPECT_EQ(worse(State::Warning, State::Critical), State::Critical);
    EXPECT_EQ(worse(State::Critical, State::Unknown), State::Critical);
    EXPECT_EQ(worse(State::Ok, State::Ok), State::Ok);
}

TEST_F(Probe, ALineHasValuesAndLimits) {
    EXPECT_EQ(line({"-w", "~:60", "--critical", "-30:70", "--power", "0", "--input", "1=off"}),
              "CAMERA OK - QN-4000 Dome, temperature 31 °C, power 0, voltage 0, inputs off"
              "|'temperature'=31;~:60;-30:70;; 'power'=0;;0:0;; 'voltage'=0;;;; 'input_1'=0;;0:0;0; 'input_2'=0;;;0;");
    EXPECT_THAT(pluginLine(probe(camera_, {}, kTime)), HasSubstr(" 'latency'=0.000s;;;0;"));
}

TEST_F(Probe, StatesFollowTheValues) {
    camera_.put("temperature", 65);
    EXPECT_THAT(line({"-w", "60", "-c", "70"}), StartsWith("CAMERA WARNING - temperature 65 °C is outside 60, QN-"));
    EXPECT_THAT(line({"-w", "60", "-c", "64"}), StartsWith("CAMERA CRITICAL - temperature 65 °C is outside 64, QN-"));
    EXPECT_THAT(line({"-w", "@60:70"}), StartsWith("CAMERA WARNING - temperature 65 °C is inside 60:70, "));
    camera_.put("power", 2);
    EXPECT_THAT(line({"-w", "60", "--power", "0"}),
                StartsWith("CAMERA CRITICAL - power 2 instead of 0, temperature 65 °C is outside 60, "));
    EXPECT_THAT(line({"--voltage", "1"}), StartsWith("CAMERA CRITICAL - voltage 0 instead of 1, "));
    camera_.put("alarmStatesTable.3.2", 1);
    EXPECT_THAT(line({"--input", "1=off,2=off"}), StartsWith("CAMERA CRITICAL - input 2 is on, "));
    EXPECT_THAT(line({"--input", "2=on"}), AllOf(StartsWith("CAMERA OK - "), HasSubstr("'input_2'=1;;1:;0;")));
    EXPECT_THAT(line({"--input", "3=on"}), StartsWith("CAMERA UNKNOWN - the camera has no input 3, "));
}

TEST_F(Probe, ANegativeTemperatureIsNegative) {
    camera_.put("temperature", 4294967291);
    EXPECT_THAT(line({"-w", "-4:60"}), AllOf(StartsWith("CAMERA WARNING - temperature -5 °C is outside -4:60, "),
                                             HasSubstr("|'temperature'=-5;-4:60;")));
}

TEST_F(Probe, WhatCannotBeReadIsUnknownOrCritical) {
    camera_.failGet("voltage", kGenErr);
    camera_.remove("power");
    EXPECT_THAT(line(), AllOf(StartsWith("CAMERA UNKNOWN - voltage: genErr: "), Not(HasSubstr("power")),
                              Not(HasSubstr("'voltage'="))));
    EXPECT_THAT(line({"--unreadable", "critical"}), StartsWith("CAMERA CRITICAL - voltage: genErr: "));
    EXPECT_THAT(line({"--power", "0"}), HasSubstr("power: the camera does not have it"));
    camera_.answersReads = false;
    EXPECT_EQ(line(), "CAMERA UNKNOWN - no answer");
    EXPECT_EQ(line({"--unreadable", "critical"}), "CAMERA CRITICAL - no answer");
}

TEST_F(Probe, InputsMayBeBits) {
    for (const char *cell : {"alarmStatesTable.3.1", "alarmStatesTable.3.2"}) {
        camera_.remove(cell);
    }
    camera_.put("inputStatus", "\x05");
    EXPECT_THAT(line({"--input", "1=on,2=off"}),
                AllOf(StartsWith("CAMERA OK - "), HasSubstr(", input 1 and 3 on|"), HasSubstr("'input_4'=0;;;0;")));
}

TEST_F(Probe, AnAgentWithoutACameraIsNoCamera) {
    for (const ptz::Object &object : ptz::objects()) {
        camera_.remove(object.name);
    }
    camera_.remove("alarmStatesTable.3.2");
    EXPECT_EQ(line(), "CAMERA UNKNOWN - the agent answers, but has no objects of a camera");
    camera_.put("rangeMaximumPreset", 255);
    EXPECT_EQ(line(), "CAMERA OK - the agent answers");
}

TEST_F(Probe, ATextOfTheCameraStaysWithinTheText) {
    camera_.put("modelName", "A|'x'=1\nCAMERA OK\t\033[2J\xC2\x9B<b>`$(reboot)`\xE2\x80\xAE" + std::string(200, 'y'));
    const std::string text = line();
    EXPECT_THAT(text, StartsWith("CAMERA OK - A..x.=1.CAMERA OK..[2J...b...(reboot)....yyyyy"));
    EXPECT_THAT(text, HasSubstr("yyy, temperature 31"));
    EXPECT_EQ(std::count(text.begin(), text.end(), '|'), 1);
    EXPECT_LT(text.size(), 400U);
}

TEST_F(Probe, AWrongResponseIsNoValue) {
    camera_.spoil = [](snmp::Operation, snmp::Response &response) {
        if (!response.varbinds.empty() && response.varbinds.front().oid == oids::temperature) {
            response.varbinds.front() = snmp::integer(oids::power, 3);
        }
    };
    EXPECT_THAT(line(), AllOf(StartsWith("CAMERA UNKNOWN - temperature: the camera answered power"),
                              Not(HasSubstr("'power'="))));
}

TEST_F(Probe, RequestsHaveAShareOfTheTime) {
    std::vector<std::chrono::microseconds> timeouts;
    class Recorder : public snmp::Requester {
    public:
        explicit Recorder(std::vector<std::chrono::microseconds> &timeouts) : timeouts_(timeouts) {}
        snmp::Response exchange(snmp::Operation, const std::vector<snmp::Varbind> &,
                                const snmp::Patience &patience) override {
            timeouts_.push_back(patience.longestTimeout * patience.attempts);
            throw snmp::Failure(snmp::Cause::NoAnswer, "no answer");
        }
        snmp::WriteResponse write(const std::vector<snmp::Varbind> &, const std::vector<snmp::Varbind> &) override {
            return {};
        }

    private:
        std::vector<std::chrono::microseconds> &timeouts_;
    } recorder(timeouts);
    probe(recorder, {}, std::chrono::seconds(2));
    ASSERT_EQ(timeouts.size(), 1U) << "a silent camera is asked once";
    EXPECT_LE(timeouts.front(), std::chrono::seconds(2));
    EXPECT_GT(timeouts.front(), std::chrono::seconds(1));
    EXPECT_EQ(textOf(probe(recorder, {}, std::chrono::microseconds(0))), "no time left");
}

TEST(ProbeCommandLine, ItsOptionsAreThoseOfPlugins) {
    Invocation invocation;
    EXPECT_EQ(complaint(invocation, {"probe", "-H", "camera", "-w", "-20:60", "-c", "~:70", "-C", "public", "-t", "7"}),
              "");
    EXPECT_EQ(invocation.expectations->warning->text, "-20:60");
    EXPECT_EQ(invocation.expectations->critical->text, "~:70");
    EXPECT_EQ(invocation.credentials.community, "public");
    EXPECT_EQ(invocation.timeoutSeconds, 7);
    Invocation usual;
    EXPECT_EQ(complaint(usual, {"-c", "public", "probe", "-c", "70"}), "");
    EXPECT_EQ(usual.credentials.community, "public");
    EXPECT_EQ(usual.expectations->critical->text, "70");
    EXPECT_EQ(usual.timeoutSeconds, kProbeSeconds);
    EXPECT_THAT(complaint({"probe", "-w", "60:50"}), HasSubstr("'60:50' ends before it starts"));
    EXPECT_THAT(complaint({"probe", "--input", "0=on"}), HasSubstr("'0=on' is not a number and a state"));
    EXPECT_THAT(complaint({"probe", "--input", "1=on,1=off"}), HasSubstr("two states for input 1"));
    EXPECT_THAT(complaint({"probe", "--unreadable", "ok"}), HasSubstr("'ok' is neither unknown nor critical"));
    EXPECT_THAT(complaint({"probe", "--power", "x"}), HasSubstr("--power"));
}

TEST(ProbeProgram, WrongUsageIsUnknown) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> wrong = {
        {{"probe", "-w", "x"}, "CAMERA UNKNOWN - 'x' is not a range such as 10, 10:, ~:10, 10:20 or @10:20\n"},
        {{"probe", "--frob"}, "CAMERA UNKNOWN - unknown: '--frob'\n"},
        {{"probe"}, "CAMERA UNKNOWN - no camera given; use --host, --hosts-file or PTZCTL_HOST\n"},
        {{"probe", "--hosts-file", "/no|where"},
         "CAMERA UNKNOWN - /no.where cannot be read: No such file or directory\n"},
    };
    for (auto [arguments, line] : wrong) {
        arguments.insert(arguments.begin(), PTZCTL_PROGRAM);
        const support::CommandResult result = support::runCommand(arguments);
        EXPECT_EQ(result.status.code, 3);
        EXPECT_EQ(result.output, line);
        EXPECT_EQ(result.errors, "");
    }
}
