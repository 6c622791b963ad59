// SPDX-License-Identifier: Apache-2.0
// What ends the program before anything starts.
#include <filesystem>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/udp.hpp>

#include "running_fleet.h"

using namespace fleet_test;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/** Expects an end with an error message and without output. */
void expectError(int code, const std::vector<std::string> &arguments, const std::string &message) {
    const CommandResult result = runFleetProgram(arguments);
    EXPECT_EQ(code, result.status.code) << testing::PrintToString(arguments);
    EXPECT_EQ("", result.output);
    EXPECT_THAT(result.errors, testing::StartsWith("quarnsnmp-fleet: "));
    EXPECT_THAT(result.errors, HasSubstr(message)) << testing::PrintToString(arguments);
}

TEST(FleetUsage, IsChecked) {
    const struct {
        std::vector<std::string> arguments;
        const char *message;
    } cases[] = {
        {{}, "COUNT"},
        {{"0"}, "COUNT"},
        {{"10000"}, "COUNT"},
        {{"-1"}, "-1"},
        {{"x"}, "x"},
        {{"1.5"}, "1.5"},
        {{"1", "2"}, "2"},
        {{"1", "--port", "0"}, "--port"},
        {{"1", "--port", "65536"}, "--port"},
        {{"1", "--base", "localhost"}, "--base: 'localhost' is not an IPv4 address"},
        {{"2", "--base", "127.255.255.254"}, "--base: 2 addresses from 127.255.255.254 on go beyond"},
        {{"1", "--camera"}, "--camera"},
        {{"1", "--camera", "dome:0"}, "--camera: 'dome:0': a share is a number from 1 to 1000"},
        {{"1", "--trap-to", "127.0.0.1"}, "--trap-to: '127.0.0.1' is not HOST:PORT"},
        {{"status"}, "--directory"},
        {{"status", "--directory", "/d", "--interval", "0"}, "--interval"},
        {{"control", "--directory", "/d"}, "COMMAND"},
        {{"control", "--directory", "/d", "--", "move"}, "move"},
        {{"control", "--directory", "/d", "--", "set", "alarm/1"}, "FIELD"},
        {{"control", "--directory", "/d", "--", "follow"}, "works for one camera only"},
        {{"control", "--directory", "/d", "--stagger", "-1", "--", "state"}, "--stagger"},
        {{"1", "--frobnicate"}, "--frobnicate"},
    };
    for (const auto &each : cases) {
        expectError(2, each.arguments, each.message);
    }
}

class FleetStart : public testing::Test {
protected:
    /** Expects an error of a fleet of two, which must leave no directory behind. */
    void expectRefusal(std::vector<std::string> arguments, const std::string &message) const {
        arguments.insert(arguments.begin(), {"2", "--port", std::to_string(port_.number()), "--directory", directory_});
        expectError(1, arguments, message);
        EXPECT_FALSE(std::filesystem::exists(directory_)) << message;
    }

    TemporaryDirectory files_;
    harness::ReservedPort port_;
    std::string directory_ = files_.file("fleet");
};

TEST_F(FleetStart, RefusesWhatItCannotUse) {
    expectRefusal({"--base", "192.0.2.1"}, "192.0.2.1 is not an address of this machine");
    expectRefusal({"--camera", "cube"}, "no camera 'cube'");
    expectRefusal({"--camera", files_.write("bad.json", "{}")}, "bad.json: name: missing");
    expectRefusal({"--module", "/missing.so"}, "module");
    expectRefusal({"--module", files_.write("mo dule.so", "x")}, "because of a character in its path");
    expectRefusal({"--hosts-file", "/missing/hosts"}, "/missing/hosts: cannot be written");
    expectRefusal({"--targets-file", "/dev/null"}, "/dev/null: not a regular file");
}

TEST_F(FleetStart, RefusesAPortInUse) {
    boost::asio::io_context io;
    const auto second = boost::asio::ip::make_address("127.1.0.2");
    const boost::asio::ip::udp::socket taken(io, {second, port_.number()});
    expectRefusal({}, "127.1.0.2:" + std::to_string(port_.number()) + " is in use by another program");
}

TEST_F(FleetStart, RefusesAnUnsafeDirectory) {
    std::filesystem::create_directory(directory_);
    std::filesystem::permissions(directory_, std::filesystem::perms::all);
    expectError(1, {"1", "--directory", directory_}, "is writable by other users");
    expectError(1, {"1", "--directory", files_.file("a b")}, "because of a character in the path");
    expectError(1, {"1", "--directory", files_.file(std::string(90, 'x'))}, "is too long for a socket");
    EXPECT_THAT(entriesOf(directory_), IsEmpty());
}

TEST_F(FleetStart, RefusesTooFewDescriptors) {
    Launch launch{{FLEET_PROGRAM, "2", "--port", std::to_string(port_.number()), "--directory", directory_}};
    launch.filesLimit = 100; // both the soft and the hard limit
    const CommandResult result = Process(launch).result();
    EXPECT_EQ(1, result.status.code);
    EXPECT_THAT(result.errors,
                HasSubstr("too few open files of a process: there are 100, and the fleet takes 128; raise the limit"));
    EXPECT_FALSE(std::filesystem::exists(directory_));
}

TEST_F(FleetStart, GivesUpOnAnAgentThatCannotRun) {
    const CommandResult result =
        runCommand({FLEET_PROGRAM, "2", "--port", std::to_string(port_.number()), "--directory", directory_},
                   {{"QUARNSNMP_SNMPD", "/bin/false"}}, std::chrono::seconds(60));
    EXPECT_EQ(1, result.status.code);
    EXPECT_EQ("", result.output);
    EXPECT_THAT(result.errors, HasSubstr("cannot be started: the agent ended with status 1"));
}

TEST_F(FleetStart, GivesUpOnAModuleThatDoesNotLoad) {
    const CommandResult result =
        runCommand({FLEET_PROGRAM, "1", "--port", std::to_string(port_.number()), "--directory", directory_, "--module",
                    files_.write("module.so", "no library")},
                   {}, std::chrono::seconds(60));
    EXPECT_EQ(1, result.status.code);
    EXPECT_THAT(result.errors, HasSubstr("the agent answers, but has not loaded the module; "));
    EXPECT_THAT(LogFile(directory_ + "/0001/log").text(), HasSubstr("module.so"));
}

TEST_F(FleetStart, NeedsAFleetForItsCommands) {
    expectError(1, {"status", "--directory", directory_}, "no fleet answers in " + directory_);
    expectError(1, {"control", "--directory", directory_, "--", "state"}, "no fleet answers in " + directory_);
}

} // namespace
