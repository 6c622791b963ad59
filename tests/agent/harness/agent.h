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
#include "secure_session.h"
#include "temporary_directory.h"

namespace harness {

using namespace support;

/** How a master and a subagent with the modules share the work of an agent. */
struct Isolation {
    std::chrono::seconds timeout{100}; ///< time that the master waits for the subagent
};

/** Returns how the tests of this run isolate modules; nothing, unless the environment's QUARNSNMP_ISOLATED is 1. */
std::optional<Isolation> isolationOfThisRun();

/** Options of an agent. */
struct AgentOptions {
    std::string module;                   ///< path of the module to load; empty for none
    std::string moduleName = "quarnsnmp"; ///< prefix of its entry points
    std::string cameraDirectory;
    bool daemonised = false;                     ///< true for a daemon, as a service manager starts it
    bool showModules = false;                    ///< true if managers may read the agent's table of modules
    std::string fakeTime;                        ///< speed of its clock, such as "+0 x60"; empty for the real time
    std::vector<std::string> configuration = {}; ///< further lines of its configuration
    std::vector<std::string> arguments = {};     ///< further arguments
    std::map<std::string, std::string> environment = {}; ///< added environment, which takes precedence
    /**
     * Makes the whole configuration for a port, instead of the tests' own. The agent then reads its files like an
     * installed agent, with its persistent data.
     */
    std::function<std::string(std::uint16_t port)> wholeConfiguration;
    std::vector<std::string> persistentData = {};              ///< lines of its persistent data before the first start
    std::optional<User> asker = {};                            ///< user of the first request, if "public" has no access
    std::optional<Isolation> isolation = isolationOfThisRun(); ///< nothing: one process. Needs a module, and no whole
                                                               ///< configuration
};

/** Options of an agent with the module of this build, for a camera. */
AgentOptions withModule(const std::string &cameraDirectory);

/** End of an agent. */
struct AgentEnd {
    ExitStatus status;
    std::chrono::milliseconds duration; ///< from the signal to the end
};

/**
 * A running agent on a free port of the loopback interface, with its own configuration and directory. What
 * Process says about the thread that starts it holds here too.
 *
 * An isolated agent is a master and a subagent that has the modules. Its process, its logs and its files are those of
 * the subagent, and so are start, reload and end; managers speak to the master, which lives as long as the agent.
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

    /** The process that has the modules. */
    pid_t pid() const;

    /** Returns true for an agent with a master. */
    bool isolated() const;

    /** The master of an isolated agent, to reload it, to end it and to start it again. */
    Agent &master();

    /** Returns true until the agent has ended. */
    bool running();

    std::uint16_t port() const;

    /** Address for managers, as HOST:PORT. */
    std::string peer() const;

    /** Directory of its files. */
    const std::string &directory() const;

    /** Starts the agent again after stop() or kill(), with the same port and files, and waits until it answers. */
    void start();

    /**
     * Makes the agent read its configuration again, which unloads and loads its modules, and waits for the end.
     * @return the duration
     * @throws std::runtime_error if the reload does not end
     */
    std::chrono::milliseconds hup();

    /** Ends the agent with SIGTERM. @throws std::runtime_error when it is not running or does not end in time */
    AgentEnd stop(std::chrono::milliseconds deadline = std::chrono::seconds(20));

    /** Ends the agent with SIGKILL. @throws std::runtime_error when it is not running */
    void kill();

    /** Log of the agent, with its start and its restarts. */
    LogFile log() const;

    /** Log of the module. */
    LogFile moduleLog() const;

    /** The file of the agent's persistent data, with the keys of its users. */
    LogFile persistentData() const;

    /** The configuration file, for a test that changes it before hup(). */
    std::string configurationPath() const;

    /** The ends of all logs, for a report. */
    std::string report() const;

private:
    void reservePort();
    void startOnce();
    void writeFiles() const;
    bool portWasTaken() const;
    bool answers(std::chrono::milliseconds timeout) const;
    bool isReady() const;
    bool isReloaded(std::size_t logBefore) const;
    bool awaitSignalled(std::chrono::milliseconds deadline, const std::function<bool()> &predicate) const;
    void requireRunning();
    Launch launch() const;
    pid_t daemonPid() const;
    void failOnSanitizerReports() const;

    AgentOptions options_;
    TemporaryDirectory directory_;
    std::unique_ptr<Agent> master_; ///< null unless isolated
    std::unique_ptr<ReservedPort> port_;
    std::unique_ptr<Process> process_; ///< the agent, or its guardian when it is a daemon; null after stop() and kill()
    pid_t pid_ = -1;
};

} // namespace harness

#endif
