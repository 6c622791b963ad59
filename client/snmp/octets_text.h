// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Octet strings as text.
 */
#ifndef CLIENT_SNMP_OCTETS_TEXT_H
#define CLIENT_SNMP_OCTETS_TEXT_H

#include <string>

namespace snmp {

/** Writes octets in hexadecimal, such as "02 40 78 69". */
std::string hexText(const std::string &octets);

/**
 * Reads octets in hexadecimal: two digits each, with or without blanks or colons between octets, and with or without a
 * leading 0x.
 * @throws std::invalid_argument for any other text
 */
std::string parseHex(const std::string &text);

/** Replaces each octet outside printable ASCII with a dot, so that a text from a camera cannot control a terminal. */
std::string printable(const std::string &text);

} // namespace snmp

#endif
