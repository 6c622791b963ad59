// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A fleet of simulated cameras for one test.
 */
#ifndef QUARNSNMP_TESTS_RUNNING_FLEET_H
#define QUARNSNMP_TESTS_RUNNING_FLEET_H

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "process.h"
#include "reserved_port.h"
#include "temporary_directory.h"

namespace fleet_test {

using namespace support;

/**
 * Returns the environment of the program. In a sanitized build, its agents are scripts that load the sanitizer's
 * runtime into the agent, which is not sanitized itself.
 * @param files  directory for the script
 */
std::map<std::string, std::string> fleetEnvironment(const TemporaryDirectory &files);

/** Runs the program to its end. */
CommandResult runFleetProgram(const std::vector<std::string> &arguments);

/** A fleet, with a directory unless the test gives another one. */
class RunningFleet {
public:
    /** Does not start it. */
    RunningFleet() = default;

    /** Starts the fleet. @param arguments  COUNT and options besides directory and port */
    void begin(std::vector<std::string> arguments);

    /** As begin(), and waits until all cameras are ready. Fails the test if they do not get ready. */
    void start(std::vector<std::string> arguments);

    /** Ends it as a Ctrl-C does. Fails the test unless it ends cleanly and without an error message. */
    void stop();

    Process &process() {
        return *process_;
    }

    const std::string &directory() const {
        return directory_;
    }

    /** Returns the path of a file beside the fleet's directory. */
    std::string file(const std::string &name) const {
        return files_.file(name);
    }

    std::string port() const {
        return std::to_string(port_.number());
    }

    /** Returns the address of an agent as HOST:PORT. @param host  such as 127.1.0.1 */
    std::string agent(const std::string &host) const {
        return host + ":" + port();
    }

    /** Runs `control` on the fleet. */
    CommandResult control(const std::string &select, const std::vector<std::string> &command,
                          const std::vector<std::string> &options = {}) const;

    /** Returns the cameras of `status --json`. */
    nlohmann::json status() const;

    /** Returns the description of a camera by the fleet. @param number  from 1 */
    nlohmann::json camera(unsigned number) const;

    /** Returns the processes of all cameras and agents. */
    std::vector<pid_t> processes() const;

    /** Returns a field of a target in a camera's state. @throws std::runtime_error without the target */
    nlohmann::json value(unsigned number, const std::string &target, const std::string &field) const;

private:
    TemporaryDirectory files_;
    harness::ReservedPort port_;
    std::string directory_ = files_.file("fleet");
    std::unique_ptr<Process> process_;
};

} // namespace fleet_test

#endif
