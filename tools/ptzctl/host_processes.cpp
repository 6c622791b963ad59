// SPDX-License-Identifier: Apache-2.0
#include "host_processes.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>

#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "signal_wait.h"

namespace ptzctl {

namespace {

using nlohmann::ordered_json;
using Clock = std::chrono::steady_clock;

/** A child process with a command. */
struct Child {
    std::size_t place; ///< of its host
    pid_t pid;
    int output;       ///< descriptor to read the outcome from
    std::string text; ///< read so far
    Clock::time_point start;
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

/** Starts a command. @return nothing, with a reason in errno, without the resources for another child */
std::optional<Child> start(std::size_t place, const std::vector<Child> &others,
                           const std::function<void(Report &)> &command, bool passesSignals) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        return std::nullopt;
    }
    const pid_t parent = getpid();
    const pid_t pid = fork();
    if (pid == 0) {
        if (passesSignals && (prctl(PR_SET_PDEATHSIG, SIGTERM) != 0 || getppid() != parent)) {
            _exit(1); // without a parent, nothing would end the command
        }
        close(ends[0]);
        for (const Child &other : others) {
            close(other.output);
        }
        // The parent may block signals that have to end this process.
        sigset_t none;
        sigemptyset(&none);
        pthread_sigmask(SIG_SETMASK, &none, nullptr);
        writeWhole(ends[1], serialize(outcomeOf(command)));
        _exit(0);
    }
    const int error = errno;
    close(ends[1]);
    if (pid < 0) {
        close(ends[0]);
        errno = error;
        return std::nullopt;
    }
    return Child{place, pid, ends[0], "", Clock::now()};
}

/** Reads what a child has written. @return false at its end */
bool readMore(Child &child) {
    std::array<char, 4096> buffer{};
    const ssize_t count = read(child.output, buffer.data(), buffer.size());
    child.text.append(buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    return count > 0 || (count < 0 && errno == EINTR);
}

/** Waits for the end of a child. @return its status */
int reap(const Child &child) {
    close(child.output);
    int status = 0;
    while (waitpid(child.pid, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

Outcome finish(const Child &child) {
    const int status = reap(child);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        return {ExitCode::BadResponse, {}, "the child process died before it had an outcome", ""};
    }
    return parseOutcome(child.text);
}

/** Ends a child that takes too long. */
Outcome end(const Child &child) {
    kill(child.pid, SIGKILL);
    reap(child);
    return {ExitCode::NoAnswer, {}, "no answer within the time-out", ""};
}

/** Returns the time until the first child takes too long, in milliseconds; -1 without a limit. */
int timeLeft(const std::vector<Child> &children, const Supervision &supervision) {
    if (supervision.longest.count() == 0) {
        return -1;
    }
    // The children are in the order of their starts.
    const auto left = children.front().start + supervision.longest - Clock::now();
    return std::max(0, static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(left).count()));
}

/** Takes the outcome of a child that has ended or takes too long. */
std::optional<Outcome> outcomeIfEnded(Child &child, bool isReadable, const Supervision &supervision) {
    if (isReadable && !readMore(child)) {
        return finish(child);
    }
    const bool isLate = supervision.longest.count() != 0 && Clock::now() - child.start >= supervision.longest;
    return isLate ? std::optional(end(child)) : std::nullopt;
}

/** Waits until some children have written something, and takes the outcomes of those that have ended. */
void serve(std::vector<Child> &children, const Supervision &supervision, const SignalWait *signals,
           std::vector<Outcome> &outcomes) {
    std::vector<pollfd> watched;
    std::transform(children.begin(), children.end(), std::back_inserter(watched), [](const Child &child) {
        return pollfd{child.output, POLLIN, 0};
    });
    if (signals != nullptr) {
        watched.push_back({signals->descriptor(), POLLIN, 0});
    }
    poll(watched.data(), watched.size(), timeLeft(children, supervision));
    if (signals != nullptr && signals->take()) {
        for (const Child &child : children) {
            kill(child.pid, SIGTERM);
        }
    }
    for (std::size_t i = children.size(); i-- > 0;) {
        if (std::optional<Outcome> outcome = outcomeIfEnded(children[i], watched[i].revents != 0, supervision)) {
            if (supervision.ended) {
                supervision.ended(*outcome);
            }
            outcomes[children[i].place] = std::move(*outcome);
            children.erase(children.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
}

} // namespace

std::vector<Outcome> runOnAll(const std::vector<std::string> &hosts,
                              const std::function<void(const std::string &host, Report &)> &command,
                              const Supervision &supervision) {
    std::vector<Outcome> outcomes(hosts.size());
    std::vector<Child> children;
    const std::unique_ptr<SignalWait> signals = supervision.passesSignals ? std::make_unique<SignalWait>() : nullptr;
    const auto isInterrupted = [&signals] { return signals && signals->hasTaken(); };
    for (std::size_t next = 0; next < hosts.size() || !children.empty();) {
        if (next < hosts.size() && isInterrupted()) {
            outcomes[next++] = {ExitCode::NoAnswer, {}, "not asked, because of a signal", ""};
            continue;
        }
        const bool startsAnother = next < hosts.size() && children.size() < kMostCamerasAtOnce;
        std::optional<Child> child;
        if (startsAnother) {
            child = start(
                next, children, [&](Report &report) { command(hosts[next], report); }, supervision.passesSignals);
        }
        if (child) {
            children.push_back(std::move(*child));
            ++next;
        } else if (!children.empty()) {
            serve(children, supervision, signals.get(), outcomes); // an ended child makes room for another one
        } else {
            const char *reason = strerrordesc_np(errno);
            outcomes[next++] = {
                ExitCode::BadResponse, {}, std::string("no process: ") + (reason != nullptr ? reason : "unknown"), ""};
        }
    }
    return outcomes;
}

} // namespace ptzctl
