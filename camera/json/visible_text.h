// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Text for terminals.
 */
#ifndef QUARNSNMP_CAMERA_VISIBLE_TEXT_H
#define QUARNSNMP_CAMERA_VISIBLE_TEXT_H

#include <string>
#include <string_view>

namespace camera {

/**
 * Replaces control characters, including those beyond ASCII, with their JSON escapes, such as \n and \u001b: texts of
 * files and peers must not control the terminal. Other octets stay as they are.
 * @param kept  control characters to keep
 */
std::string visible(std::string_view text, std::string_view kept = "");

} // namespace camera

#endif
