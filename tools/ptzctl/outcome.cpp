// SPDX-License-Identifier: Apache-2.0
#include "outcome.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

namespace ptzctl {

namespace {

using nlohmann::ordered_json;

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
    } catch (const snmp::Failure &failure) {
        outcome.code = exitCodeOf(failure.cause());
        outcome.error = failure.what();
        outcome.advice = failure.advice();
    } catch (const std::invalid_argument &error) {
        outcome.code = ExitCode::Usage;
        outcome.error = error.what();
    } catch (const std::exception &error) {
        outcome.code = ExitCode::BadResponse;
        outcome.error = error.what();
    }
    return outcome;
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

std::string summaryText(const std::vector<Outcome> &outcomes) {
    constexpr std::array<std::pair<ExitCode, const char *>, 6> kWords = {{{ExitCode::Done, "done"},
                                                                          {ExitCode::Refused, "failed"},
                                                                          {ExitCode::SomeFailed, "failed in part"},
                                                                          {ExitCode::NoAnswer, "no answer"},
                                                                          {ExitCode::Usage, "wrong usage"},
                                                                          {ExitCode::BadResponse, "error"}}};
    std::string text = std::to_string(outcomes.size()) + (outcomes.size() == 1 ? " camera" : " cameras");
    const char *separator = ": ";
    for (const auto &[code, word] : kWords) {
        const auto count = std::count_if(outcomes.begin(), outcomes.end(),
                                         [code = code](const Outcome &outcome) { return outcome.code == code; });
        if (count != 0) {
            text += separator + std::to_string(count) + " " + word;
            separator = ", ";
        }
    }
    return text + "\n";
}

std::string errorText(const std::string &host, const Outcome &outcome) {
    if (outcome.error.empty()) {
        return "";
    }
    return "ptzctl: " + (host.empty() ? "" : host + ": ") + outcome.error + "\n" +
           (outcome.advice.empty() ? "" : "  " + outcome.advice + "\n");
}

std::string errorsText(const std::vector<std::string> &hosts, const std::vector<Outcome> &outcomes) {
    std::string text;
    for (std::size_t i = 0; i < hosts.size(); ++i) {
        text += errorText(hosts[i], outcomes[i]);
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
