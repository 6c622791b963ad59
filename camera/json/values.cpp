// SPDX-License-Identifier: Apache-2.0
#include "values.h"

#include <limits>

namespace camera {

std::string toString(const Problem &problem) {
    return problem.path.empty() ? problem.text : problem.path + ": " + problem.text;
}

std::string joinPath(std::string_view front, std::string_view back) {
    std::string path(front);
    if (!front.empty() && !back.empty() && back.front() != '[') {
        path += '.';
    }
    return path.append(back);
}

std::optional<std::int64_t> integerIn(const nlohmann::json &value, std::int64_t lowest, std::int64_t highest) {
    if (!value.is_number_integer()) {
        return std::nullopt;
    }
    constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (value.is_number_unsigned() && value.get<std::uint64_t>() > kLargest) {
        return std::nullopt;
    }
    const auto number = value.get<std::int64_t>();
    if (number < lowest || number > highest) {
        return std::nullopt;
    }
    return number;
}

std::optional<std::string> textIn(const nlohmann::json &value, std::size_t longest) {
    if (!value.is_string()) {
        return std::nullopt;
    }
    const auto &text = value.get_ref<const std::string &>();
    if (text.size() > longest || text.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    return text;
}

std::string integerExpected(std::int64_t lowest, std::int64_t highest) {
    return "an integer from " + std::to_string(lowest) + " to " + std::to_string(highest);
}

std::string shown(const nlohmann::json &value) {
    constexpr std::size_t kLongest = 60;
    std::string text = value.dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
    if (text.size() > kLongest) {
        text.resize(kLongest);
        text += "...";
    }
    return text;
}

std::string mismatch(const std::string &expected, const nlohmann::json &found) {
    return "expected " + expected + ", found " + shown(found);
}

std::string listed(const std::vector<std::string> &names) {
    std::string text;
    for (const std::string &name : names) {
        text += (text.empty() ? "" : ", ") + name;
    }
    return text.empty() ? "none" : text;
}

} // namespace camera
