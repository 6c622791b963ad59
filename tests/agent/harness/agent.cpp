// SPDX-License-Identifier: Apache-2.0
#include "agent.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>

#include "agent_configuration.h"
#include "eventually.h"
#include "object_oids.h"
#include "settings.h"

namespace harness {

namespace {

using Clock = std::chrono::steady_clock;

/** Directory of the agent's persistent data, in the agent's directory. */
constexpr const char *kPersistentDirectory = "persistent";

/** Start of the names of a sanitizer's files in the agent's directory. */
constexpr const char *kSanitizerLog = "sanitizer";

std::chrono::milliseconds since(Clock::time_point start) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
}

/**
 * Returns the environment of the agent in addition to that of the test.
 * @throws std::runtime_error when the machine has no library for the wanted clock
 */
std::map<std::string, std::string> agentEnvironment(const AgentOptions &options, const TemporaryDirectory &directory,
                                                    const std::string &moduleLogPath) {
    const std::string persistent = directory.file(kPersistentDirectory);
    std::map<std::string, std::string> result = {
        {"SNMP_PERSISTENT_DIR", persistent},
        {"SNMPCONFPATH", directory.path() + ":" + persistent},
        {"MIBS", ""},
        {"MIBDIRS", directory.path()},
        {"QUARNSNMP_LOG_FILE", moduleLogPath},
        {"QUARNSNMP_LOG_LEVEL", "7"},
    };
    if (!options.cameraDirectory.empty()) {
        result["QUARNSNMP_CAMERA_DIR"] = options.cameraDirectory;
    }
    std::vector<std::string> preloaded = sanitizerRuntimes();
    if (!preloaded.empty()) {
        // The agent is the distribution's and is no subject of the leak search.
        const std::string common = "abort_on_error=1:halt_on_error=1:log_path=" + directory.file(kSanitizerLog);
        result["ASAN_OPTIONS"] = common + ":detect_leaks=0:verify_asan_link_order=0";
        result["UBSAN_OPTIONS"] = common + ":print_stacktrace=1";
        result["TSAN_OPTIONS"] = common;
    }
    if (!options.fakeTime.empty()) {
        if (fakeTimeLibraryPath().empty()) {
            throw std::runtime_error("libfaketimeMT.so.1 is missing; on Debian: apt-get install faketime");
        }
        // In front: a sanitizer's runtime asks for the time while it starts, and the library, asked before it has
        // started itself, allocates memory from the runtime.
        preloaded.insert(preloaded.begin(), fakeTimeLibraryPath());
        result["FAKETIME"] = options.fakeTime;
    }
    std::string list;
    for (const std::string &library : preloaded) {
        list += (list.empty() ? "" : ":") + library;
    }
    if (!list.empty()) {
        result["LD_PRELOAD"] = list;
    }
    for (const auto &[name, value] : options.environment) {
        result[name] = value;
    }
    return result;
}

/** Returns true if two processes share the work of an agent with these options. */
bool needsMaster(const AgentOptions &options) {
    return options.isolation && !options.module.empty() && !options.wholeConfiguration;
}

} // namespace

std::optional<Isolation> isolationOfThisRun() {
    return environmentOr("QUARNSNMP_ISOLATED", "0") == "1" ? std::optional<Isolation>(Isolation{}) : std::nullopt;
}

AgentOptions withModule(const std::string &cameraDirectory) {
    AgentOptions options;
    options.module = modulePath();
    options.cameraDirectory = cameraDirectory;
    // A module from elsewhere need not know where the stand-in is.
    if (!coreLibraryPath().empty()) {
        options.environment["LD_LIBRARY_PATH"] = std::filesystem::path(coreLibraryPath()).parent_path().string();
    }
    if (options.module.empty()) {
        throw std::runtime_error("this build has no module");
    }
    return options;
}

Agent::Agent(AgentOptions options) : options_(std::move(options)) {
    if (needsMaster(options_)) {
        const std::string socket = directory_.file("agentx");
        master_ = std::make_unique<Agent>(masterOptions(options_, socket));
        options_ = subagentOptions(options_, socket);
    }
    start();
}

