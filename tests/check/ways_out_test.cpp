// SPDX-License-Identifier: Apache-2.0
// Every way out of a check in the middle of a move. The camera ignores its time-outs, so only a stop ends a move.
#include <csignal>
#include <map>

#include <gtest/gtest.h>

#include "agent.h"
#include "eventually.h"
#include "process.h"
#include "temporary_directory.h"

namespace {

using std::chrono::seconds;

bool isMoving(wrong::Agent &agent) {
    return agent.look([](wrong::Model &model) {
        bool any = false;
        for (std::size_t place = 0; place < ptz::kAxisCount; ++place) {
            any = any || model.isMoving(place);
        }
        return any;
    });
}

bool hasItsTimeouts(wrong::Agent &agent) {
    return agent.look([](wrong::Model &model) {
        bool all = true;
        for (std::size_t place = 0; place < ptz::kAxisCount; ++place) {
            all = all && model.axis(place).timeout == 5000;
        }
        return all;
    });
}

/** A check that moves a camera whose responses are lost while it moves. */
class CheckWaysOut : public testing::Test {
protected:
    CheckWaysOut() {
        agent_.look([](wrong::Model &model) { model.obeysTimeouts = false; });
        agent_.loseWhileMoving(true);
    }

    support::Launch launch(const std::string &timeout) const {
        return {{PTZCTL_PROGRAM, "-v", "2c", "-c", wrong::kWriteCommunity, "-H", agent_.host(), "-t", timeout, "check",
                 "--moves", "--rule", "move-continuous"},
                {{"HOME", directory_.path()},
                 {"SNMPCONFPATH", directory_.path()},
                 {"SNMP_PERSISTENT_DIR", directory_.path()}}};
    }

    support::TemporaryDirectory directory_;
    wrong::Agent agent_;
};

} // namespace

TEST_F(CheckWaysOut, LostResponsesLeaveTheCameraAtRest) {
    support::Process check(launch("0.1"));
    EXPECT_TRUE(support::eventually([&] { return isMoving(agent_); }));
    const support::CommandResult result = check.result(seconds(60));
    EXPECT_EQ(result.status.code, 1) << result.output << result.errors;
    EXPECT_FALSE(isMoving(agent_));
    EXPECT_TRUE(hasItsTimeouts(agent_));
}

TEST_F(CheckWaysOut, SignalsLeaveTheCameraAtRest) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        support::Process check(launch("1"));
        EXPECT_TRUE(support::eventually([&] { return isMoving(agent_); }));
        check.signal(signal);
        const support::CommandResult result = check.result(seconds(60));
        EXPECT_EQ(result.status.code, 1) << signal << result.output << result.errors;
        EXPECT_NE(result.output.find("interrupted"), std::string::npos) << result.output;
        EXPECT_FALSE(isMoving(agent_)) << signal;
        EXPECT_TRUE(hasItsTimeouts(agent_)) << signal;
    }
}

TEST_F(CheckWaysOut, AKilledProgramLeavesTheCameraAtRest) {
    support::Process check(launch("1"));
    EXPECT_TRUE(support::eventually([&] { return isMoving(agent_); }));
    check.signal(SIGKILL); // its child stops the camera
    EXPECT_TRUE(support::eventually([&] { return !isMoving(agent_) && hasItsTimeouts(agent_); }));
}
