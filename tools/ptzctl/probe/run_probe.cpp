// SPDX-License-Identifier: Apache-2.0
#include "probe/run_probe.h"

#include <chrono>

#include "host_processes.h"
#include "output.h"
#include "session.h"
#include "sources_of_credentials.h"

namespace ptzctl {

namespace {

using nlohmann::ordered_json;
using std::chrono::microseconds;

// A part of the time-out is for the start of the program and its output, and a smaller one for the report of a process.
constexpr double kShareOfProcess = 0.95;
constexpr double kShareOfRequests = 0.9;

microseconds shareOf(const Invocation &invocation, double share) {
    return std::chrono::duration_cast<microseconds>(std::chrono::duration<double>(invocation.timeoutSeconds * share));
}

ordered_json jsonOf(const Findings &findings) {
    ordered_json values = ordered_json::object();
    for (const Measurement &measured : findings.measurements) {
        values[measured.label] = std::stod(measured.value);
    }
    const State state = stateOf(findings);
    return {
        {"state", stateName(state)}, {"code", static_cast<int>(state)}, {"text", textOf(findings)}, {"values", values}};
}

/** Probes a camera within a process of its own. */
void probeHost(const Invocation &invocation, const std::string &host, Report &report) {
    const auto start = std::chrono::steady_clock::now();
    snmp::startLibrary(kProgram, invocation.credentials, kSourcesOfCredentials);
    const microseconds time = shareOf(invocation, kShareOfRequests);
    snmp::Session session({host, time, kSourcesOfPassphrases});
    const auto elapsed = std::chrono::duration_cast<microseconds>(std::chrono::steady_clock::now() - start);
    const Findings findings = probe(session, *invocation.expectations, time - elapsed);
    report.data = jsonOf(findings);
    report.text = pluginLine(findings);
}

/** Makes the report of a process that could not probe its camera. */
Report reportOf(const Outcome &outcome, State unreadable) {
    const State state = outcome.code == ExitCode::NoAnswer ? unreadable : State::Unknown;
    return {pluginLine(state, outcome.error),
            {{"state", stateName(state)}, {"code", static_cast<int>(state)}, {"text", outcome.error}}};
}

} // namespace

State runProbe(const Invocation &invocation, std::ostream &output) {
    if (invocation.hosts.empty()) {
        return reportProbeError("no camera given; use --host, --hosts-file or PTZCTL_HOST", output);
    }
    Supervision supervision;
    supervision.longest = std::chrono::duration_cast<std::chrono::milliseconds>(shareOf(invocation, kShareOfProcess));
    const std::vector<Outcome> outcomes = runOnAll(
        invocation.hosts, [&](const std::string &host, Report &report) { probeHost(invocation, host, report); },
        supervision);
    const bool isOne = outcomes.size() == 1;
    State worst = State::Ok;
    std::string lines;
    ordered_json list = ordered_json::array();
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        const Report report = outcomes[i].code == ExitCode::Done
                                  ? outcomes[i].report
                                  : reportOf(outcomes[i], invocation.expectations->unreadable);
        worst = worse(worst, static_cast<State>(report.data.at("code").get<int>()));
        lines += (isOne ? "" : invocation.hosts[i] + ": ") + report.text + "\n";
        list.push_back({{"host", invocation.hosts[i]}});
        list.back().update(report.data);
    }
    constexpr auto kReplace = ordered_json::error_handler_t::replace;
    output << (invocation.json ? (isOne ? list.front() : list).dump(2, ' ', false, kReplace) + "\n" : lines);
    requireWritten(output);
    return worst;
}

State reportProbeError(const std::string &error, std::ostream &output) {
    output << pluginLine(State::Unknown, error) << std::endl;
    return State::Unknown;
}

} // namespace ptzctl