Agent::~Agent() {
    if (process_ && !process_->running()) {
        ADD_FAILURE() << "the agent ended by itself: " << process_->end().describe();
    } else if (process_) {
        try {
            const AgentEnd end = stop();
            if (!end.status.clean()) {
                ADD_FAILURE() << "the agent did not end cleanly: " << end.status.describe();
            }
        } catch (const std::exception &error) {
            ADD_FAILURE() << error.what();
        }
    }
    failOnSanitizerReports();
    if (testHasFailed()) {
        std::cerr << report();
    }
}

pid_t Agent::pid() const {
    return pid_;
}

bool Agent::isolated() const {
    return master_ != nullptr;
}

Agent &Agent::master() {
    if (!master_) {
        throw std::runtime_error("the agent has no master");
    }
    return *master_;
}

bool Agent::running() {
    return process_ && process_->running();
}

std::uint16_t Agent::port() const {
    return master_ ? master_->port() : port_->number();
}

std::string Agent::peer() const {
    return "127.0.0.1:" + std::to_string(port());
}

const std::string &Agent::directory() const {
    return directory_.path();
}

LogFile Agent::log() const {
    return LogFile(directory_.file("agent.log"));
}

LogFile Agent::moduleLog() const {
    return LogFile(directory_.file("module.log"));
}

LogFile Agent::persistentData() const {
    return LogFile(directory_.file(kPersistentDirectory) + "/snmpd.conf");
}

std::string Agent::configurationPath() const {
    return directory_.file("snmpd.conf");
}

std::string Agent::report() const {
    return "---- agent log ----\n" + log().tail(30) + LogFile(directory_.file("agent.err")).tail(30) +
           "---- module log ----\n" + moduleLog().tail(40);
}

Launch Agent::launch() const {
    std::vector<std::string> arguments;
    if (options_.daemonised) {
        arguments.push_back(guardianPath());
    }
    const std::vector<std::string> prefix = agentPrefix();
    arguments.insert(arguments.end(), prefix.begin(), prefix.end());
    const std::vector<std::string> own = {agentPath(), "-Lf", log().path(), "-r", "-p", directory_.file("agent.pid")};
    arguments.insert(arguments.end(), own.begin(), own.end());
    if (master_) {
        // Only the part of the agent that loads modules.
        arguments.insert(arguments.end(), {"-X", "-C", "-c", configurationPath(), "-I", "dlmod"});
    } else if (!options_.wholeConfiguration) {
        // Without -smux, an agent of root opens a TCP port on all addresses.
        arguments.insert(arguments.end(), {"-C", "-c", configurationPath(), "-I", "-smux"});
    }
    if (!options_.daemonised) {
        arguments.push_back("-f");
    }
    arguments.insert(arguments.end(), options_.arguments.begin(), options_.arguments.end());
    return {arguments, agentEnvironment(options_, directory_, moduleLog().path()), directory_.file("agent.out"),
            directory_.file("agent.err")};
}

void Agent::start() {
    if (process_) {
        throw std::runtime_error("the agent is running already");
    }
    if (master_ && !std::filesystem::exists(configurationPath())) {
        writeFiles();
    }
    if (master_ || port_) {
        startOnce();
    } else {
        reservePort();
    }
    if (!process_) {
        throw std::runtime_error("the agent's port is taken\n" + report());
    }
}

/** Starts the agent with a free port. There is no process afterwards if none of some ports stays free. */
void Agent::reservePort() {
    constexpr int kAttempts = 5;
    for (int attempt = 0; !process_ && attempt < kAttempts; ++attempt) {
        port_ = std::make_unique<ReservedPort>();
        writeFiles();
        startOnce();
    }
}

void Agent::writeFiles() const {
    const std::uint16_t portOfFile = master_ ? 0 : port();
    directory_.write("snmpd.conf", options_.wholeConfiguration ? options_.wholeConfiguration(portOfFile)
                                                               : agentConfiguration(options_, portOfFile));
    if (!options_.persistentData.empty()) {
        std::filesystem::create_directory(directory_.file(kPersistentDirectory));
        std::ofstream file(persistentData().path());
        for (const std::string &line : options_.persistentData) {
            file << line << "\n";
        }
    }
}

