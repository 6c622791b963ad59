// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Texts about control commands and their answers.
 */
#ifndef QUARNSNMP_CAMERA_COMMAND_TEXT_H
#define QUARNSNMP_CAMERA_COMMAND_TEXT_H

#include <optional>
#include <string>

#include <nlohmann/json.hpp>

namespace camera {

/** Returns a value as JSON text. @param indent  indentation of nested values; negative for one line */
std::string printable(const nlohmann::json &value, int indent = -1);

/** Returns the effect of a command, such as "alarm is down". The command must be complete and must change something. */
std::string doneText(const nlohmann::json &command);

/** Returns the camera's reason for refusing a command; nothing after success. */
std::optional<std::string> refusalIn(const nlohmann::json &answer);

} // namespace camera

#endif
