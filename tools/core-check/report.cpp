// SPDX-License-Identifier: Apache-2.0
#include "report.h"

#include <algorithm>
#include <iomanip>
#include <iostream>

#include <nlohmann/json.hpp>

namespace core_check {

namespace {

constexpr int kNameWidth = 53;

} // namespace

void Table::add(const Result &result) {
    if (group_ != result.group) {
        group_ = result.group;
        std::cout << group_ << '\n';
    }
    std::cout << "  " << (result.passed ? "ok    " : "FAILED") << std::setw(9) << std::fixed << std::setprecision(1)
              << result.milliseconds << "  ";
    if (result.detail.empty()) {
        std::cout << result.name;
    } else {
        std::cout << std::left << std::setw(kNameWidth) << result.name << std::right << ' ' << result.detail;
    }
    std::cout << std::endl; // at once: the next check may take a while
}

std::string jsonOf(const std::string &library, const std::vector<Result> &results) {
    using nlohmann::ordered_json;
    ordered_json checks = ordered_json::array();
    for (const Result &result : results) {
        checks.push_back({{"group", result.group},
                          {"check", result.name},
                          {"passed", result.passed},
                          {"milliseconds", result.milliseconds},
                          {"detail", result.detail}});
    }
    const auto failed =
        std::count_if(results.begin(), results.end(), [](const Result &result) { return !result.passed; });
    return ordered_json{{"library", library}, {"failed", failed}, {"checks", checks}}.dump(
        2, ' ', false, ordered_json::error_handler_t::replace);
}

} // namespace core_check
