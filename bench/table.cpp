// SPDX-License-Identifier: Apache-2.0
#include "table.h"

#include <algorithm>
#include <cstdio>

#include "statistics.h"

namespace bench {

namespace {

std::string formatted(double value, int decimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

void printLine(const std::string &what, const std::string &value, const std::string &spread,
               const std::string &comparison) {
    std::printf("| %s | %s | %s | %s |\n", what.c_str(), value.c_str(), spread.c_str(), comparison.c_str());
    std::fflush(stdout); // shows progress, since measurements take a while
}

} // namespace

void printHeading(const std::string &name, const std::string &comparison) {
    printLine("**" + name + "**", "", "", comparison);
}

void printRounds(const std::string &what, const std::vector<double> &rounds, const std::string &unit, int decimals,
                 const std::vector<double> &comparison) {
    const auto [lowest, highest] = std::minmax_element(rounds.begin(), rounds.end());
    printLine(what, formatted(median(rounds), decimals) + " " + unit,
              formatted(*lowest, decimals) + " to " + formatted(*highest, decimals),
              comparison.empty() ? "" : formatted(median(comparison), 2));
}

void printValue(const std::string &what, double value, const std::string &unit, int decimals,
                const std::string &comparison) {
    printLine(what, formatted(value, decimals) + " " + unit, "", comparison);
}

} // namespace bench
