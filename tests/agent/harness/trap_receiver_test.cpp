// SPDX-License-Identifier: Apache-2.0
// The receiver of traps: every varbind that is sent must come out as it went in.
#include <chrono>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "agent.h"
#include "trap_receiver.h"
#include "well_known_objects.h"

namespace harness {
namespace {

using testing::HasSubstr;

constexpr const char *kColdStart = ".1.3.6.1.6.3.1.1.5.1";

TEST(TrapReceiver, SeesTheAgentsColdStart) {
    const TrapReceiver receiver;
    AgentOptions options;
    options.configuration = {receiver.configurationLine()};
    Agent agent(options);
    const auto trap = receiver.waitFor([](const Trap &candidate) { return candidate.notification() == kColdStart; });
    ASSERT_TRUE(trap.has_value());
    EXPECT_THAT(trap->kind, HasSubstr("community public"));
    ASSERT_NE(trap->find(kUpTime), nullptr) << *trap;
    EXPECT_EQ(trap->find(kUpTime)->type, Type::TimeTicks);
    EXPECT_EQ(trap->find(".1.3.6.1.4.1.99999"), nullptr);
    EXPECT_FALSE(receiver.waitForCount(2, std::chrono::milliseconds(0)));
}

TEST(TrapReceiver, ReadsEveryTypeOfValue) {
    const TrapReceiver receiver;
    const std::string base = ".1.3.6.1.4.1.99999.7.";
    const CommandResult sent = runCommand(
        {"snmptrap",
         "-v2c",
         "-c",
         "public",
         receiver.peer(),
         "123",
         base + "0",
         base + "1",
         "i",
         "-5",
         base + "2",
         "s",
         "line one\nline\ttwo = \"three\", which is longer than a line of sixteen octets",
         base + "3",
         "s",
         "",
         base + "4",
         "u",
         "4000000000",
         base + "5",
         "c",
         "7",
         base + "6",
         "C",
         "123456789012345",
         base + "7",
         "a",
         "1.2.3.255",
         base + "8",
         "o",
         ".1.3.6",
         base + "9",
         "n",
         "0",
         base + "10",
         "t",
         "99"},
        {{"MIBS", ""}, {"SNMPCONFPATH", "/nonexistent"}, {"SNMP_PERSISTENT_DIR", TemporaryDirectory().path()}});
    ASSERT_TRUE(sent.status.clean()) << sent.errors;
    ASSERT_TRUE(receiver.waitForCount(1));
    const Trap trap = receiver.traps().front();
    EXPECT_EQ(trap.notification(), base + "0");
    const std::vector<Variable> values(trap.variables.begin() + 2, trap.variables.end());
    EXPECT_THAT(
        values,
        testing::ElementsAre(
            integer(base + "1", -5),
            octets(base + "2", "line one\nline\ttwo = \"three\", which is longer than a line of sixteen octets"),
            octets(base + "3", ""), Variable{base + "4", Type::Gauge32, 4000000000, ""},
            Variable{base + "5", Type::Counter32, 7, ""}, Variable{base + "6", Type::Counter64, 123456789012345, ""},
            Variable{base + "7", Type::IpAddress, 0, "\x01\x02\x03\xff"}, Variable{base + "8", Type::Oid, 0, ".1.3.6"},
            Variable{base + "9", Type::Null, 0, ""}, Variable{base + "10", Type::TimeTicks, 99, ""}));
}

} // namespace
} // namespace harness
