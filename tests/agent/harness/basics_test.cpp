// SPDX-License-Identifier: Apache-2.0
// The parts of the harness that need no agent.
#include <chrono>
#include <csignal>
#include <fstream>
#include <stdexcept>

#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "agent.h"
#include "eventually.h"
#include "process_information.h"
#include "settings.h"

namespace harness {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::HasSubstr;

TEST(Eventually, AsksUntilThePredicateHoldsOrTheDeadlineIsOver) {
    int asked = 0;
    EXPECT_TRUE(eventually(seconds(10), [&] { return ++asked == 3; }));
    EXPECT_EQ(asked, 3);
    EXPECT_FALSE(eventually(milliseconds(0), [] { return false; }));
}

TEST(TemporaryDirectory, IsRemovedWithItsContent) {
    std::string path;
    {
        const TemporaryDirectory directory;
        path = directory.path();
        std::ifstream written(directory.write("file", "text"));
        std::string content;
        written >> content;
        EXPECT_EQ(content, "text");
    }
    EXPECT_NE(access(path.c_str(), F_OK), 0);
}

TEST(LogFile, SeesCompleteLinesOnly) {
    const TemporaryDirectory directory;
    const LogFile log(directory.file("log"));
    EXPECT_EQ(log.size(), 0U);
    EXPECT_EQ(log.count(""), 0U);
    directory.write("log", "one two\nthree\n\none");
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"one two", "three", ""}));
    EXPECT_EQ(log.count("one"), 1U);
    EXPECT_EQ(log.count("three", std::string("one two\n").size()), 1U);
    EXPECT_EQ(log.count("two", std::string("one two\n").size()), 0U);
    EXPECT_EQ(log.count("one", log.size()), 0U);
    EXPECT_EQ(log.tail(2), "three\n\n");
    EXPECT_EQ(log.text().size(), log.size());
    EXPECT_FALSE(log.waitFor("four", milliseconds(0)));
}

TEST(Process, RunsACommandWithArgumentsAndEnvironment) {
    const CommandResult result =
        runCommand({"sh", "-c", "printf '%s|%s' \"$1\" \"$HARNESS_TEXT\"; echo problem >&2; exit 3", "sh", "a b"},
                   {{"HARNESS_TEXT", "c d"}});
    EXPECT_EQ(result.status.code, 3);
    EXPECT_EQ(result.output, "a b|c d");
    EXPECT_EQ(result.errors, "problem\n");
}

TEST(Process, SaysWhyAProgramCannotBeStarted) {
    try {
        Process process({{"/nonexistent/program"}, {}});
        FAIL() << "a program that does not exist was started";
    } catch (const std::runtime_error &error) {
        EXPECT_THAT(error.what(), HasSubstr("No such file"));
    }
}

TEST(Process, TellsASignalFromAnExitCode) {
    Process process({{"sleep", "1000"}, {}});
    EXPECT_TRUE(process.running());
    EXPECT_EQ(process.wait(milliseconds(0)), std::nullopt);
    const ExitStatus status = process.end();
    EXPECT_EQ(status.signal, SIGTERM);
    EXPECT_FALSE(status.clean());
    EXPECT_FALSE(process.running());
    EXPECT_THAT(status.describe(), HasSubstr("SIGTERM"));
}

TEST(Process, KillsWhatDoesNotEndWhenAsked) {
    const TemporaryDirectory directory;
    Process process({{"sh", "-c", "trap '' TERM; echo ready; exec sleep 1000"}, {}, directory.file("out")});
    ASSERT_TRUE(LogFile(directory.file("out")).waitFor("ready", seconds(10)));
    EXPECT_EQ(process.end(milliseconds(50)).signal, SIGKILL);
}

TEST(Process, ReportsACommandThatDoesNotEnd) {
    EXPECT_THROW(runCommand({"sleep", "1000"}, {}, milliseconds(50)), std::runtime_error);
}

/** Starts a program in a process that then crashes. @return the program's number */
pid_t startInCrashingProcess(const std::vector<std::string> &arguments, const std::string &pidFile) {
    const pid_t crashing = fork();
    if (crashing == 0) {
        const Process process({arguments, {}});
        eventually(seconds(10), [&] { return LogFile(pidFile).lines().size() == 1; });
        kill(getpid(), SIGKILL);
    }
    int status = 0;
    waitpid(crashing, &status, 0);
    EXPECT_EQ(WTERMSIG(status), SIGKILL);
    const std::vector<std::string> lines = LogFile(pidFile).lines();
    return lines.size() == 1 ? static_cast<pid_t>(std::stol(lines.front())) : -1;
}

