// SPDX-License-Identifier: Apache-2.0
#include "report.h"

#include <algorithm>

#include <fmt/format.h>

namespace ptzctl::check {

std::size_t count(const CheckReport &report, Result result) {
    return static_cast<std::size_t>(
        std::count_if(report.outcomes.begin(), report.outcomes.end(),
                      [&](const RuleOutcome &outcome) { return outcome.finding.result == result; }));
}

std::string summaryText(const CheckReport &report) {
    std::string text;
    for (const Result result :
         {Result::Pass, Result::Fail, Result::Differs, Result::NotEquipped, Result::Skipped, Result::Error}) {
        const std::size_t number = count(report, result);
        if (number > 0 || result == Result::Fail) {
            text += fmt::format("{}{} {}", text.empty() ? "" : ", ", number, nameOf(result));
        }
    }
    return text;
}

} // namespace ptzctl::check
