// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Parent of a program that becomes a daemon.
 *
 * A daemon leaves its parent: it would survive a crashed test, and its exit status would be lost. This program adopts
 * all descendants that lose their parent, and ends after the last one, with the status of that one. It kills its
 * descendants on SIGTERM and after the end of the test that started it.
 */
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/** Reads the parent's number out of /proc/PID/status; 0 when the process is gone. */
pid_t parentOf(const std::string &directory) {
    static const std::string kField = "PPid:";
    std::ifstream stream(directory + "/status");
    for (std::string line; std::getline(stream, line);) {
        if (line.compare(0, kField.size(), kField) == 0) {
            return static_cast<pid_t>(std::stol(line.substr(kField.size())));
        }
    }
    return 0;
}

void killChildren() {
    for (const auto &entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename().string();
        if (name.find_first_not_of("0123456789") == std::string::npos && parentOf(entry.path().string()) == getpid()) {
            kill(static_cast<pid_t>(std::stol(name)), SIGKILL);
        }
    }
}

/** Takes the status of every child that has ended. @return false when there is no child any more */
bool reap(int &lastStatus) {
    int status = 0;
    pid_t ended = 0;
    while ((ended = waitpid(-1, &status, WNOHANG)) > 0) {
        lastStatus = status;
    }
    return ended == 0 || errno != ECHILD;
}

/** Ends the way a child ended. */
int endLike(int status) {
    if (!WIFSIGNALED(status)) {
        return WEXITSTATUS(status);
    }
    signal(WTERMSIG(status), SIG_DFL);
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_UNBLOCK, &all, nullptr);
    raise(WTERMSIG(status));
    return 128 + WTERMSIG(status);
}

} // namespace

int main(int argc, char **argv) {
    if (argc < 2) {
        std::fputs("usage: agent-guardian PROGRAM [ARGUMENT...]\n", stderr);
        return 2;
    }
    sigset_t watched;
    sigemptyset(&watched);
    sigaddset(&watched, SIGTERM);
    sigaddset(&watched, SIGCHLD);
    sigprocmask(SIG_BLOCK, &watched, nullptr);
    if (prctl(PR_SET_CHILD_SUBREAPER, 1) != 0 || prctl(PR_SET_PDEATHSIG, SIGTERM) != 0) {
        std::perror("prctl");
        return 1;
    }
    const pid_t pid = fork();
    if (pid < 0) {
        std::perror("fork");
        return 1;
    }
    if (pid == 0) {
        sigprocmask(SIG_UNBLOCK, &watched, nullptr);
        execvp(argv[1], argv + 1);
        std::perror(argv[1]);
        _exit(127);
    }
    int status = 0;
    bool ending = false;
    while (reap(status)) {
        int number = 0;
        if (sigwait(&watched, &number) == 0 && number == SIGTERM) {
            ending = true;
        }
        // With every signal anew: a child that was killed may have left children of its own.
        if (ending) {
            killChildren();
        }
    }
    return endLike(status);
}
