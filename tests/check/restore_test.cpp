// SPDX-License-Identifier: Apache-2.0
// What a check has changed is as before, however it ends.
#include <csignal>
#include <future>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "agent.h"
#include "process.h"

namespace {

using support::CommandResult;

constexpr auto kDeadline = std::chrono::seconds(20);

/** Makes an agent take any time-out, and calls a function after each SET. */
void acceptAnyTimeout(wrong::Agent &agent, const std::function<void()> &afterwards) {
    agent.look([&](wrong::Model &model) {
        wrong::Instance &instance = model.named("timeoutPan");
        instance.check = [](const snmp::Varbind & /*value*/) { return 0L; };
        instance.write = [afterwards, write = instance.write](const snmp::Varbind &value) {
            write(value);
            afterwards();
        };
    });
}

std::int64_t timeoutOf(wrong::Agent &agent) {
    return agent.look([](wrong::Model &model) { return model.named("timeoutPan").read().number; });
}

support::Launch checkOf(const wrong::Agent &agent, const std::string &rule) {
    return {{PTZCTL_PROGRAM, "-H", agent.host(), "-c", wrong::kWriteCommunity, "check", "--writes", "--rule", rule},
            {{"HOME", "/nonexistent"}, {"SNMPCONFPATH", "/nonexistent"}, {"PTZCTL_HOST", ""}}};
}

} // namespace

TEST(CheckRestores, ATimeoutThatTheCameraShouldHaveRefused) {
    wrong::Agent agent;
    const std::int64_t before = timeoutOf(agent);
    int writes = 0;
    acceptAnyTimeout(agent, [&] { ++writes; });
    support::Process check(checkOf(agent, "timeout-range"));
    const CommandResult result = check.result();
    EXPECT_EQ(result.status.code, 1) << result.errors;
    EXPECT_THAT(result.output, testing::HasSubstr("timeoutPan: accepts "));
    EXPECT_THAT(result.output, testing::Not(testing::HasSubstr("NOT RESTORED")));
    EXPECT_EQ(timeoutOf(agent), before);
    EXPECT_GE(writes, 2) << "one that changes, and one that restores";
}

TEST(CheckRestores, ATimeoutAfterASignal) {
    for (const int signal : {SIGINT, SIGTERM}) {
        wrong::Agent agent;
        const std::int64_t before = timeoutOf(agent);
        std::promise<void> written;
        std::promise<void> signalled;
        bool isFirst = true;
        acceptAnyTimeout(agent, [&, wait = signalled.get_future().share()] {
            if (std::exchange(isFirst, false)) {
                written.set_value();
                wait.wait_for(kDeadline); // the agent answers after the signal
            }
        });
        support::Process check(checkOf(agent, "timeout-range"));
        ASSERT_EQ(written.get_future().wait_for(kDeadline), std::future_status::ready);
        check.signal(signal);
        signalled.set_value();
        EXPECT_EQ(check.result().status.code, 1);
        EXPECT_EQ(timeoutOf(agent), before);
    }
}

TEST(CheckRestores, AndSaysSoIfTheCameraRefuses) {
    wrong::Agent agent;
    agent.look([](wrong::Model &model) {
        wrong::Instance &instance = model.named("timeoutPan");
        const std::int64_t before = instance.read().number;
        instance.check = [before](const snmp::Varbind &value) { return value.number == before ? 10L : 0L; };
    });
    support::Process check(checkOf(agent, "timeout-range"));
    const CommandResult result = check.result();
    EXPECT_EQ(result.status.code, 1);
    EXPECT_THAT(result.output, testing::HasSubstr("NOT RESTORED  SET timeoutPan = INTEGER "));
    EXPECT_THAT(result.errors, testing::HasSubstr("1 value is not restored"));
}
