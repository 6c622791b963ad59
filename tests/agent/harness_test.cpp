// SPDX-License-Identifier: Apache-2.0
// A broken agent, or a wrong answer, must fail the test that meets it. These agents have no module.
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "agent.h"
#include "golden_walk.h"
#include "object_oids.h"
#include "process_information.h"
#include "settings.h"
#include "trap_receiver.h"

namespace harness {
namespace {

using testing::Contains;
using testing::HasSubstr;

constexpr const char *kSysLocation = ".1.3.6.1.2.1.1.6.0";
const std::string kStarred = std::string(oids::sysUpTime) + " timeTicks *";

TEST(Agent, FailsTheTestWhenItEndsByItself) {
    EXPECT_NONFATAL_FAILURE(
        {
            Agent agent;
            kill(agent.pid(), SIGKILL);
            EXPECT_TRUE(eventually([&] { return !agent.running(); }));
        },
        "ended by itself");
}

TEST(Agent, FailsTheTestWhenASanitizerHasFoundSomething) {
    EXPECT_NONFATAL_FAILURE(
        {
            const Agent agent;
            std::ofstream(agent.directory() + "/sanitizer.1234") << "ERROR: heap-use-after-free";
        },
        "heap-use-after-free");
}

TEST(Agent, ReportsWhyItDoesNotStart) {
    AgentOptions options;
    options.arguments = {"-Z"};
    try {
        const Agent agent(options);
        FAIL() << "the agent started with an unknown option";
    } catch (const std::runtime_error &error) {
        EXPECT_THAT(error.what(), testing::AllOf(HasSubstr("exit code 1"), HasSubstr("invalid option")));
    }
}

TEST(Agent, HasReadItsConfigurationAgainWhenHupReturns) {
    Agent agent;
    std::ofstream(agent.configurationPath(), std::ios::app) << "sysLocation the second floor\n";
    Manager manager(agent.peer());
    for (std::size_t round = 1; round <= 3; ++round) {
        agent.hup();
        EXPECT_EQ(agent.log().count(" restarted"), round);
        EXPECT_EQ(manager.get(kSysLocation).single().octets, "the second floor");
    }
    agent.kill();
    EXPECT_THROW(agent.hup(), std::runtime_error);
}

TEST(Guardian, EndsADaemonWhenTheTestHasCrashed) {
    const TemporaryDirectory directory;
    const LogFile number(directory.file("pid"));
    const pid_t crashing = fork();
    if (crashing == 0) {
        setenv("TMPDIR", directory.path().c_str(), 1); // nothing removes the files of a crashed test
        const Process process(
            {{guardianPath(), "sh", "-c", "setsid sh -c 'echo $$ > " + number.path() + "; exec sleep 1000' &"}});
        number.awaitLine(0);
        kill(getpid(), SIGKILL);
    }
    waitpid(crashing, nullptr, 0);
    const pid_t pid = std::stoi(number.awaitLine(0));
    EXPECT_TRUE(eventually([pid] { return !runs(pid); }));
}

TEST(Guardian, EndsAsTheDaemonEnds) {
    EXPECT_EQ(runCommand({guardianPath(), "sh", "-c", "(sleep 0.05; exit 7) & exit 0"}).status.code, 7);
    EXPECT_EQ(runCommand({guardianPath(), "sh", "-c", "kill -KILL $$"}).status.signal, SIGKILL);
    EXPECT_EQ(runCommand({guardianPath(), "/nonexistent/program"}).status.code, 127);
}

TEST(Manager, TellsErrorsFromMissingObjectsAndFromSilence) {
    Agent agent;
    Manager reader(agent.peer(), "public");
    Manager writer(agent.peer(), "private");
    EXPECT_EQ(reader.get(oids::modelName).single().type, Type::NoSuchObject);
    EXPECT_EQ(reader.get(std::string(oids::sysDescr) + ".7").single().type, Type::NoSuchInstance);
    EXPECT_EQ(reader.getNext(oids::kVendorSubtree).single().type, Type::EndOfMibView);
    const Result refused =
        writer.set({octetString(oids::sysContact, "somebody"), octetString(oids::sysDescr, "not writable")});
    EXPECT_EQ(refused.error, ErrorStatus::NotWritable) << refused;
    EXPECT_EQ(refused.errorIndex, 2);
    EXPECT_EQ(reader.set({octetString(oids::sysContact, "somebody")}).error, ErrorStatus::NoAccess);
    EXPECT_NE(reader.get(oids::sysContact).single().octets, "somebody");
    Manager stranger(agent.peer(), "unknown");
    stranger.setTimeout(std::chrono::milliseconds(200));
    EXPECT_FALSE(stranger.get(oids::sysUpTime).answered);
    EXPECT_THROW(reader.get("1.3.x"), std::invalid_argument);
}

TEST(Manager, SendsEveryTypeWithItsOwnTag) {
    // An agent does not answer an encoding that it cannot read; it refuses one that it can.
    Agent agent;
    Manager manager(agent.peer());
    for (const Type type : {Type::Integer, Type::Counter32, Type::Gauge32, Type::TimeTicks, Type::Counter64}) {
        EXPECT_EQ(manager.set(oids::sysContact, type, 4000000000).error, ErrorStatus::WrongType) << recordedType(type);
    }
    for (const Varbind &value :
         {Varbind{oids::sysContact, Type::Oid, 0, ".1.3.6"}, Varbind{oids::sysContact, Type::Null, 0, ""},
          Varbind{oids::sysContact, Type::IpAddress, 0, "abcd"}}) {
        EXPECT_EQ(manager.set({value}).error, ErrorStatus::WrongType) << value;
    }
}

// The SNMP library unpacks such a number, so that its type is none of the protocol's.
TEST(Manager, ReadsANumberWithinAnOpaque) {
    AgentOptions options;
    options.configuration = {"view readable included .1.3.6.1.4.1.2021.10"};
    const Agent agent(options);
    constexpr const char *kLoadFloat = ".1.3.6.1.4.1.2021.10.1.6.1";
    const Varbind load = Manager(agent.peer(), "public").get(kLoadFloat).single();
    EXPECT_EQ(load.type, Type::Opaque);
    EXPECT_EQ(load.octets.size(), 7U);
    EXPECT_EQ(load.octets.substr(0, 3), "\x9F\x78\x04");
}

TEST(GoldenWalk, SeesEveryDifference) {
    const TemporaryDirectory directory;
    Agent agent;
    Manager manager(agent.peer(), "public");
    directory.write("recorded", kStarred + "\n");
    matchesWalkFile(manager, oids::kSystemSubtree, directory.file("recorded"), true);
    const std::vector<std::string> recorded = LogFile(directory.file("recorded")).lines();
    ASSERT_GT(recorded.size(), 20U);
    ASSERT_THAT(recorded, Contains(kStarred)) << "a star stays in a walk that is recorded again";
    const auto compare = [&](std::vector<std::string> lines) {
        std::string content;
        for (std::string &line : lines) {
            // The times of the table of capabilities change with each start of an agent.
            content +=
                line.find(" timeTicks ") != std::string::npos ? line.substr(0, line.rfind(' ')) + " *\n" : line + "\n";
        }
        return matchesWalkFile(manager, oids::kSystemSubtree, directory.write("walk", content), false);
    };
    EXPECT_TRUE(compare(recorded));

    std::vector<std::string> lines = recorded;
    lines[0] = oids::sysDescr + std::string(" octets \"another\"");
    const testing::AssertionResult otherValue = compare(lines);
    EXPECT_FALSE(otherValue);
    EXPECT_THAT(otherValue.message(), HasSubstr("- " + lines[0] + "\n+ " + recorded[0]));
    lines[0] = oids::sysDescr + std::string(" integer *");
    EXPECT_FALSE(compare(lines)) << "another type";
    lines = recorded;
    lines.erase(lines.begin() + 5);
    EXPECT_FALSE(compare(lines)) << "an object that the record does not have";
    lines = recorded;
    lines.insert(lines.begin() + 5, recorded[4].substr(0, recorded[4].find(' ')) + ".99 integer 1");
    EXPECT_FALSE(compare(lines)) << "an object that the agent does not have";
    lines = recorded;
    std::swap(lines[2], lines[3]);
    EXPECT_FALSE(compare(lines)) << "another order";
    EXPECT_FALSE(matchesWalkFile(manager, oids::kVendorSubtree, directory.write("empty", ""), false));
}

TEST(TrapReceiver, ReadsEveryTypeOfValue) {
    const TrapReceiver receiver;
    const std::string text = "line one\nline\ttwo = \"three\", which is longer than a line of sixteen octets";
    const std::string base = std::string(oids::kVendorSubtree) + ".7.";
    const struct {
        const char *letter;
        std::string value;
        Varbind received;
    } values[] = {
        {"i", "-5", {"", Type::Integer, -5, ""}},
        {"s", text, {"", Type::Octets, 0, text}},
        {"s", "", {"", Type::Octets, 0, ""}},
        {"u", "4000000000", {"", Type::Gauge32, 4000000000, ""}},
        {"c", "7", {"", Type::Counter32, 7, ""}},
        {"C", "123456789012345", {"", Type::Counter64, 123456789012345, ""}},
        {"a", "1.2.3.255", {"", Type::IpAddress, 0, "\x01\x02\x03\xff"}},
        {"o", ".1.3.6", {"", Type::Oid, 0, ".1.3.6"}},
        {"n", "0", {"", Type::Null, 0, ""}},
        {"t", "99", {"", Type::TimeTicks, 99, ""}},
    };
    std::vector<std::string> command = {"snmptrap", "-v2c", "-c", "public", receiver.peer(), "123", base + "0"};
    std::vector<Varbind> expected;
    for (const auto &[letter, value, received] : values) {
        expected.push_back(received);
        expected.back().oid = base + std::to_string(expected.size());
        command.insert(command.end(), {expected.back().oid, letter, value});
    }
    const TemporaryDirectory persistent;
    const CommandResult sent = runCommand(
        command, {{"MIBS", ""}, {"SNMPCONFPATH", "/nonexistent"}, {"SNMP_PERSISTENT_DIR", persistent.path()}});
    ASSERT_TRUE(sent.status.clean()) << sent.errors;
    ASSERT_TRUE(receiver.waitForCount(1));
    const Trap trap = receiver.traps().front();
    EXPECT_EQ(trap.notification(), base + "0");
    EXPECT_EQ(std::vector<Varbind>(trap.varbinds.begin() + 2, trap.varbinds.end()), expected);
}

} // namespace
} // namespace harness
