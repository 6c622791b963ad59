// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Checks of JSON values in files, control commands and call arguments, and the wording of their error messages.
 */
#ifndef QUARNSNMP_CAMERA_VALUES_H
#define QUARNSNMP_CAMERA_VALUES_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace camera {

/** Longest text of a state in octets. The longest answer has eight texts and stays well below the longest message. */
inline constexpr std::size_t kLongestText = 255;

/** Error in a value: its key path, such as `pan.softPosition.minimum`, and a message. */
struct Problem {
    std::string path;
    std::string text;
};

/** Returns the problem in one line, `path: text`. */
std::string toString(const Problem &problem);

/** Joins a key or an index and a path: ("presets", "[2].name") gives "presets[2].name". */
std::string joinPath(std::string_view front, std::string_view back);

/** Returns the integer in a value; nothing for another type or outside the range, limits included. */
std::optional<std::int64_t> integerIn(const nlohmann::json &value, std::int64_t lowest, std::int64_t highest);

/** Returns the text in a value; nothing for another type, more than `longest` octets or a NUL character. */
std::optional<std::string> textIn(const nlohmann::json &value, std::size_t longest);

/** Returns a description such as "an integer from 0 to 255". */
std::string integerExpected(std::int64_t lowest, std::int64_t highest);

/** Returns a value as JSON in ASCII for a message, truncated after 60 characters. */
std::string shown(const nlohmann::json &value);

/** Returns a message such as "expected an integer from 0 to 255, found 300". */
std::string mismatch(const std::string &expected, const nlohmann::json &found);

/** Returns a list such as "alarm, iris, power", or "none". */
std::string listed(const std::vector<std::string> &names);

} // namespace camera

#endif
