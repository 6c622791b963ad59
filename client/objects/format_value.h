// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Values of objects as text and as JSON.
 */
#ifndef CLIENT_OBJECTS_FORMAT_VALUE_H
#define CLIENT_OBJECTS_FORMAT_VALUE_H

#include <cstddef>
#include <cstdint>
#include <string>

#include <nlohmann/json.hpp>

#include "object_table.h"
#include "position_command.h"
#include "varbind.h"

namespace ptz {

/** Second octet of a command that switches a feature to automatic, or a relay on. */
inline constexpr unsigned int kOn = 0x80;

/** Number of bits in use in inputStatus and outputStatus, from the lowest one. */
inline constexpr std::size_t kInputBits = 4;
inline constexpr std::size_t kOutputBits = 2;

/** Returns the first octet of a value, or 0 without octets. */
unsigned int firstOctet(const snmp::Varbind &value);

/** Returns a temperature in degrees Celsius. The Gauge32 holds the bits of a signed number. */
std::int32_t degreesCelsius(const snmp::Varbind &value);

/** Writes a value with its unit or meaning. May be empty for an empty text. */
std::string formatValue(const Instance &instance, const snmp::Varbind &value, ByteOrder order);

/** Converts a value to JSON: a number, a text, or octets with their meaning. */
nlohmann::ordered_json valueJson(const Instance &instance, const snmp::Varbind &value, ByteOrder order);

} // namespace ptz

#endif
