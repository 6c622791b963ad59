// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * JSON texts from outside: files that people write and lines that clients send.
 */
#ifndef QUARNSNMP_CAMERA_JSON_TEXT_H
#define QUARNSNMP_CAMERA_JSON_TEXT_H

#include <stdexcept>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace camera {

/** A text that is not acceptable JSON; what() says where, and why. */
class JsonTextError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/**
 * Reads a JSON text that somebody wrote. Besides what JSON itself forbids, a key that an object has twice is an error:
 * one of its two values would silently not count.
 */
nlohmann::json parseJsonText(const std::string &text);

/**
 * Reads a line of a client; the value is_discarded() when it is not JSON or nested deeper than any message is. Copying
 * and printing a value are recursive, so a line of brackets would otherwise exhaust the stack.
 */
nlohmann::json parseLine(std::string_view line);

} // namespace camera

#endif
