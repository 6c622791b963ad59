// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Texts in XML and HTML.
 */
#ifndef PTZCTL_CHECK_MARKUP_H
#define PTZCTL_CHECK_MARKUP_H

#include <string>
#include <string_view>

namespace ptzctl::check {

/**
 * Makes any octets the text of an element or of an attribute in quotes. Control characters become \x and two digits,
 * since XML 1.0 cannot hold them; characters that Unicode does not have become U+FFFD.
 */
std::string markup(std::string_view text);

} // namespace ptzctl::check

#endif
