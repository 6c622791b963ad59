// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Notifications as text and as JSON.
 */
#ifndef PTZCTL_TRAP_TEXT_H
#define PTZCTL_TRAP_TEXT_H

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "settings.h"
#include "varbind.h"

namespace ptzctl {

/** Explains a notification, such as "temperature is 36 °C: …". Varbinds of unknown notifications are listed. */
std::string trapText(const std::vector<snmp::Varbind> &varbinds, const Settings &settings);

/** Converts a notification to JSON. */
nlohmann::ordered_json trapJson(const std::vector<snmp::Varbind> &varbinds, const Settings &settings);

} // namespace ptzctl

#endif
