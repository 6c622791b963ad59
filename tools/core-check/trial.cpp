// SPDX-License-Identifier: Apache-2.0
#include "trial.h"

#include <array>
#include <csignal>
#include <cstring>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "library.h"

namespace core_check {

namespace {

using Clock = std::chrono::steady_clock;
using nlohmann::json;

std::string keyOf(const std::string &group, const std::string &name) {
    return group + '\n' + name;
}

/** A pipe whose ends are closed at the end of its life. */
class Pipe {
public:
    Pipe() {
        if (::pipe2(ends_.data(), O_CLOEXEC) != 0) {
            throw std::system_error(errno, std::generic_category(), "pipe");
        }
    }
    ~Pipe() {
        closeInput();
        ::close(ends_[0]);
    }
    Pipe(const Pipe &) = delete;
    Pipe &operator=(const Pipe &) = delete;

    int output() const {
        return ends_[0];
    }
    int input() const {
        return ends_[1];
    }
    void closeInput() {
        if (ends_[1] >= 0) {
            ::close(std::exchange(ends_[1], -1));
        }
    }

private:
    std::array<int, 2> ends_{-1, -1};
};

void writeAll(int descriptor, const std::string &text) {
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = ::write(descriptor, text.data() + written, text.size() - written);
        if (count < 0) {
            ::_exit(1); // nobody listens any more
        }
        written += static_cast<std::size_t>(count);
    }
}

pid_t forkProcess() {
    const pid_t pid = ::fork();
    if (pid < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    return pid;
}

/** Describes the end of a process that should not have ended. */
std::string endOf(int status) {
    if (WIFSIGNALED(status)) {
        const char *name = ::sigabbrev_np(WTERMSIG(status));
        return std::string("the process was killed by SIG") + (name != nullptr ? name : "?");
    }
    return "the library ended the process with status " + std::to_string(WEXITSTATUS(status));
}

/** Prepares a child process: it dies with its parent, leaves no core file and keeps standard output for the report. */
void prepareChild() {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    ::dup2(STDERR_FILENO, STDOUT_FILENO);
}

/** Runs an action. @return an empty text, or the reason of its failure */
std::string failureOf(const std::function<void()> &action) {
    try {
        action();
        return "";
    } catch (const Failure &failure) {
        return failure.what();
    } catch (const std::exception &error) {
        return std::string("an exception: ") + error.what();
    } catch (...) {
        return "an exception that is no std::exception";
    }
}

} // namespace

void Trial::send(const json &message) const {
    writeAll(descriptor_, message.dump(-1, ' ', true, json::error_handler_t::replace) + '\n');
}

bool Trial::hasFailed(const std::string &group, const std::string &name) const {
    return failed_.count(keyOf(group, name)) != 0;
}

bool Trial::check(const std::string &group, const std::string &name, const std::function<std::string()> &action,
                  Limit limit) {
    if (hasFailed(group, name)) {
        return false;
    }
    send({{"group", group}, {"name", name}});
    std::string detail;
    const Clock::time_point start = Clock::now();
    std::string failure = failureOf([&] { detail = action(); });
    const std::chrono::duration<double, std::milli> duration = Clock::now() - start;
    if (limit == Limit::kCall && duration > kCallLimit) {
        failure = "too slow: a call must end after about two seconds" + (failure.empty() ? "" : "; " + failure);
    }
    send({{"passed", failure.empty()},
          {"milliseconds", duration.count()},
          {"detail", failure.empty() ? detail : failure}});
    return failure.empty();
}

void Supervisor::run(const Checks &checks) {
    while (!runOnce(checks)) {
    }
}

void Supervisor::add(const Result &result) {
    const std::string key = keyOf(result.group, result.name);
    const bool isNew = result.passed ? passed_.insert(key).second : failed_.insert(key).second;
    if (isNew) {
        report_(result);
    }
    if (!result.passed) {
        passed_.erase(key);
    }
}

bool Supervisor::hasPassed(const std::string &group, const std::string &name) const {
    return passed_.count(keyOf(group, name)) != 0;
}

void Supervisor::fail(Result result, const std::string &detail) {
    result.passed = false;
    result.detail = detail;
    add(result);
}

bool Supervisor::runOnce(const Checks &checks) {
    Pipe pipe;
    const pid_t pid = forkProcess();
    if (pid == 0) {
        ::setpgid(0, 0);
        prepareChild();
        Trial trial(pipe.input(), failed_);
        checks(trial);
        writeAll(pipe.input(), "{}\n");
        ::_exit(0);
    }
    ::setpgid(pid, pid);
    pipe.closeInput();
    Result current{"library", "start of a process", false, 0, ""};
    bool hangs = false;
    const bool complete = collect(pipe.output(), current, hangs);
    if (hangs || complete) {
        ::kill(-pid, SIGKILL);
    }
    int status = 0;
    ::waitpid(pid, &status, 0);
    if (complete) {
        return true;
    }
    const std::size_t failedBefore = failed_.size();
    fail(current,
         hangs ? "hangs: no answer within " + std::to_string(patience_.count() / 1000) + " seconds" : endOf(status));
    if (failed_.size() == failedBefore) {
        // The process ended again after the same check.
        fail({"library", "remaining checks", false, 0, ""}, "not made: " + endOf(status));
        return true;
    }
    return false;
}

bool Supervisor::collect(int descriptor, Result &current, bool &hangs) {
    std::string received;
    for (Clock::time_point deadline = Clock::now() + patience_;;) {
        const std::size_t end = received.find('\n');
        if (end != std::string::npos) {
            const json message = json::parse(received.substr(0, end));
            received.erase(0, end + 1);
            if (message.empty()) {
                return true;
            }
            if (message.contains("name")) {
                current = {message.at("group"), message.at("name"), false, 0, ""};
            } else {
                current.passed = message.at("passed");
                current.milliseconds = message.at("milliseconds");
                current.detail = message.at("detail");
                add(current);
            }
            deadline = Clock::now() + patience_;
            continue;
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        pollfd readable{descriptor, POLLIN, 0};
        const int ready = left.count() <= 0 ? 0 : ::poll(&readable, 1, static_cast<int>(left.count()));
        if (ready == 0) {
            hangs = true;
            current.milliseconds = static_cast<double>(patience_.count());
            return false;
        }
        std::array<char, 4096> buffer{};
        const ssize_t count = ready < 0 ? -1 : ::read(descriptor, buffer.data(), buffer.size());
        if (count > 0) {
            received.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return false;
        }
    }
}

void inChild(const std::function<void()> &action) {
    Pipe pipe;
    const pid_t pid = forkProcess();
    if (pid == 0) {
        prepareChild();
        const std::string failure = failureOf(action);
        writeAll(pipe.input(), failure);
        ::_exit(failure.empty() ? 0 : 1);
    }
    pipe.closeInput();
    std::string failure;
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = ::read(pipe.output(), buffer.data(), buffer.size())) > 0;) {
        failure.append(buffer.data(), static_cast<std::size_t>(count));
    }
    int status = 0;
    ::waitpid(pid, &status, 0);
    if (!failure.empty()) {
        throw Failure(failure);
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw Failure(endOf(status));
    }
}

} // namespace core_check
