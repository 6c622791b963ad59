// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Clock of the camera.
 */
#ifndef QUARNSNMP_CAMERA_CLOCK_H
#define QUARNSNMP_CAMERA_CLOCK_H

#include <functional>
#include <limits>

namespace camera {

/** Returns the seconds since the camera started; never decreases. */
using Clock = std::function<double()>;

/** Time of an event that never occurs. */
inline constexpr double kNever = std::numeric_limits<double>::infinity();

/** Returns a clock that starts now and is independent of changes of the system time. */
Clock startClock();

} // namespace camera

#endif
