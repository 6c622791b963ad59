// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * An axis of pan, tilt and zoom: a drive with limits of the user's beside those of the mechanics.
 */
#ifndef QUARNSNMP_CAMERA_AXIS_H
#define QUARNSNMP_CAMERA_AXIS_H

#include "drive.h"

namespace camera {

/** Limits set by the user, which count while they are enabled. */
struct SoftLimits {
    bool enabled = false;
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
};

/** An axis. */
struct Axis : Drive<std::int32_t> {
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
    bool endless = false; ///< beyond one end of the range the axis comes in again at the other
    std::int32_t minimumSpeed = 0;
    std::int32_t maximumSpeed = 0;
    std::int32_t acceleration = 0; ///< in units per second squared; 0 for any speed at once
    SoftLimits softPosition;
    SoftLimits softSpeed;
    std::optional<std::int32_t> priority; ///< of the last command
};

/** An axis's records. */
const Fields<Axis> &axisFields();

/** The bounds of an axis whose mechanics and lens reach up to `highest`. */
DriveLimits limitsOf(const Axis &axis, std::int32_t highest);

} // namespace camera

#endif
