// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * What the camera can move: the axes as records, and their commands in people's units.
 */
#ifndef PTZCTL_AXES_H
#define PTZCTL_AXES_H

#include <array>
#include <string>

#include <nlohmann/json.hpp>

#include "position_command.h"

namespace ptzctl {

/** In what people give positions. */
enum class Unit {
    Degrees, ///< a hundredth of a degree is 1
    Percent  ///< 100 percent is 65535
};

/** Bits of the automatic features, the same in each of the three objects that have them. */
inline constexpr unsigned int kAutomaticIris = 0x80;
inline constexpr unsigned int kAutomaticFocus = 0x40;

/** One axis of the camera, or one drive of its lens. */
struct Axis {
    const char *name;
    const char *title;          ///< for headings and help
    const char *positionObject; ///< name of the object that takes its commands
    const char *timeoutObject;
    Unit unit;
    double lowest;  ///< position that `to` takes, in the unit
    double highest; ///< and the highest one; a whole turn is 0 again
    int circle;     ///< positions of a whole turn; 0 when the axis is not round
    int negative;   ///< positions from here on are angles below zero; not used without a circle
    /** Octets of the largest step: what the camera reads as a signed offset has half the range. */
    int largestStep;
    bool signedSteps;
    const char *forward;    ///< direction of a positive speed
    const char *backward;   ///< and of a negative one
    unsigned int automatic; ///< bit of its automatic in systemLensFeatureStatus; 0 when it has none
    bool reversedInPublic;  ///< whether the public encoding has the two directions the other way round
};

inline constexpr std::size_t kAxisCount = 5;
using Axes = std::array<Axis, kAxisCount>;

/** Pan, tilt, zoom, focus and iris. */
const Axes &axes();

/** How many of axes() are the camera's own; those behind them belong to the lens. */
inline constexpr std::size_t kCameraAxisCount = 3;

/** The axis of a name. @throws std::invalid_argument when there is none */
const Axis &axisOf(const std::string &name);

/** The command that goes to a position in the axis's unit. @param speed 1 to kFastest @throws std::invalid_argument */
PositionCommand commandTo(const Axis &axis, double target, int speed);

/**
 * The command that makes a step in the axis's unit. The step itself is positive and the speed has its sign, since
 * cameras refuse some of the negative offsets.
 * @throws std::invalid_argument when the step is 0 or too large
 */
PositionCommand commandBy(const Axis &axis, double step, int speed);

/** The command that runs in a direction, one of the axis's two words. @throws std::invalid_argument for other words */
PositionCommand commandTowards(const Axis &axis, const std::string &direction, int speed, ByteOrder order);

/** A position in the axis's unit: degrees below the horizon and left of a whole turn are as people say them. */
double valueOf(const Axis &axis, std::uint16_t position);

/** A position with its unit, such as "270.00°". */
std::string positionText(const Axis &axis, std::uint16_t position);

/** What a command does, such as "to 270.00° at speed 64". */
std::string describe(const Axis &axis, const PositionCommand &command, ByteOrder order);

/** What the octets of a position object mean; octets that are no command say so. */
std::string describeOctets(const Axis &axis, const std::string &octets, ByteOrder order);

/** The same with its parts, for programs. */
nlohmann::ordered_json octetsJson(const Axis &axis, const std::string &octets, ByteOrder order);

} // namespace ptzctl

#endif
