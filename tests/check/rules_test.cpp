// SPDX-License-Identifier: Apache-2.0
// Each rule with an agent that is wrong in just the way that this rule is about.
#include <chrono>
#include <cmath>
#include <memory>
#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "agent.h"
#include "check/move_guard.h"
#include "check/runner.h"
#include "eventually.h"
#include "faults.h"
#include "library.h"

namespace {

using namespace ptzctl::check;
using std::chrono::milliseconds;
using Names = std::set<std::string>;

/** A witness of the agent's camera. */
class ModelSight : public Sight {
public:
    explicit ModelSight(wrong::Agent &agent) : agent_(agent) {}

    std::string blindness(const ptz::Axis & /*axis*/) override {
        return "";
    }
    std::optional<double> position(const ptz::Axis &axis) override {
        return agent_.look([&](wrong::Model &model) { return model.positionOf(placeOf(axis)); });
    }
    void announce(const std::string & /*what*/) override {}
    Seen moves(const ptz::Axis &axis, std::optional<double> /*before*/, int direction) override {
        return seen([&](wrong::Model &model) {
            return model.isMoving(placeOf(axis)) && model.axis(placeOf(axis)).speed * direction > 0;
        });
    }
    Seen rests(const ptz::Axis &axis) override {
        // A move whose time-out has to end it takes two seconds.
        return seen([&](wrong::Model &model) { return !model.isMoving(placeOf(axis)); }, milliseconds(3000));
    }
    Seen reaches(const ptz::Axis &axis, double target) override {
        return seen([&](wrong::Model &model) { return std::abs(model.positionOf(placeOf(axis)) - target) < 1; });
    }
    Seen steps(const ptz::Axis &axis, std::optional<double> before, double offset) override {
        return reaches(axis, *before + offset);
    }

private:
    static std::size_t placeOf(const ptz::Axis &axis) {
        return static_cast<std::size_t>(&axis - ptz::axes().data());
    }

    template <typename Test>
    Seen seen(Test test, milliseconds patience = {}) {
        const bool isSo = support::eventually(patience, [&] { return agent_.look(test); });
        return {isSo ? Seen::Answer::Yes : Seen::Answer::No, isSo ? "so" : "not so"};
    }

    wrong::Agent &agent_;
};

Options everything(Level level) {
    Options options;
    options.writes = level != Level::Reads;
    options.moves = level == Level::Moves || level == Level::Disruptive;
    options.preset = 1;
    options.readCommunity = wrong::kReadCommunity;
    if (level == Level::Disruptive) {
        options.disruptive = {"relay", "lens-auto", "preset-store", "restart"};
    }
    return options;
}

/** Names of the rules with a result. */
Names namesOf(const CheckReport &report, Result result) {
    Names names;
    for (const RuleOutcome &outcome : report.outcomes) {
        if (outcome.finding.result == result) {
            names.insert(outcome.rule->name);
        }
    }
    return names;
}

/** Explains everything that is not as it should be. */
std::string troublesOf(const CheckReport &report) {
    std::string text;
    for (const RuleOutcome &outcome : report.outcomes) {
        if (isTrouble(outcome.finding.result)) {
            text += outcome.rule->name + ": " + outcome.finding.observation + "\n";
        }
    }
    return text;
}

class CheckedAgent : public testing::Test {
protected:
    static void SetUpTestSuite() {
        snmp::Credentials credentials;
        credentials.version = "2c";
        credentials.community = wrong::kWriteCommunity;
        snmp::startLibrary("check-tests", credentials, "");
    }

    /** Runs all rules of a level and of those below it. */
    template <typename Judge>
    static void check(wrong::Agent &agent, Level level, Judge judge, const std::vector<std::string> &skip = {}) {
        Options options = everything(level);
        options.skip = skip;
        Context context({agent.host(), milliseconds(400), ""}, options);
        context.moveNotes().sight = std::make_unique<ModelSight>(agent);
        judge(runRules(context));
    }

    static void expectOneFailure(const std::string &rule, Level level) {
        wrong::Agent agent({}, rule);
        // Moves until the time-outs take ten seconds.
        const bool isTimeout = rule == "motion-timeout";
        check(
            agent, level,
            [&](const CheckReport &report) {
                EXPECT_EQ(namesOf(report, Result::Fail), Names{rule}) << troublesOf(report);
            },
            isTimeout ? std::vector<std::string>{} : std::vector<std::string>{"motion-timeout"});
    }

