// SPDX-License-Identifier: Apache-2.0
#include "process.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "eventually.h"
#include "log_file.h"
#include "temporary_directory.h"

namespace harness {

namespace {

/** A descriptor that closes itself. */
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        reset();
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    int get() const {
        return fd_;
    }
    void reset() {
        if (fd_ >= 0) {
            close(fd_);
            fd_ = -1;
        }
    }

private:
    int fd_;
};

int openOrThrow(const std::string &path, int flags) {
    const int fd = ::open(path.c_str(), flags | O_CLOEXEC, 0600);
    if (fd < 0) {
        throw std::runtime_error("cannot open " + path + ": " + std::generic_category().message(errno));
    }
    return fd;
}

/** The environment of the test with additions, as NAME=VALUE texts. */
std::vector<std::string> mergedEnvironment(const std::map<std::string, std::string> &additions) {
    std::vector<std::string> result;
    for (char **entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        if (additions.count(text.substr(0, text.find('='))) == 0) {
            result.push_back(text);
        }
    }
    for (const auto &[name, value] : additions) {
        result.push_back(name);
        result.back().append("=").append(value);
    }
    return result;
}

std::vector<char *> pointers(std::vector<std::string> &texts) {
    std::vector<char *> result;
    result.reserve(texts.size() + 1);
    for (std::string &text : texts) {
        result.push_back(text.data());
    }
    result.push_back(nullptr);
    return result;
}

/** All that the child needs, made before the fork: between fork and exec nothing may allocate or lock. */
struct Plan {
    char *const *arguments;
    char *const *environment;
    int input;
    int output;
    int errors;
    int report; ///< pipe that tells the parent why exec failed
    pid_t parent;
};

[[noreturn]] void becomeProgram(const Plan &plan) {
    // The parent may have ended before the request was made, and the kernel would then never fulfil it.
    if (prctl(PR_SET_PDEATHSIG, SIGKILL) == 0 && getppid() == plan.parent) {
        sigset_t none;
        sigemptyset(&none);
        if (sigprocmask(SIG_SETMASK, &none, nullptr) == 0 && signal(SIGPIPE, SIG_DFL) != SIG_ERR &&
            dup2(plan.input, STDIN_FILENO) >= 0 && dup2(plan.output, STDOUT_FILENO) >= 0 &&
            dup2(plan.errors, STDERR_FILENO) >= 0) {
            // Libraries open descriptors without O_CLOEXEC, and tests count the descriptors of programs.
            close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
            execvpe(plan.arguments[0], plan.arguments, plan.environment);
        }
    }
    const int error = errno;
    const ssize_t written = write(plan.report, &error, sizeof error);
    _exit(written == static_cast<ssize_t>(sizeof error) ? 127 : 126);
}

pid_t start(const Launch &launch) {
    if (launch.arguments.empty()) {
        throw std::runtime_error("no program to start");
    }
    std::vector<std::string> arguments = launch.arguments;
    std::vector<std::string> environment = mergedEnvironment(launch.environment);
    const std::vector<char *> argumentPointers = pointers(arguments);
    const std::vector<char *> environmentPointers = pointers(environment);
    const Descriptor input(openOrThrow("/dev/null", O_RDONLY));
    const Descriptor output(openOrThrow(launch.outputFile, O_WRONLY | O_CREAT | O_TRUNC | O_APPEND));
    const Descriptor errors(openOrThrow(launch.errorFile, O_WRONLY | O_CREAT | O_TRUNC | O_APPEND));
    std::array<int, 2> ends{-1, -1};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    const Descriptor readEnd(ends[0]);
    Descriptor writeEnd(ends[1]);

    const pid_t parent = getpid();
    const pid_t pid = fork();
    if (pid < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (pid == 0) {
        becomeProgram({argumentPointers.data(), environmentPointers.data(), input.get(), output.get(), errors.get(),
                       writeEnd.get(), parent});
    }
    writeEnd.reset();
    int error = 0;
    if (::read(readEnd.get(), &error, sizeof error) == static_cast<ssize_t>(sizeof error)) {
        waitpid(pid, nullptr, 0);
        throw std::runtime_error("cannot start " + arguments[0] + ": " + std::generic_category().message(error));
    }
    return pid;
}

} // namespace

bool ExitStatus::clean() const {
    return code == 0 && signal == 0;
}

std::string ExitStatus::describe() const {
    if (signal == 0) {
        return "exit code " + std::to_string(code);
    }
    const char *name = sigabbrev_np(signal);
    return "signal " + std::to_string(signal) + (name != nullptr ? " (SIG" + std::string(name) + ")" : "");
}

Process::Process(const Launch &launch) : pid_(start(launch)) {}

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
    ExitStatus status;
    if (ended == pid_ && WIFSIGNALED(raw)) {
        status.signal = WTERMSIG(raw);
    } else if (ended == pid_) {
        status.code = WEXITSTATUS(raw);
    } else {
        status.code = 255; // somebody else took the status; report it as unclean
    }
    status_ = status;
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

CommandResult runCommand(const std::vector<std::string> &arguments,
                         const std::map<std::string, std::string> &environment, std::chrono::milliseconds deadline) {
    const TemporaryDirectory directory;
    const LogFile output(directory.file("output"));
    const LogFile errors(directory.file("errors"));
    Process process({arguments, environment, output.path(), errors.path()});
    const std::optional<ExitStatus> status = process.wait(deadline);
    if (!status) {
        process.end();
        throw std::runtime_error(arguments[0] + " has not ended in time; output: " + output.text() + errors.text());
    }
    return {*status, output.text(), errors.text()};
}

} // namespace harness
