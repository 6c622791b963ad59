// SPDX-License-Identifier: Apache-2.0
#include "rule.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include <fmt/format.h>

#include "rules/families.h"

namespace ptzctl::check {

namespace {

constexpr std::array<const char *, 4> kLevels = {"read", "writes", "moves", "disruptive"};
constexpr std::array<const char *, 6> kResults = {"pass", "fail", "differs", "not-equipped", "skipped", "error"};

/** Results from the least to the most grave one. */
constexpr std::array<Result, 6> kGravity = {Result::NotEquipped, Result::Skipped, Result::Pass,
                                            Result::Differs,     Result::Error,   Result::Fail};

bool isLessGrave(const Detail &left, const Detail &right) {
    const auto place = [](const Detail &detail) {
        return std::find(kGravity.begin(), kGravity.end(), detail.result) - kGravity.begin();
    };
    return place(left) < place(right);
}

} // namespace

const std::vector<Rule> &rules() {
    static const std::vector<Rule> all = [] {
        std::vector<Rule> list;
        // The responses come last, because they are those to all other rules.
        for (const auto &family : {objectRules, consistencyRules, walkRules, getRules, writeRules, moveRules,
                                   motionRules, disruptiveRules, responseRules}) {
            const std::vector<Rule> more = family();
            list.insert(list.end(), more.begin(), more.end());
        }
        return list;
    }();
    return all;
}

const Rule &ruleNamed(const std::string &name) {
    const auto found =
        std::find_if(rules().begin(), rules().end(), [&](const Rule &rule) { return rule.name == name; });
    if (found == rules().end()) {
        throw std::invalid_argument("there is no rule '" + name + "'; `ptzctl check --list-rules` shows the names");
    }
    return *found;
}

const char *nameOf(Level level) {
    return kLevels.at(static_cast<std::size_t>(level));
}

const char *nameOf(Result result) {
    return kResults.at(static_cast<std::size_t>(result));
}

Result resultNamed(const std::string &name) {
    const auto *const found = std::find(kResults.begin(), kResults.end(), name);
    if (found == kResults.end()) {
        throw std::invalid_argument("there is no result '" + name + "'");
    }
    return static_cast<Result>(found - kResults.begin());
}

bool isTrouble(Result result) {
    return result == Result::Fail || result == Result::Error;
}

/** Writes how many objects have passed, and why others could not be tried. */
std::string passText(const std::vector<Detail> &details, std::ptrdiff_t passed) {
    const auto isSkipped = [](const Detail &detail) { return detail.result == Result::Skipped; };
    const auto skipped = std::count_if(details.begin(), details.end(), isSkipped);
    if (skipped == 0) {
        return fmt::format("all {}", passed);
    }
    const auto first = std::find_if(details.begin(), details.end(), isSkipped);
    return fmt::format("{} of {}; skipped: {}: {}{}", passed, passed + skipped, first->object, first->observation,
                       skipped > 1 ? fmt::format(", and {} more", skipped - 1) : "");
}

Finding summarize(std::vector<Detail> details) {
    const auto worst = std::max_element(details.begin(), details.end(), isLessGrave);
    if (worst == details.end() || worst->result == Result::NotEquipped) {
        return {Result::NotEquipped, "the camera has none of the objects", std::move(details)};
    }
    const auto count = std::count_if(details.begin(), details.end(),
                                     [&](const Detail &detail) { return detail.result == worst->result; });
    Finding finding = {worst->result, "", {}};
    if (worst->result == Result::Pass) {
        finding.observation =
            details.size() == 1 ? worst->object + ": " + worst->observation : passText(details, count);
    } else {
        finding.observation = fmt::format("{}: {}", worst->object, worst->observation);
        finding.observation += count > 1 ? fmt::format(", and {} more", count - 1) : "";
    }
    finding.details = std::move(details);
    return finding;
}

} // namespace ptzctl::check