TEST(Process, DoesNotOutliveACrashedTest) {
    const TemporaryDirectory directory;
    const std::string pidFile = directory.file("pid");
    const pid_t pid = startInCrashingProcess({"sh", "-c", "echo $$ > " + pidFile + "; exec sleep 1000"}, pidFile);
    ASSERT_GT(pid, 1);
    EXPECT_TRUE(eventually(seconds(10), [pid] { return !runs(pid); }));
}

TEST(Guardian, EndsADaemonWhenTheTestHasCrashed) {
    const TemporaryDirectory directory;
    const std::string pidFile = directory.file("pid");
    const pid_t pid = startInCrashingProcess(
        {guardianPath(), "sh", "-c", "setsid sh -c 'echo $$ > " + pidFile + "; exec sleep 1000' &"}, pidFile);
    ASSERT_GT(pid, 1);
    EXPECT_TRUE(eventually(seconds(10), [pid] { return !runs(pid); }));
}

TEST(Guardian, EndsAsTheDaemonEnds) {
    EXPECT_EQ(runCommand({guardianPath(), "sh", "-c", "(sleep 0.05; exit 7) & exit 0"}).status.code, 7);
    EXPECT_EQ(runCommand({guardianPath(), "sh", "-c", "kill -KILL $$"}).status.signal, SIGKILL);
    EXPECT_EQ(runCommand({guardianPath(), "/nonexistent/program"}).status.code, 127);
}

TEST(ProcessInformation, ReadsTheTestItself) {
    const std::size_t before = threadCount(getpid());
    const std::size_t descriptors = descriptorCount(getpid());
    {
        const TemporaryDirectory directory;
        const std::ofstream file(directory.file("open"));
        EXPECT_EQ(descriptorCount(getpid()), descriptors + 1);
    }
    EXPECT_GE(before, 1U);
    EXPECT_GT(residentKilobytes(getpid()), 1000U);
    EXPECT_TRUE(mapsFile(getpid(), "/proc/self/exe"));
    EXPECT_FALSE(mapsFile(getpid(), agentPath()));
    EXPECT_THROW(threadCount(-1), std::runtime_error);
}

TEST(ReservedPort, IsGivenToOneOnlyAndSeesWhoUsesIt) {
    const ReservedPort first;
    const ReservedPort second;
    EXPECT_NE(first.number(), second.number());
    EXPECT_FALSE(ReservedPort::isBound(first.number()));
    Agent agent;
    EXPECT_TRUE(ReservedPort::isBound(agent.port()));
}

TEST(Variable, ReadsAndComparesIdentifiers) {
    EXPECT_EQ(parseOid(".1.3.4294967295"), (std::vector<std::uint32_t>{1, 3, 4294967295U}));
    EXPECT_EQ(oidText(parseOid("1.3.6")), ".1.3.6");
    for (const char *wrong : {"", ".", "1.", "1..3", "1.x", ".1.4294967296", "1.-3", "1 3"}) {
        EXPECT_THROW(parseOid(wrong), std::invalid_argument) << wrong;
    }
    EXPECT_TRUE(comesBefore(".1.3.2", ".1.3.10"));
    EXPECT_TRUE(comesBefore(".1.3", ".1.3.0"));
    EXPECT_FALSE(comesBefore(".1.3", ".1.3"));
    EXPECT_TRUE(isBelow(".1.3.10.0", ".1.3.10"));
    EXPECT_FALSE(isBelow(".1.3.10", ".1.3.1"));
}

TEST(Variable, IsPrintedWithoutAmbiguity) {
    EXPECT_EQ(text(integer(".1.3.1", -5)), ".1.3.1 integer -5");
    EXPECT_EQ(text(octets(".1.3.1", "a b")), ".1.3.1 octets \"a b\"");
    EXPECT_EQ(text(octets(".1.3.1", std::string("\0\xff\"", 3))), ".1.3.1 octets 0x00ff22");
    EXPECT_EQ(text({".1.3.1", Type::EndOfMibView, 0, ""}), ".1.3.1 endOfMibView -");
}

} // namespace
} // namespace harness
