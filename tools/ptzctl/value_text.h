// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Values and readings as the program prints them.
 */
#ifndef PTZCTL_VALUE_TEXT_H
#define PTZCTL_VALUE_TEXT_H

#include <string>

#include <nlohmann/json.hpp>

#include "object_table.h"
#include "reading.h"
#include "settings.h"
#include "varbind.h"

namespace ptzctl {

/** Writes a value, with verbose settings followed by the raw value. Never empty. */
std::string valueText(const ptz::Instance &instance, const snmp::Varbind &value, const Settings &settings);

/** Writes the value of a reading, or its problem. */
std::string readingText(const ptz::Reading &reading, const Settings &settings);

/** Converts a reading to JSON: the value, or {"problem": …}. */
nlohmann::ordered_json readingJson(const ptz::Reading &reading, const Settings &settings);

} // namespace ptzctl

#endif
