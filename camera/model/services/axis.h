// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Axis of pan, tilt or zoom: a drive with the limits of the mechanics and of the user.
 */
#ifndef QUARNSNMP_CAMERA_AXIS_H
#define QUARNSNMP_CAMERA_AXIS_H

#include "drive.h"

namespace camera {

/** Limits of the user. */
struct SoftLimits {
    bool enabled = false;
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
};

/** Axis. */
struct Axis : Drive<std::int32_t> {
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
    bool endless = false; ///< the axis continues at one end of its range after the other
    std::int32_t minimumSpeed = 0;
    std::int32_t maximumSpeed = 0;
    std::int32_t acceleration = 0; ///< in units per second squared; 0 for immediate changes of the velocity
    SoftLimits softPosition;
    SoftLimits softSpeed;
    std::optional<std::int32_t> priority; ///< of the last command
};

/** Returns the field records of an axis. */
const Fields<Axis> &axisFields();

/** Returns the limits of an axis. @param highest  highest position of its mechanics and lens */
DriveLimits limitsOf(const Axis &axis, std::int32_t highest);

} // namespace camera

#endif
