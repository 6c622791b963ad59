// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Octets of a position object: a command to one axis, in either order of the position's two octets.
 */
#ifndef CLIENT_OBJECTS_POSITION_COMMAND_H
#define CLIENT_OBJECTS_POSITION_COMMAND_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace ptz {

/** Mode of a command. The number is its first octet. */
enum class Mode : std::uint8_t { Stop = 0, Delta = 1, Absolute = 2, Continuous = 3 };

/** Order of the position's octets. This product's cameras have the low one first, the public encoding the high one. */
enum class ByteOrder { LowFirst, HighFirst };

/** Number of octets of a command. */
inline constexpr std::size_t kCommandSize = 4;

inline constexpr int kSlowest = -128;
inline constexpr int kFastest = 127;

/** A command to one axis. */
struct PositionCommand {
    Mode mode = Mode::Stop;
    int speed = 0;              ///< kSlowest to kFastest; 0 when the mode is Stop
    std::uint16_t position = 0; ///< in units of the axis; of a delta the offset, as signedOffset() reads it
};

bool operator==(const PositionCommand &left, const PositionCommand &right);

/** Encodes a command. @throws std::invalid_argument for a speed outside the octet's range, or of a stop */
std::string encode(const PositionCommand &command, ByteOrder order);

/**
 * Decodes a command.
 * @throws std::invalid_argument with the reason: another length, an unknown mode, or a stop with a speed
 */
PositionCommand decode(const std::string &octets, ByteOrder order);

/**
 * Tests for the answer of a camera that has had no command yet: its position in two octets, and two zeros. Octets that
 * are a valid command count as a command.
 */
bool isInitialPosition(const std::string &octets, ByteOrder order);

/** Returns the position in octets that pass isInitialPosition(). */
std::uint16_t initialPosition(const std::string &octets);

/** Reads a position as a signed offset, -32768 to 32767. */
int signedOffset(std::uint16_t position);

/** Returns the name of a mode, as in texts and in JSON. */
const char *modeName(Mode mode);

} // namespace ptz

#endif
