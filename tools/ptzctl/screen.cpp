// SPDX-License-Identifier: Apache-2.0
#include "screen.h"

#include <sstream>
#include <vector>

#include <fmt/chrono.h>

namespace ptzctl {

namespace {

std::vector<std::string> linesOf(const std::string &text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

} // namespace

std::string screenHeading(const Invocation &invocation, std::time_t now) {
    const std::string camera = invocation.hosts.size() == 1 ? invocation.hosts.front() + "  " : "";
    return camera +
           invocation.settings.style.faint(fmt::format("{:%F %T}, every {} s; * changed; Ctrl-C ends",
                                                       fmt::localtime(now), invocation.intervalSeconds)) +
           "\n\n";
}

std::string markChanges(const std::string &text, const std::string &previous, const Style &style) {
    const std::vector<std::string> lines = linesOf(text);
    const std::vector<std::string> before = linesOf(previous);
    if (lines.size() != before.size()) {
        return text;
    }
    std::string marked;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        marked += lines[i] + (lines[i] == before[i] ? "" : "  " + style.active("*")) + "\n";
    }
    return marked;
}

} // namespace ptzctl