/** Starts the agent. There is no process afterwards if another program has taken the port. */
void Agent::startOnce() {
    std::filesystem::remove(directory_.file("agent.pid"));
    // The agent would overwrite it, after the first look for its lines.
    std::filesystem::remove(log().path());
    process_ = std::make_unique<Process>(launch());
    bool ready = false;
    eventually(std::chrono::seconds(20), [this, &ready] {
        ready = isReady();
        return ready || !process_->running();
    });
    if (ready && process_->running()) {
        pid_ = options_.daemonised ? daemonPid() : process_->pid();
        return;
    }
    const ExitStatus status = process_->end();
    process_.reset();
    if (!portWasTaken()) {
        throw std::runtime_error("the agent does not answer (" + status.describe() + ")\n" + report());
    }
}

bool Agent::portWasTaken() const {
    return log().count("Error opening specified endpoint") > 0;
}

/** Returns true when a started agent serves requests. */
bool Agent::isReady() const {
    // A subagent logs its version a last time once it has registered all objects with its master.
    return master_ ? log().count("NET-SNMP version") > log().count("AgentX subagent connected")
                   : answers(patient(std::chrono::milliseconds(50)));
}

/** Returns true when an agent has ended its reload. @param logBefore  size of its log before the reload */
bool Agent::isReloaded(std::size_t logBefore) const {
    if (master_) {
        return eventually(std::chrono::seconds(100), [this, logBefore] {
            return log().count("AgentX session to master agent attempted to be re-opened", logBefore) > 0;
        });
    }
    // The agent is busy until it has loaded all modules: an answer to a request sent now comes after that.
    return answers(patient(std::chrono::seconds(100)));
}

bool Agent::answers(std::chrono::milliseconds timeout) const {
    if (!options_.asker) {
        Manager manager(peer(), "public");
        manager.setTimeout(timeout);
        return manager.get(oids::sysUpTime).ok();
    }
    Manager manager(peer(), *options_.asker, timeout);
    return manager.get(oids::sysUpTime).ok();
}

pid_t Agent::daemonPid() const {
    std::ifstream stream(directory_.file("agent.pid"));
    pid_t pid = -1;
    if (!(stream >> pid) || pid <= 1) {
        throw std::runtime_error("the agent has left no process number");
    }
    return pid;
}

void Agent::requireRunning() {
    if (!running()) {
        throw std::runtime_error("the agent is not running\n" + report());
    }
}

/**
 * Waits for the effect of a signal. An agent that gets the signal just before it begins to wait for a packet acts
 * on it after the next one, so it gets a packet now and then.
 */
bool Agent::awaitSignalled(std::chrono::milliseconds deadline, const std::function<bool()> &predicate) const {
    constexpr std::chrono::milliseconds kBetweenPackets{200};
    Clock::time_point next = Clock::now() + kBetweenPackets;
    return eventually(deadline, [&] {
        // A subagent wakes up once a second to look after its master.
        if (!master_ && Clock::now() >= next) {
            answers(std::chrono::milliseconds(1));
            next = Clock::now() + kBetweenPackets;
        }
        return predicate();
    });
}

std::chrono::milliseconds Agent::hup() {
    requireRunning();
    const std::string mark = " restarted";
    const std::size_t before = log().size();
    const Clock::time_point start = Clock::now();
    ::kill(pid_, SIGHUP);
    const bool begun =
        awaitSignalled(std::chrono::seconds(20), [&] { return log().count(mark, before) > 0 || !running(); });
    requireRunning();
    // The line comes before the modules are unloaded and loaded, all in one go.
    if (!begun || !isReloaded(before)) {
        throw std::runtime_error("the agent does not get through its reload\n" + report());
    }
    return since(start);
}

AgentEnd Agent::stop(std::chrono::milliseconds deadline) {
    requireRunning();
    const Clock::time_point start = Clock::now();
    ::kill(pid_, SIGTERM);
    const bool ended = awaitSignalled(deadline, [this] { return !process_->running(); });
    const std::chrono::milliseconds duration = since(start);
    if (!ended) {
        kill();
        throw std::runtime_error("the agent does not end\n" + report());
    }
    const ExitStatus status = process_->end();
    process_.reset();
    pid_ = -1;
    return {status, duration};
}

void Agent::kill() {
    requireRunning();
    ::kill(pid_, SIGKILL);
    process_->end();
    process_.reset();
    pid_ = -1;
}

void Agent::failOnSanitizerReports() const {
    for (const auto &entry : std::filesystem::directory_iterator(directory_.path())) {
        if (entry.path().filename().string().rfind(kSanitizerLog, 0) == 0) {
            ADD_FAILURE() << LogFile(entry.path().string()).text();
        }
    }
}

} // namespace harness
