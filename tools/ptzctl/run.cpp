// SPDX-License-Identifier: Apache-2.0
#include "run.h"

#include <chrono>
#include <ctime>
#include <string>

#include "commands/traps.h"
#include "host_processes.h"
#include "output.h"
#include "progress.h"
#include "screen.h"
#include "session.h"
#include "signal_wait.h"
#include "sources_of_credentials.h"

namespace ptzctl {

namespace {

constexpr const char *kClearScreen = "\033[H\033[2J";

std::vector<Outcome> runAction(const Invocation &invocation, const Supervision &supervision = {}) {
    const auto timeout =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::duration<double>(invocation.timeoutSeconds));
    const auto command = [&](const std::string &host, Report &report) {
        snmp::startLibrary(kProgram, invocation.credentials, kSourcesOfCredentials);
        const snmp::SessionOptions options = {host, timeout, kSourcesOfPassphrases};
        if (invocation.sessionAction) {
            return invocation.sessionAction(options, report);
        }
        snmp::Session session(options);
        Context context{session, invocation.settings, report};
        invocation.action(context);
    };
    return runOnAll(invocation.hosts, command, supervision);
}

/** Runs the action with a line of progress on a terminal. */
std::vector<Outcome> runWithProgress(const Invocation &invocation, std::ostream &errors) {
    constexpr std::size_t kFewCameras = 10;
    Supervision supervision;
    supervision.passesSignals = invocation.endsChildrenGently;
    if (!invocation.showsProgress || invocation.hosts.size() <= kFewCameras) {
        return runAction(invocation, supervision);
    }
    Progress progress(errors, invocation.hosts.size());
    supervision.ended = [&progress](const Outcome &outcome) { progress.add(outcome); };
    return runAction(invocation, supervision);
}

/** Writes outcomes as text or as JSON, with a final line break. */
std::string outputOf(const Invocation &invocation, const std::vector<Outcome> &outcomes) {
    if (!invocation.json) {
        return outcomesText(invocation.hosts, outcomes, invocation.settings.style) +
               (outcomes.size() > 1 ? "\n" + summaryText(outcomes) : "");
    }
    // Repeated output is one line each time, so that a program can read it line by line.
    constexpr auto kReplace = nlohmann::ordered_json::error_handler_t::replace;
    return outcomesJson(invocation.hosts, outcomes).dump(invocation.repeats ? -1 : 2, ' ', false, kReplace) + "\n";
}

ExitCode watch(const Invocation &invocation, std::ostream &output, std::ostream &errors, bool terminal) {
    const SignalWait interruption;
    const auto interval = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::duration<double>(invocation.intervalSeconds));
    const bool isScreen = terminal && !invocation.json;
    std::string previous;
    for (int round = 1;; ++round) {
        const std::vector<Outcome> outcomes = runAction(invocation);
        // Ctrl-C has ended the child processes, too.
        if (interruption.waitFor(std::chrono::milliseconds(0))) {
            return ExitCode::Done;
        }
        const std::string text = outputOf(invocation, outcomes);
        if (isScreen) {
            output << kClearScreen << screenHeading(invocation, std::time(nullptr))
                   << markChanges(text, previous, invocation.settings.style) << std::flush;
        } else {
            output << text << std::flush;
        }
        errors << errorsText(invocation.hosts, outcomes);
        requireWritten(output);
        previous = text;
        if (round == invocation.count) {
            return overallCode(outcomes);
        }
        if (interruption.waitFor(interval)) {
            return ExitCode::Done;
        }
    }
}

bool confirm(const Invocation &invocation, std::istream &input, std::ostream &errors, bool terminal) {
    if (invocation.asksPerson && !terminal) {
        errors << "ptzctl: --ask needs a terminal for input and output\n";
        return false;
    }
    if (invocation.question.empty() || invocation.yes) {
        return true;
    }
    if (!terminal) {
        errors << "ptzctl: input and output are not a terminal; use --yes\n";
        return false;
    }
    for (const std::string &host : invocation.hosts) {
        errors << host << '\n';
    }
    errors << invocation.question << " [y/N] " << std::flush;
    std::string answer;
    std::getline(input, answer);
    if (answer != "y" && answer != "yes") {
        errors << "Nothing was sent.\n";
        return false;
    }
    return true;
}

ExitCode runOnCameras(const Invocation &invocation, std::istream &input, std::ostream &output, std::ostream &errors,
                      bool terminal) {
    if (invocation.hosts.empty()) {
        errors << "ptzctl: no camera given\n  use --host, --hosts-file or PTZCTL_HOST\n";
        return ExitCode::Usage;
    }
    if (!confirm(invocation, input, errors, terminal)) {
        return ExitCode::Usage;
    }
    if (invocation.repeats) {
        return watch(invocation, output, errors, terminal);
    }
    output << std::flush;
    const std::vector<Outcome> outcomes = runWithProgress(invocation, errors);
    output << outputOf(invocation, outcomes) << std::flush;
    errors << errorsText(invocation.hosts, outcomes);
    if (invocation.afterwards) {
        invocation.afterwards(outcomes);
    }
    return overallCode(outcomes);
}

ExitCode execute(const Invocation &invocation, std::istream &input, std::ostream &output, std::ostream &errors,
                 bool terminal) {
    if (invocation.receives) {
        receiveTraps(invocation, output, errors);
        return ExitCode::Done;
    }
    if (invocation.local) {
        output << invocation.local();
        return ExitCode::Done;
    }
    return runOnCameras(invocation, input, output, errors, terminal);
}

} // namespace

ExitCode run(const Invocation &invocation, std::istream &input, std::ostream &output, std::ostream &errors,
             bool terminal) {
    ExitCode code = ExitCode::Done;
    const Outcome outcome = outcomeOf([&](Report & /*report*/) {
        code = execute(invocation, input, output, errors, terminal);
        requireWritten(output);
    });
    errors << errorText("", outcome);
    return outcome.code == ExitCode::Done ? code : outcome.code;
}

} // namespace ptzctl
