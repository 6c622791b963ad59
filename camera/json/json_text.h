// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Parsing of JSON from outside: files of users and lines of clients.
 */
#ifndef QUARNSNMP_CAMERA_JSON_TEXT_H
#define QUARNSNMP_CAMERA_JSON_TEXT_H

#include <stdexcept>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace camera {

/** Error in a JSON text. what() has the place and the reason. */
class JsonTextError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/**
 * Parses the JSON text of a user's file. A duplicate key in an object is an error, because one of its two values would
 * be lost without notice.
 * @throws JsonTextError
 */
nlohmann::json parseJsonText(const std::string &text);

/**
 * Parses a line of a client. The value is_discarded() when the line is not JSON or is nested deeper than any valid
 * message: nlohmann::json copies and prints values recursively, and a line of brackets would exhaust the stack.
 */
nlohmann::json parseLine(std::string_view line);

} // namespace camera

#endif
