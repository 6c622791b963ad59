// SPDX-License-Identifier: Apache-2.0
// A program that fails, hangs or outlives its test must not pass unnoticed.
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "camera.h"
#include "process_information.h"

namespace support {
namespace {

using std::chrono::milliseconds;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::UnorderedElementsAre;

/** Runs an action that must throw. @return the text of the exception */
template <typename Action>
std::string problemOf(const Action &action) {
    try {
        action();
    } catch (const std::runtime_error &error) {
        return error.what();
    }
    return "no exception";
}

TEST(Eventually, AsksUntilThePredicateHoldsOrTheDeadlineIsOver) {
    int asked = 0;
    EXPECT_TRUE(eventually([&] { return ++asked == 3; }));
    EXPECT_EQ(asked, 3);
    EXPECT_FALSE(eventually(milliseconds(0), [] { return false; }));
}

TEST(TemporaryDirectory, IsRemovedWithItsContent) {
    std::string path;
    {
        const TemporaryDirectory directory;
        path = directory.path();
        EXPECT_EQ(LogFile(directory.write("file", "text")).text(), "text");
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(LogFile, SeesCompleteLinesOnly) {
    const TemporaryDirectory directory;
    const LogFile log(directory.file("log"));
    EXPECT_EQ(log.count(""), 0U) << "does not exist yet";
    directory.write("log", "one two\nthree\n\none");
    EXPECT_THAT(log.lines(), testing::ElementsAre("one two", "three", ""));
    EXPECT_EQ(log.count("one"), 1U);
    EXPECT_EQ(log.count("two", std::string("one two\n").size()), 0U);
    EXPECT_EQ(log.tail(2), "three\n\n");
    EXPECT_FALSE(log.waitFor("four", milliseconds(0)));
}

TEST(Process, RunsACommandWithArgumentsAndEnvironment) {
    const CommandResult result =
        runCommand({"sh", "-c", "printf '%s|%s' \"$1\" \"$SUPPORT_TEXT\"; echo problem >&2; exit 3", "sh", "a b"},
                   {{"SUPPORT_TEXT", "c d"}});
    EXPECT_EQ(result.status.code, 3);
    EXPECT_EQ(result.output, "a b|c d");
    EXPECT_EQ(result.errors, "problem\n");
}

TEST(Process, InheritsNoDescriptorButTheStandardOnes) {
    const std::ofstream open("/dev/null");
    // The shell opens the directory itself.
    EXPECT_THAT(runCommand({"sh", "-c", "exec ls /proc/self/fd"}).output, "0\n1\n2\n3\n");
}

TEST(Process, SaysWhyAProgramCannotBeStarted) {
    EXPECT_THAT(problemOf([] { Process({{"/nonexistent/program"}}); }), HasSubstr("No such file"));
}

TEST(Process, TellsASignalFromAnExitCode) {
    Process process({{"sleep", "1000"}});
    EXPECT_TRUE(process.running());
    EXPECT_EQ(process.wait(milliseconds(0)), std::nullopt);
    const ExitStatus status = process.end();
    EXPECT_EQ(status.signal, SIGTERM);
    EXPECT_FALSE(status.clean());
    EXPECT_THAT(status.describe(), HasSubstr("SIGTERM"));
}

TEST(Process, KillsAProgramThatDoesNotEnd) {
    Process process({{"sh", "-c", "trap '' TERM; echo ready; exec sleep 1000"}});
    ASSERT_EQ(process.output().awaitLine(0), "ready");
    EXPECT_EQ(process.end(milliseconds(50)).signal, SIGKILL);
    EXPECT_THAT(problemOf([] { runCommand({"sleep", "1000"}, {}, milliseconds(50)); }), HasSubstr("not ended in time"));
}

TEST(Process, DoesNotOutliveACrashedTest) {
    const TemporaryDirectory directory;
    const LogFile number(directory.file("pid"));
    const pid_t crashing = fork();
    if (crashing == 0) {
        setenv("TMPDIR", directory.path().c_str(), 1); // nothing removes the files of a crashed test
        const Process process({{"sh", "-c", "echo $$; exec sleep 1000"}, {}, number.path()});
        number.awaitLine(0);
        kill(getpid(), SIGKILL);
    }
    waitpid(crashing, nullptr, 0);
    const pid_t pid = std::stoi(number.awaitLine(0));
    EXPECT_TRUE(eventually([pid] { return !runs(pid); }));
}

TEST(ProcessInformation, ReadsTheTestItself) {
    const std::size_t descriptors = descriptorCount(getpid());
    const std::ofstream file("/dev/null");
    EXPECT_EQ(descriptorCount(getpid()), descriptors + 1);
    EXPECT_GE(threadCount(getpid()), 1U);
    EXPECT_GT(residentKilobytes(getpid()), 1000U);
    // The kernel counts pages per thread at first, and brings both figures up to date from time to time.
    constexpr std::size_t kSlack = 1000;
    EXPECT_GE(peakKilobytes(getpid()) + kSlack, residentKilobytes(getpid()));
    EXPECT_TRUE(mapsFile(getpid(), "/proc/self/exe"));
    EXPECT_FALSE(mapsFile(getpid(), "/bin/sh"));
    EXPECT_THROW(threadCount(-1), std::runtime_error);
}

/** Opens a socket, and binds it to an address unless the length is 0. @return its descriptor */
int openSocket(int family, int type, const sockaddr *address, socklen_t length) {
    const int fd = socket(family, type | SOCK_CLOEXEC, 0);
    EXPECT_GE(fd, 0);
    EXPECT_TRUE(length == 0 || bind(fd, address, length) == 0);
    return fd;
}

TEST(ProcessInformation, DescribesSocketsOfAllKinds) {
    sockaddr_in ipv4{};
    ipv4.sin_family = AF_INET;
    ipv4.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    sockaddr_in everywhere{};
    everywhere.sin_family = AF_INET;
    sockaddr_un local{};
    local.sun_family = AF_UNIX;
    const TemporaryDirectory directory;
    const std::string path = directory.file("socket");
    path.copy(local.sun_path, sizeof local.sun_path - 1);
    EXPECT_THAT(sockets(getpid()), IsEmpty());
    const int opened[] = {
        openSocket(AF_INET, SOCK_DGRAM, reinterpret_cast<const sockaddr *>(&ipv4), sizeof ipv4),
        openSocket(AF_INET, SOCK_STREAM, reinterpret_cast<const sockaddr *>(&everywhere), sizeof everywhere),
        openSocket(AF_UNIX, SOCK_STREAM, reinterpret_cast<const sockaddr *>(&local), sizeof local),
        openSocket(AF_UNIX, SOCK_STREAM, nullptr, 0),
        openSocket(AF_INET, SOCK_DGRAM, nullptr, 0),
    };
    listen(opened[1], 1);
    EXPECT_THAT(sockets(getpid()),
                UnorderedElementsAre(MatchesRegex("udp 127\\.0\\.0\\.1:[0-9]+"),
                                     MatchesRegex("tcp 0\\.0\\.0\\.0:[0-9]+"), "unix " + path, "unix", "unknown"));
    for (const int fd : opened) {
        close(fd);
    }
}

TEST(ProcessInformation, DescribesSocketsOfIpVersion6) {
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    address.sin6_addr = in6addr_loopback;
    const int fd = socket(AF_INET6, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0 || bind(fd, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
        close(fd);
        GTEST_SKIP() << "this machine has no IPv6";
    }
    EXPECT_THAT(sockets(getpid()), UnorderedElementsAre(MatchesRegex("udp \\[::1\\]:[0-9]+")));
    close(fd);
}

class RunningCamera : public testing::Test {
protected:
    void SetUp() override {
        if (cameraPath().empty()) {
            GTEST_SKIP() << "this build has no simulated camera";
        }
    }
};

TEST_F(RunningCamera, ComesBackAfterAShutdownAndAPowerCut) {
    Camera camera;
    EXPECT_THAT(camera.control("state").output, HasSubstr("positioning"));
    EXPECT_TRUE(camera.stop().clean());
    EXPECT_FALSE(camera.control("state").status.clean());
    camera.start();
    camera.kill();
    EXPECT_THROW(camera.stop(), std::runtime_error);
    camera.restart();
    EXPECT_TRUE(camera.control("state").status.clean());
}

TEST_F(RunningCamera, FailsTheTestWhenItDoesNotStartOrEndsByItself) {
    EXPECT_THAT(problemOf([] { Camera("no such camera"); }), HasSubstr("no such camera"));
    EXPECT_NONFATAL_FAILURE(
        {
            const Camera camera;
            kill(camera.pid(), SIGKILL);
            EXPECT_TRUE(eventually([&] { return !runs(camera.pid()); }));
        },
        "ended by itself");
}

} // namespace
} // namespace support
