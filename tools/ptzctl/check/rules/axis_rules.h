// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Rules that judge one axis after the other.
 */
#ifndef PTZCTL_CHECK_AXIS_RULES_H
#define PTZCTL_CHECK_AXIS_RULES_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "check/move_guard.h"
#include "check/rule.h"
#include "position_command.h"

namespace ptzctl::check {

using Details = std::vector<Detail>;

/** Makes the detail of an axis. */
Detail axisDetail(const ptz::Axis &axis, Result result, std::string observation);

/** Judges whether a SET was accepted. @param what  the command in words */
Detail judgeAccepted(const ptz::Axis &axis, const Exchange &exchange, const std::string &what);

/** Judges whether a SET was refused. */
Detail judgeRefused(const ptz::Axis &axis, const Exchange &exchange, const std::string &what);

/** Judges each axis that the camera has, and stops it. */
Finding judgeAxes(Context &context, const std::function<void(MoveGuard &, const ptz::Axis &, Details &)> &judge);

/** Tests whether an axis turns and counts hundredths of a degree. */
bool turns(const ptz::Axis &axis);

/** Tests whether a position is within the limits of an axis that the camera states. */
bool isWithinLimits(Context &context, const ptz::Axis &axis, int position);

/** Two targets of an axis. The way from the first to the second one is positive. */
using Targets = std::pair<std::uint16_t, std::uint16_t>;

/**
 * Returns two targets a small step apart and within the limits. Both octets of each are the same, and so are those of
 * the step, so that either byte order reads the same position.
 * @throws NotPossible if the limits leave no room
 */
Targets targetsOf(Context &context, const ptz::Axis &axis);

/** Encodes a command whose position has two equal octets. */
std::string octetsFor(ptz::Mode mode, int speed, int position);

/** Writes the number of the user's preset to an object, and judges the outcome. */
Finding judgePreset(Context &context, const char *oid);

/** Finds the order in which a camera reads the octets of a position. */
Finding judgeByteOrder(Context &context);

} // namespace ptzctl::check

#endif
