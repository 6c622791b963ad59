// SPDX-License-Identifier: Apache-2.0
#include "host_processes.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

#include <sys/wait.h>
#include <unistd.h>

namespace ptzctl {

namespace {

using nlohmann::ordered_json;

/** A child process with a command. */
struct Child {
    pid_t pid;
    int output; ///< descriptor to read the outcome from
};

std::string serialize(const Outcome &outcome) {
    return ordered_json{{"code", static_cast<int>(outcome.code)},
                        {"text", outcome.report.text},
                        {"data", outcome.report.data},
                        {"error", outcome.error},
                        {"advice", outcome.advice}}
        .dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

Outcome parseOutcome(const std::string &text) {
    const ordered_json parts = ordered_json::parse(text);
    return {static_cast<ExitCode>(parts.at("code").get<int>()),
            {parts.at("text"), parts.at("data")},
            parts.at("error"),
            parts.at("advice")};
}

[[noreturn]] void failWith(const char *what) {
    throw std::system_error(errno, std::generic_category(), what);
}

void writeWhole(int descriptor, const std::string &text) {
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t count = write(descriptor, text.data() + done, text.size() - done);
        if (count < 0 && errno != EINTR) {
            return; // the reader is gone
        }
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
}

std::string readWhole(int descriptor) {
    std::string text;
    std::array<char, 4096> buffer{};
    while (true) {
        const ssize_t count = read(descriptor, buffer.data(), buffer.size());
        if (count == 0 || (count < 0 && errno != EINTR)) {
            return text;
        }
        text.append(buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    }
}

Child start(const std::function<void(Report &)> &command) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        failWith("pipe");
    }
    const pid_t pid = fork();
    if (pid < 0) {
        failWith("fork");
    }
    if (pid == 0) {
        close(ends[0]);
        // The parent may block signals that have to end this process.
        sigset_t none;
        sigemptyset(&none);
        pthread_sigmask(SIG_SETMASK, &none, nullptr);
        writeWhole(ends[1], serialize(outcomeOf(command)));
        _exit(0);
    }
    close(ends[1]);
    return {pid, ends[0]};
}

Outcome finish(const Child &child) {
    const std::string text = readWhole(child.output);
    close(child.output);
    int status = 0;
    while (waitpid(child.pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        return {ExitCode::BadResponse, {}, "the child process died before it had an outcome", ""};
    }
    return parseOutcome(text);
}

} // namespace

std::vector<Outcome> runOnAll(const std::vector<std::string> &hosts,
                              const std::function<void(const std::string &host, Report &)> &command) {
    std::vector<Child> children;
    children.reserve(hosts.size());
    for (const std::string &host : hosts) {
        children.push_back(start([&](Report &report) { command(host, report); }));
    }
    std::vector<Outcome> outcomes;
    outcomes.reserve(children.size());
    for (const Child &child : children) {
        outcomes.push_back(finish(child));
    }
    return outcomes;
}

} // namespace ptzctl
