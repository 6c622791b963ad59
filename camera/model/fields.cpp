// SPDX-License-Identifier: Apache-2.0
#include "fields.h"

#include <algorithm>

namespace camera {

nlohmann::json nested(const nlohmann::json &dotted) {
    nlohmann::json result = nlohmann::json::object();
    for (const auto &item : dotted.items()) {
        nlohmann::json *level = &result;
        std::string rest = item.key();
        for (std::size_t dot = rest.find('.'); dot != std::string::npos; dot = rest.find('.')) {
            level = &(*level)[rest.substr(0, dot)];
            rest.erase(0, dot + 1);
        }
        (*level)[rest] = item.value();
    }
    return result;
}

std::vector<std::string> membersOf(const std::vector<std::string> &keys, const std::string &group) {
    const std::string prefix = group.empty() ? "" : group + ".";
    std::vector<std::string> members;
    for (const std::string &key : keys) {
        if (key.compare(0, prefix.size(), prefix) != 0 || key.size() == prefix.size()) {
            continue;
        }
        const std::string member = key.substr(prefix.size(), key.find('.', prefix.size()) - prefix.size());
        if (std::find(members.begin(), members.end(), member) == members.end()) {
            members.push_back(member);
        }
    }
    return members;
}

Problem readOnly(const std::string &key) {
    return {key, "read-only: it follows from commands"};
}

Problem unknownKey(const std::vector<std::string> &keys, const std::string &key) {
    std::string group = key;
    std::vector<std::string> members;
    do {
        const std::size_t dot = group.rfind('.');
        group = dot == std::string::npos ? "" : group.substr(0, dot);
        members = membersOf(keys, group);
    } while (members.empty() && !group.empty());
    return {key, "unknown key; expected one of: " + listed(members)};
}

std::optional<Problem> checkWithin(const std::string &key, std::int64_t value, std::int64_t lowest,
                                   std::int64_t highest, const std::string &limits) {
    if (value >= lowest && value <= highest) {
        return std::nullopt;
    }
    return Problem{key, mismatch(integerExpected(lowest, highest) + " (" + limits + ")", value)};
}

std::optional<Problem> checkAtLeast(const std::string &key, std::int64_t value, std::int64_t lowest,
                                    const std::string &limit) {
    if (value >= lowest) {
        return std::nullopt;
    }
    return Problem{key, mismatch("an integer of at least " + std::to_string(lowest) + " (" + limit + ")", value)};
}

std::optional<Problem> firstOf(std::initializer_list<std::optional<Problem>> problems) {
    for (const std::optional<Problem> &problem : problems) {
        if (problem) {
            return problem;
        }
    }
    return std::nullopt;
}

} // namespace camera
