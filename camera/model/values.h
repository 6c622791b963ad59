// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Checking of JSON values, for camera files, for the control program and for the arguments of calls.
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

/** What is wrong with a value: where, as a key path such as `pan.softPosition.minimum`, and what was expected. */
struct Problem {
    std::string path;
    std::string text;
};

/** The problem in one line, `path: text`. */
std::string toString(const Problem &problem);

/** Puts a key or an index in front of a path: ("presets", "[2].name") gives "presets[2].name". */
std::string joinPath(std::string_view front, std::string_view back);

/** The integer in a value when it is one and lies in a range, ends included. */
std::optional<std::int64_t> integerIn(const nlohmann::json &value, std::int64_t lowest, std::int64_t highest);

/** The text in a value when it is one of at most `longest` octets without a NUL, which no C text can hold. */
std::optional<std::string> textIn(const nlohmann::json &value, std::size_t longest);

/** "an integer from 0 to 255" */
std::string integerExpected(std::int64_t lowest, std::int64_t highest);

/** A value for a message: its JSON in ASCII, cut when it is long. */
std::string shown(const nlohmann::json &value);

/** "expected an integer from 0 to 255, found 300" */
std::string mismatch(const std::string &expected, const nlohmann::json &found);

/** "alarm, iris, power", or "none" */
std::string listed(const std::vector<std::string> &names);

} // namespace camera

#endif
