// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Encoder for requests. The library avoids nlohmann::json arrays, because their destructor allocates memory and
 * terminates the process when that fails.
 */
#ifndef QUARNSNMP_STANDIN_REQUEST_LINE_H
#define QUARNSNMP_STANDIN_REQUEST_LINE_H

#include <cstdint>
#include <string>
#include <string_view>

namespace standin {

/** Builder for a request `[operation, target, argument...]`. */
class RequestLine {
public:
    /** Starts with the operation. */
    explicit RequestLine(const char *operation);

    void add(std::int32_t number);
    void add(std::uint32_t number);
    void add(std::uint8_t number);
    /** Appends a number with full precision; an infinite number or NaN invalidates the request. */
    void add(double number);
    /** Appends a text or null. Replaces octets that are not valid UTF-8. */
    void add(const char *text);

    /**
     * Completes the line with its newline; must be called once only.
     * @return empty when the request is invalid or exceeds the length limit
     */
    std::string_view finish();

private:
    std::string line_;
    bool isValid_ = true;
};

} // namespace standin

#endif
