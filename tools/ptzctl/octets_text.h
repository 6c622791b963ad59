// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Octets as people read and type them.
 */
#ifndef PTZCTL_OCTETS_TEXT_H
#define PTZCTL_OCTETS_TEXT_H

#include <string>

namespace ptzctl {

/** Octets in hexadecimal, such as "02 40 78 69"; empty for none. */
std::string hexText(const std::string &octets);

/**
 * Reads octets in hexadecimal: two digits each, with or without blanks or colons between octets and 0x in front.
 * @throws std::invalid_argument when the text is something else
 */
std::string octetsOf(const std::string &text);

/** A text from the camera with a dot in place of every octet that is no printable ASCII: it must not steer a terminal.
 */
std::string printable(const std::string &text);

} // namespace ptzctl

#endif
