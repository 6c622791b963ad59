// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A real agent for one test.
 */
#ifndef QUARNSNMP_HARNESS_AGENT_H
#define QUARNSNMP_HARNESS_AGENT_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "log_file.h"
#include "manager.h"
#include "process.h"
#include "reserved_port.h"
#include "temporary_directory.h"
#include "user.h"

namespace harness {

using namespace support;

/** How to start an agent. */
struct AgentOptions {
    std::string module;                   ///< path of the module to load; empty loads none
    std::string moduleName = "quarnsnmp"; ///< after which its entry points are named
    std::string cameraDirectory;
    bool daemonised = false;                     ///< let it leave its parent after its start, as a service does
    bool showModules = false;                    ///< let managers read the agent's own table of loadable modules
    std::string fakeTime;                        ///< how its clock runs, such as "+0 x60"; empty leaves it alone
    std::vector<std::string> configuration = {}; ///< further lines of its configuration
    std::vector<std::string> arguments = {};     ///< further arguments
    std::map<std::string, std::string> environment = {}; ///< further environment; wins over the agent's own
    /**
     * The whole configuration for a port, instead of the tests' own. The agent then reads its files as an installed one
     * does, those with its persistent data included.
     */
    std::function<std::string(std::uint16_t port)> wholeConfiguration;
    std::vector<std::string> persistentData = {}; ///< lines of its persistent data before the first start
    std::optional<User> asker = {};               ///< who asks whether the agent answers, where "public" may not
};

/** Options of an agent with the module of this build, for a camera. */
AgentOptions withModule(const std::string &cameraDirectory);

/** How an agent ended. */
struct AgentEnd {
    ExitStatus status;
    std::chrono::milliseconds duration; ///< from the signal to the end
};

/**
 * A running agent on a free port of the loopback interface, with its own configuration and directory. What
 * Process says about the thread that starts it holds here too.
 */
class Agent {
public:
    /**
     * Starts an agent and waits until it answers.
     * @throws std::runtime_error when it does not; the text has its logs
     */
    explicit Agent(AgentOptions options = {});

    /**
     * Ends the agent. The test fails when the agent ended by itself before, does not end cleanly, or a sanitizer has
     * found something. When the test has failed, the ends of the logs are printed.
     */
    ~Agent();

    Agent(const Agent &) = delete;
    Agent &operator=(const Agent &) = delete;

    /** The process that serves requests. */
    pid_t pid() const;

    /** Whether it still runs. */
    bool running();

    std::uint16_t port() const;

    /** Address for managers, as HOST:PORT. */
    std::string peer() const;

    /** Directory of its files. */
    const std::string &directory() const;

    /** Starts the agent again after stop() or kill(), with the same port and files, and waits until it answers. */
    void start();

    /**
     * Lets the agent read its configuration again, which unloads and loads its modules, and waits until it is through.
     * @return how long it took
     * @throws std::runtime_error when it does not get through
     */
    std::chrono::milliseconds hup();

    /** Ends the agent with SIGTERM. @throws std::runtime_error when it is not running or does not end in time */
    AgentEnd stop(std::chrono::milliseconds deadline = std::chrono::seconds(20));

    /** Ends the agent with SIGKILL. @throws std::runtime_error when it is not running */
    void kill();

    /** What the agent logs. Its start and its restarts are among the lines. */
    LogFile log() const;

    /** What the module logs. */
    LogFile moduleLog() const;

    /** The file of the agent's persistent data, with the keys of its users. */
    LogFile persistentData() const;

    /** The configuration file, for a test that changes it before hup(). */
    std::string configurationPath() const;

    /** The ends of all logs, for a report. */
    std::string report() const;

private:
    void startOnce();
    void writeFiles() const;
    bool portWasTaken() const;
    bool answers(std::chrono::milliseconds timeout) const;
    bool awaitSignalled(std::chrono::milliseconds deadline, const std::function<bool()> &predicate) const;
    void requireRunning();
    Launch launch() const;
    pid_t daemonPid() const;
    void failOnSanitizerReports() const;

    AgentOptions options_;
    TemporaryDirectory directory_;
    std::unique_ptr<ReservedPort> port_;
    std::unique_ptr<Process> process_; ///< the agent, or its guardian when it is a daemon; null after stop() and kill()
    pid_t pid_ = -1;
};

} // namespace harness

#endif
