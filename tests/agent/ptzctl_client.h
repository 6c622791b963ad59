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

/** The program, with the configuration in the test's directory only. */
class Client {
public:
    support::CommandResult run(const std::vector<std::string> &arguments, ClientEnvironment environment = {}) const {
        return support::runCommand(commandLine(arguments), completed(std::move(environment)));
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
