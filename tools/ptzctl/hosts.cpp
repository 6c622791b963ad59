// SPDX-License-Identifier: Apache-2.0
#include "hosts.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <exception>
#include <system_error>

#include <sys/wait.h>
#include <unistd.h>

namespace ptzctl {

namespace {

using nlohmann::ordered_json;

/** A command that runs in another process. */
struct Child {
    pid_t pid;
    int output; ///< where its outcome comes from
};

std::string written(const Outcome &outcome) {
    return ordered_json{{"code", static_cast<int>(outcome.code)},
                        {"text", outcome.report.text},
                        {"data", outcome.report.data},
                        {"error", outcome.error},
                        {"advice", outcome.advice}}
        .dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

Outcome readOutcome(const std::string &text) {
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
            return; // nobody reads any more
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
        // Whoever started it may catch signals; this process is to be ended by them.
        sigset_t none;
        sigemptyset(&none);
        pthread_sigmask(SIG_SETMASK, &none, nullptr);
        writeWhole(ends[1], written(outcomeOf(command)));
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
        return {ExitCode::BadAnswer, {}, "the process that asked has ended without an outcome", ""};
    }
    return readOutcome(text);
}

ordered_json jsonOf(const std::string &host, const Outcome &outcome) {
    ordered_json result = {{"host", host}, {"ok", outcome.code == ExitCode::Done}};
    result.update(outcome.report.data);
    if (!outcome.error.empty()) {
        result["error"] = {{"code", static_cast<int>(outcome.code)}, {"text", outcome.error}};
        if (!outcome.advice.empty()) {
            result["error"]["advice"] = outcome.advice;
        }
    }
    return result;
}

} // namespace

Outcome outcomeOf(const std::function<void(Report &)> &command) {
    Outcome outcome;
    try {
        command(outcome.report);
    } catch (const Failure &failure) {
        outcome.code = failure.code();
        outcome.error = failure.what();
        outcome.advice = failure.advice();
    } catch (const std::invalid_argument &error) {
        outcome.code = ExitCode::Usage;
        outcome.error = error.what();
    } catch (const std::exception &error) {
        outcome.code = ExitCode::BadAnswer;
        outcome.error = error.what();
    }
    return outcome;
}

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

ExitCode overallCode(const std::vector<Outcome> &outcomes) {
    const ExitCode first = outcomes.empty() ? ExitCode::Done : outcomes.front().code;
    const bool alike =
        std::all_of(outcomes.begin(), outcomes.end(), [&](const Outcome &outcome) { return outcome.code == first; });
    return alike ? first : ExitCode::SomeFailed;
}

std::string outcomesText(const std::vector<std::string> &hosts, const std::vector<Outcome> &outcomes,
                         const Style &style) {
    if (hosts.size() == 1) {
        return outcomes.front().report.text;
    }
    std::string text;
    for (std::size_t i = 0; i < hosts.size(); ++i) {
        const Outcome &outcome = outcomes[i];
        text += (i == 0 ? "" : "\n") + style.heading(hosts[i]) + "\n" + outcome.report.text;
        if (!outcome.error.empty()) {
            text += style.trouble(outcome.error) + "\n";
        }
    }
    return text;
}

std::string errorsText(const std::vector<std::string> &hosts, const std::vector<Outcome> &outcomes) {
    std::string text;
    for (std::size_t i = 0; i < hosts.size(); ++i) {
        const Outcome &outcome = outcomes[i];
        if (!outcome.error.empty()) {
            text += "ptzctl: " + hosts[i] + ": " + outcome.error + "\n";
            text += outcome.advice.empty() ? "" : "  " + outcome.advice + "\n";
        }
    }
    return text;
}

ordered_json outcomesJson(const std::vector<std::string> &hosts, const std::vector<Outcome> &outcomes) {
    ordered_json list = ordered_json::array();
    for (std::size_t i = 0; i < hosts.size(); ++i) {
        list.push_back(jsonOf(hosts[i], outcomes[i]));
    }
    return hosts.size() == 1 ? list.front() : list;
}

} // namespace ptzctl
