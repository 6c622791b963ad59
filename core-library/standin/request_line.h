// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Writes requests. The library neither writes nor reads through whole JSON values, because destroying an array of these
 * needs memory, and ends the process when there is none.
 */
#ifndef QUARNSNMP_STANDIN_REQUEST_LINE_H
#define QUARNSNMP_STANDIN_REQUEST_LINE_H

#include <cstdint>
#include <string>
#include <string_view>

namespace standin {

/** A request `[operation, target, argument...]` in the making. */
class RequestLine {
public:
    /** Begins with the operation. */
    explicit RequestLine(const char *operation);

    void add(std::int32_t number);
    void add(std::uint32_t number);
    void add(std::uint8_t number);
    /** Adds a number with all its digits; one that is not finite makes the request invalid. */
    void add(double number);
    /** Adds a text, or null. Octets that are not UTF-8 are replaced. */
    void add(const char *text);

    /** The line with its newline; empty when the request is invalid or longer than a line may be. To be called once. */
    std::string_view finish();

private:
    std::string line;
    bool isValid = true;
};

} // namespace standin

#endif
