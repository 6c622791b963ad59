// SPDX-License-Identifier: Apache-2.0
#include "process.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <boost/process/args.hpp>
#include <boost/process/child.hpp>
#include <boost/process/error.hpp>
#include <boost/process/exe.hpp>
#include <boost/process/extend.hpp>
#include <boost/process/io.hpp>

namespace support {

namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE *)>;

/** Opens a truncated file for appending: two programs, or both outputs of one, may share it. */
File openEmpty(const std::string &path) {
    if (std::FILE *old = std::fopen(path.c_str(), "we")) {
        std::fclose(old);
    }
    File file(std::fopen(path.c_str(), "ae"), &std::fclose);
    if (!file) {
        throw std::system_error(errno, std::generic_category(), "cannot open " + path);
    }
    return file;
}

/**
 * Returns the environment of the test with further variables. Boost's own class for this reads beyond the end of short
 * variables.
 */
std::vector<std::string> environmentWith(const std::map<std::string, std::string> &added) {
    std::vector<std::string> variables;
    for (char **entry = environ; *entry != nullptr; ++entry) {
        std::string variable = *entry;
        if (added.count(variable.substr(0, variable.find('='))) == 0) {
            variables.push_back(std::move(variable));
        }
    }
    for (const auto &[name, value] : added) {
        variables.push_back(name + "=" + value);
    }
    return variables;
}

/** Prepares the child between fork and exec, where nothing may allocate or lock. */
void prepareChild(pid_t parent, unsigned filesLimit) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // The kernel does not report an end of the parent before the request above.
    if (getppid() != parent) {
        _exit(EXIT_FAILURE);
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    signal(SIGPIPE, SIG_DFL);
    if (filesLimit > 0) {
        const rlimit limit{filesLimit, filesLimit};
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    // Libraries open descriptors without O_CLOEXEC, and tests count the descriptors of programs.
    close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
}

/** Starts a program. @return its number; the caller waits for its end */
pid_t start(const Launch &launch) {
    namespace bp = boost::process;
    if (launch.arguments.empty()) {
        throw std::runtime_error("no program to start");
    }
    const std::string &program = launch.arguments.front();
    std::vector<std::string> variables = environmentWith(launch.environment);
    std::vector<char *> environment;
    for (std::string &variable : variables) {
        environment.push_back(variable.data());
    }
    environment.push_back(nullptr);
    const File output = openEmpty(launch.outputFile);
    const File errors = openEmpty(launch.errorFile);
    const auto prepare = [parent = getpid(), limit = launch.filesLimit](const auto &) { prepareChild(parent, limit); };
    try {
        bp::child child(
            bp::exe = programPath(program),
            bp::args = std::vector<std::string>(launch.arguments.begin() + 1, launch.arguments.end()),
            bp::std_in<bp::null, bp::std_out> output.get(), bp::std_err > errors.get(),
            bp::extend::on_setup = [&](auto &executor) { executor.env = environment.data(); },
            bp::extend::on_exec_setup = prepare);
        // A child object would report a clean end if another part of the test had waited for the program.
        child.detach();
        return child.id();
    } catch (const bp::process_error &error) {
        throw std::runtime_error("cannot start " + program + ": " + error.what());
    }
}

Launch withFiles(Launch launch, const TemporaryDirectory &directory) {
    if (launch.outputFile.empty()) {
        launch.outputFile = directory.file("output");
    }
    if (launch.errorFile.empty()) {
        launch.errorFile = directory.file("errors");
    }
    return launch;
}

ExitStatus decoded(int raw) {
    constexpr int kSignalled = 128; // as the shell reports it
    return WIFSIGNALED(raw) ? ExitStatus{kSignalled + WTERMSIG(raw), WTERMSIG(raw)} : ExitStatus{WEXITSTATUS(raw), 0};
}

} // namespace

std::string programPath(const std::string &program) {
    const char *path = std::getenv("PATH");
    std::istringstream directories(program.find('/') == std::string::npos && path != nullptr ? path : "");
    for (std::string directory; std::getline(directories, directory, ':');) {
        std::string candidate = directory.append("/").append(program);
        if (access(candidate.c_str(), X_OK) == 0) {
            return candidate;
        }
    }
    return program;
}

bool ExitStatus::clean() const {
    return code == 0;
}

std::string ExitStatus::describe() const {
    if (signal == 0) {
        return "exit code " + std::to_string(code);
    }
    const char *name = sigabbrev_np(signal);
    return "signal " + std::to_string(signal) + (name != nullptr ? " (SIG" + std::string(name) + ")" : "");
}

Process::Process(Launch launch) : launch_(withFiles(std::move(launch), directory_)), pid_(start(launch_)) {}

Process::~Process() {
    end();
}

pid_t Process::pid() const {
    return pid_;
}

bool Process::running() {
    if (status_) {
        return false;
    }
    int raw = 0;
    const pid_t ended = waitpid(pid_, &raw, WNOHANG);
    if (ended == 0 || (ended < 0 && errno == EINTR)) {
        return true;
    }
    constexpr int kStatusTakenElsewhere = 255;
    status_ = ended == pid_ ? decoded(raw) : ExitStatus{kStatusTakenElsewhere, 0};
    return false;
}

void Process::signal(int number) {
    if (running()) {
        kill(pid_, number);
    }
}

std::optional<ExitStatus> Process::wait(std::chrono::milliseconds deadline) {
    eventually(deadline, [this] { return !running(); });
    return status_;
}

ExitStatus Process::end(std::chrono::milliseconds deadline) {
    signal(SIGTERM);
    if (!wait(deadline)) {
        signal(SIGKILL);
        while (!wait(std::chrono::seconds(1))) {
        }
    }
    return *status_;
}

CommandResult Process::result(std::chrono::milliseconds deadline) {
    const std::optional<ExitStatus> status = wait(deadline);
    if (!status) {
        end();
        throw std::runtime_error(launch_.arguments.front() + " has not ended in time; output: " + output().text() +
                                 errors().text());
    }
    return {*status, output().text(), errors().text()};
}

LogFile Process::output() const {
    return LogFile(launch_.outputFile);
}

LogFile Process::errors() const {
    return LogFile(launch_.errorFile);
}

CommandResult runCommand(const std::vector<std::string> &arguments,
                         const std::map<std::string, std::string> &environment, std::chrono::milliseconds deadline) {
    return Process({arguments, environment}).result(deadline);
}

} // namespace support
