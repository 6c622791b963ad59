// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The four octets of a position object: a command to one axis, in either order of its position octets.
 */
#ifndef PTZCTL_POSITION_COMMAND_H
#define PTZCTL_POSITION_COMMAND_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace ptzctl {

/** What a command does; the values are those of the first octet. */
enum class Mode : std::uint8_t { Stop = 0, Delta = 1, Absolute = 2, Continuous = 3 };

/** Which octet of the position comes first: this product's cameras send the low one, the public encoding the high one.
 */
enum class ByteOrder { LowFirst, HighFirst };

/** How many octets a command has. */
inline constexpr std::size_t kCommandSize = 4;

inline constexpr int kSlowest = -128;
inline constexpr int kFastest = 127;

/** A command to one axis. */
struct PositionCommand {
    Mode mode = Mode::Stop;
    int speed = 0;              ///< kSlowest to kFastest; 0 when the mode is Stop
    std::uint16_t position = 0; ///< in the axis's own units; a delta as signedOffset() reads it
};

bool operator==(const PositionCommand &left, const PositionCommand &right);

/** Writes a command as octets. @throws std::invalid_argument for a speed that does not fit the octet or the mode */
std::string encode(const PositionCommand &command, ByteOrder order);

/**
 * Reads a command.
 * @throws std::invalid_argument saying why these octets are none: another length, an unknown mode, a stop with a speed
 */
PositionCommand decode(const std::string &octets, ByteOrder order);

/** Whether a camera that has had no command answers these octets: they are its position, then, and two zeros. */
bool isInitialPosition(const std::string &octets, ByteOrder order);

/** The position in octets of which isInitialPosition() holds. */
std::uint16_t initialPosition(const std::string &octets);

/** A position read as 16 bits with a sign, -32768 to 32767. */
int signedOffset(std::uint16_t position);

/** Name of a mode in texts and in JSON. */
const char *modeName(Mode mode);

} // namespace ptzctl

#endif
