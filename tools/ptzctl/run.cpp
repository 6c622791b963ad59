// SPDX-License-Identifier: Apache-2.0
#include "run.h"

#include <chrono>
#include <ctime>
#include <string>

#include "hosts.h"
#include "interruption.h"
#include "screen.h"
#include "session.h"
#include "traps.h"

namespace ptzctl {

namespace {

constexpr const char *kClearScreen = "\033[H\033[2J";

std::vector<Outcome> askAll(const Invocation &invocation) {
    const auto timeout =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::duration<double>(invocation.timeoutSeconds));
    return runOnAll(invocation.hosts, [&](const std::string &host, Report &report) {
        startLibrary(invocation.credentials);
        Session session(host, timeout);
        Context context{session, invocation.settings, report};
        invocation.action(context);
    });
}

/** Outcomes as they are written, for people or for programs, with the end of the last line. */
std::string shown(const Invocation &invocation, const std::vector<Outcome> &outcomes) {
    if (!invocation.json) {
        return outcomesText(invocation.hosts, outcomes, invocation.settings.style);
    }
    // A screen that is repeated is one line each time, so that a program can read line by line.
    constexpr auto kReplace = nlohmann::ordered_json::error_handler_t::replace;
    return outcomesJson(invocation.hosts, outcomes).dump(invocation.repeats ? -1 : 2, ' ', false, kReplace) + "\n";
}

ExitCode watch(const Invocation &invocation, std::ostream &output, std::ostream &errors, bool terminal) {
    const Interruption interruption;
    const auto interval = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::duration<double>(invocation.intervalSeconds));
    const bool isScreen = terminal && !invocation.json;
    std::string previous;
    for (int look = 1;; ++look) {
        const std::vector<Outcome> outcomes = askAll(invocation);
        // Ctrl-C has also ended the processes that were asking.
        if (interruption.within(std::chrono::milliseconds(0))) {
            return ExitCode::Done;
        }
        const std::string text = shown(invocation, outcomes);
        if (isScreen) {
            output << kClearScreen << screenHeading(invocation, std::time(nullptr))
                   << changesMarked(text, previous, invocation.settings.style) << std::flush;
        } else {
            output << text << std::flush;
        }
        errors << errorsText(invocation.hosts, outcomes);
        previous = text;
        if (look == invocation.count) {
            return overallCode(outcomes);
        }
        if (interruption.within(interval)) {
            return ExitCode::Done;
        }
    }
}

bool agreed(const Invocation &invocation, std::istream &input, std::ostream &errors, bool terminal) {
    if (invocation.question.empty() || invocation.yes) {
        return true;
    }
    if (!terminal) {
        errors << "ptzctl: nobody is there to ask; use --yes\n";
        return false;
    }
    for (const std::string &host : invocation.hosts) {
        errors << host << '\n';
    }
    errors << invocation.question << " [y/N] " << std::flush;
    std::string answer;
    std::getline(input, answer);
    if (answer != "y" && answer != "yes") {
        errors << "Nothing has been sent.\n";
        return false;
    }
    return true;
}

ExitCode ask(const Invocation &invocation, std::istream &input, std::ostream &output, std::ostream &errors,
             bool terminal) {
    if (invocation.hosts.empty()) {
        errors << "ptzctl: which camera?\n  use --host or PTZCTL_HOST\n";
        return ExitCode::Usage;
    }
    if (!agreed(invocation, input, errors, terminal)) {
        return ExitCode::Usage;
    }
    if (invocation.repeats) {
        return watch(invocation, output, errors, terminal);
    }
    output << std::flush;
    const std::vector<Outcome> outcomes = askAll(invocation);
    output << shown(invocation, outcomes) << std::flush;
    errors << errorsText(invocation.hosts, outcomes);
    return overallCode(outcomes);
}

ExitCode receive(const Invocation &invocation, std::ostream &errors) {
    const Outcome outcome = outcomeOf([&](Report & /*report*/) { receiveTraps(invocation); });
    if (!outcome.error.empty()) {
        errors << "ptzctl: " << outcome.error << "\n" << (outcome.advice.empty() ? "" : "  " + outcome.advice + "\n");
    }
    return outcome.code;
}

} // namespace

ExitCode run(const Invocation &invocation, std::istream &input, std::ostream &output, std::ostream &errors,
             bool terminal) {
    if (invocation.receives) {
        return receive(invocation, errors);
    }
    if (invocation.local) {
        output << invocation.local();
        return ExitCode::Done;
    }
    return ask(invocation, input, output, errors, terminal);
}

} // namespace ptzctl
