// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Axes of a camera, and their commands in degrees and percent.
 */
#ifndef CLIENT_OBJECTS_AXES_H
#define CLIENT_OBJECTS_AXES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include <nlohmann/json.hpp>

#include "position_command.h"

namespace ptz {

/** Unit of positions for people. */
enum class Unit {
    Degrees, ///< 100 positions each
    Percent  ///< 65535 positions are 100
};

/** Bits of the automatic features, the same in all three objects of lens features. */
inline constexpr unsigned int kAutomaticIris = 0x80;
inline constexpr unsigned int kAutomaticFocus = 0x40;

/** Positions of an axis. */
struct Range {
    Unit unit;
    double lowest; ///< in the unit
    double highest;
    int circle;   ///< positions of a whole turn; 0 for an axis that does not turn
    int negative; ///< first position of a turn that people count below zero
};

/** Names of the two directions. */
struct Directions {
    const char *forward;  ///< a positive speed
    const char *backward; ///< a negative speed
    bool swappedInPublic; ///< the public encoding has them the other way round
};

/** Steps of a delta. */
struct Steps {
    int largest;   ///< in positions
    bool isSigned; ///< the camera reads the offset with a sign
};

/** An axis of the camera or of its lens. */
struct Axis {
    const char *name;
    const char *title;       ///< for headings and help
    const char *positionOid; ///< of the object that takes commands
    const char *timeoutOid;
    Range range;
    Steps steps;
    Directions directions;
    unsigned int automatic; ///< bit of its automatic feature; 0 without one
};

inline constexpr std::size_t kAxisCount = 5;
using Axes = std::array<Axis, kAxisCount>;

/** Returns pan, tilt, zoom, focus and iris. */
const Axes &axes();

/** Number of axes() that belong to the camera. Those of the lens follow. */
inline constexpr std::size_t kCameraAxisCount = 3;

/** Finds an axis by name. @throws std::invalid_argument for an unknown one */
const Axis &axisNamed(const std::string &name);

/** Finds an axis by the OID of its position object. @return null for any other OID */
const Axis *axisAt(const std::string &positionOid);

/** Makes the command to a position in the axis's unit. @param speed 1 to kFastest @throws std::invalid_argument */
PositionCommand commandTo(const Axis &axis, double target, int speed);

/**
 * Makes the command for a step in the axis's unit. The offset is positive and the speed has the sign of the step, since
 * cameras refuse some negative offsets.
 * @throws std::invalid_argument for a step of 0 or beyond the axis's largest one
 */
PositionCommand commandBy(const Axis &axis, double step, int speed);

/** Makes the command for a continuous move. @throws std::invalid_argument for a word that is not a direction */
PositionCommand commandTowards(const Axis &axis, const std::string &direction, int speed, ByteOrder order);

/** Converts a position to the axis's unit, with negative angles for tilt below the horizon. */
double valueOf(const Axis &axis, std::uint16_t position);

/** Writes a position with its unit, such as "270.00°". */
std::string positionText(const Axis &axis, std::uint16_t position);

/** Describes a command, such as "to 270.00° at speed 64". */
std::string describe(const Axis &axis, const PositionCommand &command, ByteOrder order);

/** Describes the octets of a position object. Invalid octets are written in hexadecimal, with the reason. */
std::string describeOctets(const Axis &axis, const std::string &octets, ByteOrder order);

/** Describes the octets of a position object as JSON. */
nlohmann::ordered_json octetsJson(const Axis &axis, const std::string &octets, ByteOrder order);

} // namespace ptz

#endif
