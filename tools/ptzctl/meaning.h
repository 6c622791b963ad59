// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * What the values of the objects mean.
 */
#ifndef PTZCTL_MEANING_H
#define PTZCTL_MEANING_H

#include <cstdint>
#include <string>

#include <nlohmann/json.hpp>

#include "context.h"
#include "variable.h"

namespace ptzctl {

/** What switches something on in the second octet of a command: automatic, or the relay's state. */
inline constexpr unsigned int kOn = 0x80;

/** How many bits of inputStatus and outputStatus stand for something, from the lowest one. */
inline constexpr std::size_t kInputBits = 4;
inline constexpr std::size_t kOutputBits = 2;

/** The first octet of a value; 0 when it has none. */
unsigned int firstOctet(const Variable &value);

/** The number of a preset, which is an octet or an INTEGER. */
std::int64_t presetNumber(const Variable &value);

/** What a value means to people; with verbose settings the raw value follows. Never empty. */
std::string meaningOf(const Variable &value, const Settings &settings);

/** A reading's meaning, or its problem. */
std::string meaningOf(const Reading &reading, const Settings &settings);

/** A reading for programs: a number or a text as it is; octets with their meaning; a problem as {"problem": …}. */
nlohmann::ordered_json jsonOf(const Reading &reading, const Settings &settings);
nlohmann::ordered_json jsonOf(const Variable &value, const Settings &settings);

} // namespace ptzctl

#endif
