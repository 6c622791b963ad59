// SPDX-License-Identifier: Apache-2.0
#include "probe/plugin_line.h"

#include <algorithm>
#include <array>

#include "octets_text.h"

namespace ptzctl {

namespace {

constexpr const char *kService = "CAMERA ";

constexpr std::array<State, 4> kFromWorst = {State::Critical, State::Warning, State::Unknown, State::Ok};

/** Replaces what would end the line or its text. */
std::string inOneLine(std::string text) {
    constexpr char kDelete = '\x7F';
    std::replace_if(
        text.begin(), text.end(), [](unsigned char octet) { return octet < ' ' || octet == kDelete || octet == '|'; },
        '.');
    return text;
}

std::string performanceData(const Measurement &measured) {
    return "'" + measured.label + "'=" + measured.value + ";" + measured.warning + ";" + measured.critical + ";" +
           measured.lowest + ";" + measured.highest;
}

} // namespace

const char *stateName(State state) {
    constexpr std::array<const char *, 4> kNames = {"OK", "WARNING", "CRITICAL", "UNKNOWN"};
    return kNames.at(static_cast<std::size_t>(state));
}

State worse(State left, State right) {
    return *std::find_if(kFromWorst.begin(), kFromWorst.end(),
                         [&](State state) { return state == left || state == right; });
}

State stateOf(const Findings &findings) {
    State state = State::Ok;
    for (const Statement &statement : findings.statements) {
        state = worse(state, statement.state);
    }
    return state;
}

std::string textOf(const Findings &findings) {
    std::string text;
    for (const State state : kFromWorst) {
        for (const Statement &statement : findings.statements) {
            if (statement.state == state) {
                text += (text.empty() ? "" : ", ") + inOneLine(statement.text);
            }
        }
    }
    return text;
}

std::string pluginLine(const Findings &findings) {
    std::string line = pluginLine(stateOf(findings), textOf(findings));
    const char *separator = "|";
    for (const Measurement &measured : findings.measurements) {
        line += separator + performanceData(measured);
        separator = " ";
    }
    return line;
}

std::string pluginLine(State state, const std::string &text) {
    return std::string(kService) + stateName(state) + " - " + inOneLine(text);
}

std::string harmless(const std::string &text) {
    constexpr std::size_t kLongest = 64;
    const std::string special = "|<>&`$;\\\"'";
    std::string result = snmp::printable(text.substr(0, kLongest));
    std::replace_if(
        result.begin(), result.end(), [&](char character) { return special.find(character) != std::string::npos; },
        '.');
    return result;
}

} // namespace ptzctl
