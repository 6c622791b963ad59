// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * What the control program says of a command that has been carried out.
 */
#ifndef QUARNSNMP_CAMERA_COMMAND_TEXT_H
#define QUARNSNMP_CAMERA_COMMAND_TEXT_H

#include <optional>
#include <string>

#include <nlohmann/json.hpp>

namespace camera {

/** A value as the control program prints it. @param indent of nested values; negative for one line */
std::string printable(const nlohmann::json &value, int indent = -1);

/** What a command has done, as in "alarm is down"; the command must be one that changes something, with all its keys.
 */
std::string doneText(const nlohmann::json &command);

/** Why a camera refuses a command, from its answer; nothing when it has carried the command out. */
std::optional<std::string> refusalIn(const nlohmann::json &answer);

} // namespace camera

#endif
