// SPDX-License-Identifier: Apache-2.0
// Ten thousand traps that are queued while the agent is busy.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "agent.h"
#include "process_information.h"
#include "settings.h"
#include "trap_receiver.h"

namespace {

using namespace harness;

constexpr int kTraps = 10000;
constexpr const char *kBurst = ".1.3.6.1.4.1.99999.99.1";
constexpr const char *kBurstInstance = ".1.3.6.1.4.1.99999.99.1.0";

/** The module of this test instead of the camera's, and a receiver that loses nothing. */
AgentOptions withBurst(const TrapReceiver &receiver) {
    AgentOptions options = withModule("/nonexistent");
    options.moduleName = "trapburst";
    options.module = burstModulePath();
    options.environment["QUARNSNMP_LOG_LEVEL"] = "3";
    options.configuration = {receiver.configurationLine()};
    return options;
}

std::vector<std::int64_t> values(const TrapReceiver &receiver) {
    std::vector<std::int64_t> result;
    for (const Trap &trap : receiver.traps()) {
        if (trap.notification() == kBurst) {
            result.push_back(trap.varbinds.back().number);
        }
    }
    return result;
}

} // namespace

TEST(TrapBurstSlow, AllTrapsThatWereQueuedArriveInOrderAndTheirMemoryIsFree) {
    const TrapReceiver receiver(TrapReceiver::Transport::Stream);
    Agent agent(withBurst(receiver));
    Manager manager(agent.peer());
    std::vector<std::int64_t> expected;
    std::size_t memory = 0;
    for (int round = 0; round < 4; ++round) {
        ASSERT_TRUE(manager.set(kBurstInstance, Type::Integer, kTraps).ok());
        for (int i = 1; i <= kTraps; ++i) {
            expected.push_back(i);
        }
        // The agent's cold start is the first.
        ASSERT_TRUE(receiver.waitForCount(expected.size() + 1, std::chrono::seconds(60)));
        if (round == 0) {
            memory = residentKilobytes(agent.pid());
        }
    }
    EXPECT_EQ(values(receiver), expected);
    EXPECT_NEAR(static_cast<double>(residentKilobytes(agent.pid())), static_cast<double>(memory), 512.0);
}
