// SPDX-License-Identifier: Apache-2.0
// `ptzctl check` with the cameras that come with the project: recorded reports, and no command that reaches a camera.
#include <fstream>
#include <regex>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "camera_agent.h"
#include "object_oids.h"
#include "ptzctl_client.h"
#include "settings.h"

namespace {

using namespace harness;
using namespace ptzctl_client;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class PtzctlCheck : public CameraClient, public testing::WithParamInterface<const char *> {
protected:
    PtzctlCheck() : CameraClient(GetParam()) {}
};

INSTANTIATE_TEST_SUITE_P(Cameras, PtzctlCheck, testing::Values("dome", "minimal", "stepper", "twinfocus"),
                         [](const auto &row) { return std::string(row.param); });

class PtzctlCheckSlow : public PtzctlCheck {};

INSTANTIATE_TEST_SUITE_P(Cameras, PtzctlCheckSlow, testing::Values("dome", "minimal", "stepper", "twinfocus"),
                         [](const auto &row) { return std::string(row.param); });

class PtzctlCheckOfDome : public CameraClient {};

/** Replaces what differs from run to run: address, times and numbers of requests. */
std::string recordable(const std::string &report) {
    std::string text = report;
    for (const auto &[pattern, replacement] : {std::pair{R"(127\.0\.0\.1:\d+)", "HOST"},
                                               {R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ)", "TIME"},
                                               {R"(\d+ requests)", "N requests"},
                                               {R"(requests in [0-9.]+ s)", "requests in S s"},
                                               {R"(median .*)", "median and longest"}}) {
        text = std::regex_replace(text, std::regex(pattern), replacement);
    }
    return text;
}

std::string contentOf(const std::string &path) {
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/** Compares a report with the recorded one, or with QUARNSNMP_UPDATE_GOLDEN=1 records it. */
void expectRecorded(const std::string &name, const std::string &report) {
    const std::string path = goldenDirectory() + "/check/" + name + ".txt";
    const std::string text = recordable(report);
    if (environmentOr("QUARNSNMP_UPDATE_GOLDEN", "") == "1") {
        std::ofstream(path) << text;
    }
    EXPECT_EQ(text, contentOf(path)) << path;
}

} // namespace

TEST_P(PtzctlCheck, ReportsAsRecordedAndCommandsNothing) {
    const CameraEvents events(camera_);
    const std::vector<Varbind> before = walk();
    expectRecorded(GetParam(), done({"check", "--writes", "--read-community", "public"}));
    EXPECT_THAT(finishedOperations(events), IsEmpty());
    EXPECT_EQ(walk(), before);
}

// Moves, stores, switches and restarts, and looks at the simulated camera whether it does.
TEST_P(PtzctlCheckSlow, FailsNothingAtAnyLevel) {
    const CommandResult result =
        client_.run(withCommunity({"check", "--writes", "--read-community", "public", "--moves", "--preset", "1",
                                   "--disruptive", "relay", "--disruptive", "lens-auto", "--disruptive", "preset-store",
                                   "--disruptive", "restart", "--yes", "--camera", camera_.directory()},
                                  "private"),
                    {}, std::chrono::minutes(4));
    EXPECT_TRUE(result.status.clean()) << result.output << result.errors;
    EXPECT_THAT(result.output, HasSubstr("\npass          move-"));
    EXPECT_THAT(result.output, Not(HasSubstr("\nfail ")));
    EXPECT_THAT(result.output, Not(HasSubstr("\nerror ")));
}

TEST_F(PtzctlCheckOfDome, KeepsTimeoutsThatAreSet) {
    setInteger(oids::timeoutPan, 5000);
    const std::vector<Varbind> before = walk();
    const std::string text = done({"check", "--writes"});
    EXPECT_THAT(text, HasSubstr("timeoutPan: accepts -60536 as 5000, its low 16 bits"));
    EXPECT_EQ(walk(), before);
    // The camera has one time-out for all axes, and hears of no other.
    EXPECT_EQ(field(kPositioning, "velocityCommandTimeout"), 5000);
}

TEST_F(PtzctlCheckOfDome, WithoutWritesSendsNoSet) {
    const std::string text = done({"check", "--verbose"});
    EXPECT_THAT(text, Not(HasSubstr("snmpset")));
    EXPECT_THAT(text, HasSubstr("repeat   snmpget -On -m '' -v 2c -c private " + agent_.peer() + " .1.3.6.1"));
}

TEST_F(PtzctlCheckOfDome, JudgesOnlyTheRulesNamed) {
    const std::string text = done({"check", "--rule", "pan-limits,set-atomic", "--skip", "pan-limits"});
    EXPECT_THAT(text, HasSubstr("skipped       pan-limits  excluded with --skip\n"));
    EXPECT_THAT(text, HasSubstr("skipped       set-atomic  needs --writes\n"));
    EXPECT_THAT(text, HasSubstr("\n0 fail, 2 skipped; "));
}

TEST_F(PtzctlCheckOfDome, AStateThatCannotBeReadFails) {
    control("fail", "relay", "get_state_send", "1", "--always");
    const std::string text = ends(kRefused, {"check"}).output;
    EXPECT_THAT(text, HasSubstr("fail          output-presence"));
    EXPECT_THAT(text, HasSubstr("outputStatus: a GET answers genErr"));
}

TEST_F(PtzctlCheckOfDome, WithoutAnyResponseEndsWithThree) {
    agent_.stop();
    EXPECT_THAT(complains(kNoAnswer, {"check", "--timeout", "0.1"}), HasSubstr("no answer"));
    agent_.start();
}

TEST_F(PtzctlCheckOfDome, DifferentOutcomesEndWithFour) {
    const CommandResult result =
        ends(kSomeFailed, {"--host", "127.0.0.1:9", "check", "--timeout", "0.1", "--rule", "pan-limits"});
    EXPECT_THAT(result.output, HasSubstr(agent_.peer()));
    EXPECT_THAT(result.output, HasSubstr("pass          pan-limits"));
    EXPECT_THAT(result.errors, StartsWith("ptzctl: 127.0.0.1:9: no answer"));
}