    static void expectOneFailureEach(Level level) {
        for (const Rule &rule : rules()) {
            // The rule of the time-outs' range writes, too.
            const Level needed = rule.name == "timeout-range" ? Level::Writes : rule.level;
            if (needed == level) {
                SCOPED_TRACE(rule.name);
                expectOneFailure(rule.name, level);
            }
        }
    }
};

} // namespace

class CheckedAgentSlow : public CheckedAgent {};

TEST_F(CheckedAgent, HasAFaultForEachRule) {
    Names names;
    for (const Rule &rule : rules()) {
        EXPECT_TRUE(names.insert(rule.name).second) << rule.name;
    }
    Names faults;
    for (const wrong::Fault &fault : wrong::faults()) {
        EXPECT_TRUE(faults.insert(fault.rule).second) << fault.rule;
    }
    EXPECT_EQ(names, faults);
}

TEST_F(CheckedAgent, FailsNothingWhenHealthy) {
    for (const wrong::Dialect &dialect :
         {wrong::Dialect{ptz::ByteOrder::LowFirst, false, true}, wrong::Dialect{ptz::ByteOrder::HighFirst, true, false},
          wrong::Dialect{ptz::ByteOrder::LowFirst, true, true}}) {
        wrong::Agent agent(dialect);
        check(agent, Level::Disruptive,
              [&](const CheckReport &report) {
                  EXPECT_EQ(troublesOf(report), "");
                  EXPECT_THAT(report.troubles, testing::IsEmpty());
                  const bool isLow = dialect.order == ptz::ByteOrder::LowFirst;
                  EXPECT_EQ(namesOf(report, Result::Differs).count("move-byte-order"), isLow ? 1U : 0U);
              },
              {"motion-timeout"});
    }
}

TEST_F(CheckedAgent, GetsNoCommandAtTheFirstTwoLevels) {
    wrong::Agent agent;
    check(agent, Level::Writes, [](const CheckReport & /*report*/) {});
    for (const wrong::Request &request : agent.requests()) {
        for (const snmp::Varbind &varbind : request.varbinds) {
            const ptz::Instance instance = ptz::instanceAt(varbind.oid);
            const bool isCommand = request.command == wrong::Command::Set && instance.object != nullptr &&
                                   (instance.name.rfind("position", 0) == 0 || instance.name.rfind("preset", 0) == 0 ||
                                    instance.name == "outputControl" || instance.name == "rebootDevice" ||
                                    instance.name == "systemLensFeatureControl");
            EXPECT_FALSE(isCommand) << instance.name;
        }
    }
}

TEST_F(CheckedAgentSlow, GetsATimeoutBeforeEachContinuousMoveAndIsLeftAtRest) {
    wrong::Agent agent;
    check(agent, Level::Disruptive, [](const CheckReport &report) {
        EXPECT_EQ(troublesOf(report), "");
        EXPECT_THAT(namesOf(report, Result::Differs), testing::IsEmpty());
    });
    agent.look([](wrong::Model &model) {
        for (std::size_t place = 0; place < ptz::kAxisCount; ++place) {
            EXPECT_FALSE(model.isMoving(place));
            EXPECT_EQ(model.axis(place).timeout, 5000);
        }
        EXPECT_EQ(model.restarts, 1);
        EXPECT_EQ(model.relays, (std::array<bool, 2>{}));
        EXPECT_EQ(model.automatic, 0U);
    });
    Names limited;
    std::size_t runs = 0;
    for (const wrong::Request &request : agent.requests()) {
        if (request.command != wrong::Command::Set) {
            continue;
        }
        for (const snmp::Varbind &varbind : request.varbinds) {
            for (const ptz::Axis &axis : ptz::axes()) {
                if (varbind.oid == axis.timeoutOid && varbind.type == snmp::Type::Integer && varbind.number > 0) {
                    limited.insert(axis.name);
                }
                if (varbind.oid == axis.positionOid && !varbind.octets.empty() && varbind.octets[0] == 3) {
                    EXPECT_EQ(limited.count(axis.name), 1U) << axis.name;
                    ++runs;
                }
            }
        }
    }
    EXPECT_GT(runs, 0U);
}

TEST_F(CheckedAgent, FailsOnlyTheRuleOfItsFaultWhenRead) {
    expectOneFailureEach(Level::Reads);
}

TEST_F(CheckedAgent, FailsOnlyTheRuleOfItsFaultWhenWritten) {
    expectOneFailureEach(Level::Writes);
}

TEST_F(CheckedAgentSlow, FailsOnlyTheRuleOfItsFaultWhenMoved) {
    expectOneFailureEach(Level::Moves);
}

TEST_F(CheckedAgent, FailsOnlyTheRuleOfItsFaultWhenDisrupted) {
    expectOneFailureEach(Level::Disruptive);
}
