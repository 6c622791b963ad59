// SPDX-License-Identifier: Apache-2.0
#include "child.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fleet {

namespace {

constexpr int kCannotRun = 127; // as a shell reports it

std::vector<char *> pointersTo(const std::vector<std::string> &texts) {
    std::vector<char *> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string &text : texts) {
        pointers.push_back(const_cast<char *>(text.c_str()));
    }
    pointers.push_back(nullptr);
    return pointers;
}

/** Runs in the child, where nothing may allocate or lock. */
[[noreturn]] void become(char *const *command, char *const *environment, pid_t parent, int output, int errors) {
    if (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || getppid() != parent) {
        _exit(kCannotRun); // the parent ended before the kernel could report it
    }
    setpgid(0, 0);
    const int nothing = open("/dev/null", O_RDONLY);
    if (nothing < 0 || dup2(nothing, STDIN_FILENO) < 0 || dup2(output, STDOUT_FILENO) < 0 ||
        dup2(errors, STDERR_FILENO) < 0) {
        _exit(kCannotRun);
    }
    sigset_t none;
    sigemptyset(&none);
    pthread_sigmask(SIG_SETMASK, &none, nullptr);
    signal(SIGPIPE, SIG_DFL);
    close_range(STDERR_FILENO + 1, ~0U, 0);
    execve(command[0], command, environment);
    _exit(kCannotRun);
}

} // namespace

pid_t startChild(const Launch &launch) {
    const std::vector<char *> command = pointersTo(launch.command);
    const std::vector<char *> environment = pointersTo(launch.environment);
    const int log = open(launch.log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    if (log < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot open " + launch.log);
    }
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child == 0) {
        become(command.data(), environment.data(), parent, launch.output >= 0 ? launch.output : log, log);
    }
    const int error = errno;
    close(log);
    if (child < 0) {
        throw std::system_error(error, std::generic_category(), "cannot start " + launch.command.front());
    }
    return child;
}

std::string endText(int status) {
    if (!WIFSIGNALED(status)) {
        return "ended with status " + std::to_string(WEXITSTATUS(status));
    }
    const char *const name = sigabbrev_np(WTERMSIG(status));
    return "was ended by " + (name != nullptr ? "SIG" + std::string(name) : std::to_string(WTERMSIG(status)));
}

std::vector<std::string> ownEnvironment() {
    std::vector<std::string> environment;
    for (char **entry = environ; *entry != nullptr; ++entry) {
        environment.emplace_back(*entry);
    }
    return environment;
}

} // namespace fleet
