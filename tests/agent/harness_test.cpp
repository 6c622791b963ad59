// SPDX-License-Identifier: Apache-2.0
// The agents and managers of the harness, with an agent that has no module: what their answers mean must be certain
// before they judge one.
#include <chrono>
#include <csignal>
#include <fstream>
#include <stdexcept>
#include <thread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "agent.h"
#include "eventually.h"
#include "process_information.h"
#include "settings.h"
#include "well_known_objects.h"

namespace harness {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::HasSubstr;

TEST(Agent, AnswersAndEndsCleanly) {
    Agent agent;
    Manager manager(agent.peer(), "public");
    const Result result = manager.get(kUpTime, kContact);
    ASSERT_TRUE(result.ok()) << result;
    ASSERT_EQ(result.variables.size(), 2U);
    EXPECT_EQ(result.variables[0].type, Type::TimeTicks);
    EXPECT_EQ(result.variables[1].oid, kContact);
    EXPECT_EQ(result.variables[1].type, Type::Octets);
    EXPECT_TRUE(mapsFile(agent.pid(), agentPath()));
    EXPECT_EQ(agent.log().count("NET-SNMP version"), 1U);
    const AgentEnd end = agent.stop();
    EXPECT_TRUE(end.status.clean()) << end.status.describe();
    EXPECT_LT(end.duration, patient(seconds(10)));
    EXPECT_FALSE(agent.running());
}

TEST(Agent, StartsAgainAtTheSamePort) {
    Agent agent;
    const std::string peer = agent.peer();
    agent.kill();
    EXPECT_FALSE(agent.running());
    EXPECT_THROW(agent.hup(), std::runtime_error);
    agent.start();
    EXPECT_EQ(agent.peer(), peer);
    EXPECT_TRUE(Manager(peer).get(kUpTime).ok());
}

TEST(Agent, ReadsItsConfigurationAgain) {
    Agent agent;
    const pid_t pid = agent.pid();
    std::ofstream(agent.configurationPath(), std::ios::app) << "sysLocation the second floor\n";
    Manager manager(agent.peer());
    for (std::size_t round = 1; round <= 3; ++round) {
        agent.hup();
        EXPECT_EQ(agent.log().count(" restarted"), round);
        EXPECT_EQ(manager.get(".1.3.6.1.2.1.1.6.0").single().octets, "the second floor");
    }
    EXPECT_EQ(agent.pid(), pid);
}

TEST(Agent, RunsAsADaemon) {
    AgentOptions options;
    options.daemonised = true;
    Agent agent(options);
    EXPECT_TRUE(mapsFile(agent.pid(), agentPath()));
    const pid_t pid = agent.pid();
    EXPECT_TRUE(Manager(agent.peer()).get(kUpTime).ok());
    agent.hup();
    EXPECT_EQ(agent.pid(), pid);
    const AgentEnd end = agent.stop();
    EXPECT_TRUE(end.status.clean()) << end.status.describe();
    EXPECT_FALSE(runs(pid));
    agent.start();
    agent.kill();
    EXPECT_FALSE(agent.running());
}

TEST(Agent, ReportsWhyItDoesNotStart) {
    AgentOptions options;
    options.arguments = {"-Z"};
    try {
        const Agent agent(options);
        FAIL() << "the agent started with an option that it does not know";
    } catch (const std::runtime_error &error) {
        EXPECT_THAT(error.what(), testing::AllOf(HasSubstr("exit code 1"), HasSubstr("invalid option")));
    }
}

TEST(Agent, MakesTheTestFailWhenItEndsByItself) {
    EXPECT_NONFATAL_FAILURE(
        {
            Agent agent;
            ASSERT_EQ(kill(agent.pid(), SIGKILL), 0);
            ASSERT_TRUE(eventually(seconds(10), [&] { return !agent.running(); }));
        },
        "ended by itself");
}

TEST(Agent, MakesTheTestFailWhenASanitizerHasFoundSomething) {
    EXPECT_NONFATAL_FAILURE(
        {
            const Agent agent;
            std::ofstream(agent.directory() + "/sanitizer.1234") << "ERROR: heap-use-after-free";
        },
        "heap-use-after-free");
}

TEST(Agent, TakesAnotherPortOnlyBeforeItsAddressIsKnown) {
    Agent agent;
    agent.stop();
    const int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(agent.port());
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ASSERT_EQ(bind(fd, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    try {
        agent.start();
        ADD_FAILURE() << "the agent started at a port that is taken";
    } catch (const std::runtime_error &error) {
        EXPECT_THAT(error.what(), HasSubstr("port is taken"));
    }
    close(fd);
    agent.start();
    EXPECT_TRUE(Manager(agent.peer()).get(kUpTime).ok());
}

TEST(Agent, LoadsNoModuleFromAPathThatDoesNotExist) {
    AgentOptions options;
    options.module = "/nonexistent/module.so";
    options.showModules = true;
    Agent agent(options);
    EXPECT_GE(agent.log().count("/nonexistent/module.so"), 1U) << agent.log().text();
    EXPECT_FALSE(Manager(agent.peer()).walk(".1.3.6.1.4.1.2021.13.14").empty());
}

TEST(Agent, HasAClockThatRunsAsFastAsTheTestWants) {
    AgentOptions options;
    options.fakeTime = "+0 x60";
    Agent agent(options);
    Manager manager(agent.peer());
    const std::int64_t before = manager.get(kUpTime).single().number;
    const auto start = std::chrono::steady_clock::now();
    constexpr std::int64_t kTwoMinutes = 12000;
    EXPECT_TRUE(eventually(seconds(20), [&] { return manager.get(kUpTime).single().number > before + kTwoMinutes; }));
    EXPECT_LT(std::chrono::steady_clock::now() - start, seconds(100));
}

TEST(Manager, TellsErrorsFromMissingObjectsAndFromSilence) {
    Agent agent;
    Manager reader(agent.peer(), "public");
    Manager writer(agent.peer(), "private");
    EXPECT_EQ(reader.get(".1.3.6.1.4.1.99999.1.0").single().type, Type::NoSuchObject);
    EXPECT_EQ(reader.get(".1.3.6.1.2.1.1.1.7").single().type, Type::NoSuchInstance);
    EXPECT_EQ(reader.getNext(".1.3.6.1.4.1.99999").single().type, Type::EndOfMibView);

    const Result refused = reader.set({octets(kContact, "somebody")});
    EXPECT_TRUE(refused.answered);
    EXPECT_EQ(refused.error, ErrorStatus::NoAccess) << refused;
    EXPECT_EQ(refused.errorIndex, 1);

    const Result notWritable = writer.set({octets(kContact, "somebody"), octets(kDescription, "text")});
    EXPECT_EQ(notWritable.error, ErrorStatus::NotWritable) << notWritable;
    EXPECT_EQ(notWritable.errorIndex, 2);
    EXPECT_NE(reader.get(kContact).single().octets, "somebody");
    EXPECT_EQ(writer.set({integer(kContact, 1)}).error, ErrorStatus::WrongType);

    Manager stranger(agent.peer(), "unknown");
    stranger.setTimeout(milliseconds(200));
    EXPECT_FALSE(stranger.get(kUpTime).answered);
    EXPECT_THROW(reader.get("1.3.x"), std::invalid_argument);
    EXPECT_THROW(reader.get("1"), std::invalid_argument);
}

TEST(Manager, WritesWhatItReads) {
    Agent agent;
    Manager manager(agent.peer());
    const std::string value = "line one\nline\ttwo = \"three\"";
    const Result result = manager.set({octets(kContact, value), octets(".1.3.6.1.2.1.1.5.0", "")});
    ASSERT_TRUE(result.ok()) << result;
    EXPECT_EQ(manager.get(kContact).single(), octets(kContact, value));
    EXPECT_EQ(manager.get(".1.3.6.1.2.1.1.5.0").single(), octets(".1.3.6.1.2.1.1.5.0", ""));
}

TEST(Manager, SendsEveryTypeTheWayItIsMeant) {
    // snmpTargetParams-like tables are not visible here, so the type check of a writable object serves as a mirror: an
    // encoding that the agent cannot read would stay without an answer.
    Agent agent;
    Manager manager(agent.peer());
    for (const Type type : {Type::Integer, Type::Counter32, Type::Gauge32, Type::TimeTicks, Type::Counter64}) {
        const Result result = manager.set(kContact, type, 4000000000);
        EXPECT_EQ(result.error, ErrorStatus::WrongType) << typeName(type) << ": " << result;
    }
    for (const Variable &value : {Variable{kContact, Type::Oid, 0, ".1.3.6"}, Variable{kContact, Type::Null, 0, ""},
                                  Variable{kContact, Type::IpAddress, 0, "abcd"}}) {
        const Result result = manager.set({value});
        EXPECT_EQ(result.error, ErrorStatus::WrongType) << value << ": " << result;
    }
}

TEST(Manager, WalksTheSameWithGetNextAndGetBulk) {
    AgentOptions options;
    options.configuration = {"sysServices 72"};
    Agent agent(options);
    Manager manager(agent.peer(), "public");
    const std::vector<Variable> walk = manager.walk(kSystem);
    const std::vector<Variable> bulk = manager.bulkWalk(kSystem, 7);
    ASSERT_GT(walk.size(), 20U);
    ASSERT_EQ(walk.size(), bulk.size());
    for (std::size_t i = 0; i < walk.size(); ++i) {
        EXPECT_EQ(walk[i].oid, bulk[i].oid);
        EXPECT_EQ(walk[i].type, bulk[i].type);
    }
    const Result mixed = manager.getBulk(1, 3, {kUpTime, kSystem});
    ASSERT_EQ(mixed.variables.size(), 4U) << mixed;
    EXPECT_EQ(mixed.variables[0].oid, kContact);
    EXPECT_EQ(mixed.variables[1].oid, kDescription);
    EXPECT_EQ(manager.get(".1.3.6.1.2.1.1.7.0").single(), integer(".1.3.6.1.2.1.1.7.0", 72));
    EXPECT_EQ(manager.get(".1.3.6.1.2.1.1.2.0").single().type, Type::Oid);
    EXPECT_THAT(manager.get(".1.3.6.1.2.1.1.2.0").single().octets, testing::StartsWith(".1.3.6.1.4.1."));
}

TEST(ManagerThreads, EachUseTheirOwn) {
    Agent agent;
    std::vector<std::thread> threads;
    std::vector<std::size_t> answers(4, 0);
    threads.reserve(answers.size());
    for (std::size_t &count : answers) {
        threads.emplace_back([&count, peer = agent.peer()] {
            Manager manager(peer, "public");
            for (int i = 0; i < 50; ++i) {
                count += manager.get(kUpTime).single().oid == kUpTime ? 1U : 0U;
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_THAT(answers, testing::Each(50U));
}

} // namespace
} // namespace harness
