// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The command-line client with a real agent.
 */
#ifndef QUARNSNMP_PTZCTL_CLIENT_H
#define QUARNSNMP_PTZCTL_CLIENT_H

#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "camera_agent.h"
#include "eventually.h"
#include "process.h"
#include "reserved_port.h"
#include "temporary_directory.h"

namespace ptzctl_client {

using ClientEnvironment = std::map<std::string, std::string>;

// Exit codes of the program.
inline constexpr int kRefused = 1;
inline constexpr int kUsage = 2;
inline constexpr int kNoAnswer = 3;
inline constexpr int kSomeFailed = 4;
inline constexpr int kLocalError = 5;

inline constexpr const char *kPositioning = "positioning/1";

/** The program, with the configuration in the test's directory only. */
class Client {
public:
    support::CommandResult run(const std::vector<std::string> &arguments, ClientEnvironment environment = {},
                               std::chrono::milliseconds deadline = support::kPatience) const {
        return support::runCommand(commandLine(arguments), completed(std::move(environment)), deadline);
    }

    static std::vector<std::string> commandLine(const std::vector<std::string> &arguments) {
        std::vector<std::string> command = {PTZCTL_PROGRAM};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return command;
    }

    ClientEnvironment completed(ClientEnvironment environment) const {
        environment.insert({{"HOME", directory.path()},
                            {"SNMPCONFPATH", directory.path()},
                            {"SNMP_PERSISTENT_DIR", directory.path()}});
        // An empty variable hides that of the environment in which the tests run.
        for (const char *name : {"HOST", "COMMUNITY", "USER", "LEVEL", "AUTH", "PRIVACY", "SNMP_VERSION", "BYTE_ORDER",
                                 "AUTH_PASSPHRASE", "PRIVACY_PASSPHRASE"}) {
            environment.insert({std::string("PTZCTL_") + name, ""});
        }
        return environment;
    }

    support::TemporaryDirectory directory;
};

/** A camera with an agent, and the program with the community for writing. */
class CameraClient : public harness::CameraAgent {
protected:
    explicit CameraClient(const std::string &camera = "dome") : CameraAgent(camera) {}

    /** Runs the program with the community for writing. Fails the test unless it succeeds. @return its output */
    std::string done(std::vector<std::string> arguments) const {
        const support::CommandResult result = client_.run(withCommunity(std::move(arguments), "private"));
        EXPECT_EQ(result.status.code, 0) << result.output << result.errors;
        EXPECT_EQ(result.errors, "");
        return result.output;
    }

    /** Runs the program, which must end with an exit code. */
    support::CommandResult ends(int code, std::vector<std::string> arguments,
                                const std::string &community = "private") const {
        support::CommandResult result = client_.run(withCommunity(std::move(arguments), community));
        EXPECT_EQ(result.status.code, code) << result.output << result.errors;
        return result;
    }

    /** Runs the program, which must end with an exit code. @return its error messages */
    std::string complains(int code, std::vector<std::string> arguments,
                          const std::string &community = "private") const {
        return ends(code, std::move(arguments), community).errors;
    }

    std::vector<std::string> withCommunity(std::vector<std::string> arguments, const std::string &community) const {
        arguments.insert(arguments.begin(), {"--host", agent_.peer(), "--community", community});
        return arguments;
    }

    nlohmann::json field(const std::string &target, const std::string &name) const {
        return harness::targetState(camera_, target).at(name);
    }

    nlohmann::json axis(const std::string &name) const {
        return field(kPositioning, name);
    }

    testing::AssertionResult arrives(const std::string &name, int position) const {
        const bool there =
            support::eventually(std::chrono::seconds(15), [&] { return axis(name).at("position") == position; });
        return there ? testing::AssertionSuccess() : testing::AssertionFailure() << name << ": " << axis(name);
    }

    testing::AssertionResult lensArrives(const char *target, int position) const {
        const bool there =
            support::eventually(std::chrono::seconds(15), [&] { return field(target, "position") == position; });
        return there ? testing::AssertionSuccess()
                     : testing::AssertionFailure() << harness::targetState(camera_, target);
    }

    Client client_;
};

/** Destination of an agent's traps, reserved before a receiver listens there. */
class TrapAddress {
protected:
    std::string traps() const {
        return "127.0.0.1:" + std::to_string(port_.number());
    }

private:
    harness::ReservedPort port_;
};

} // namespace ptzctl_client

#endif
