// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The camera's time.
 */
#ifndef QUARNSNMP_CAMERA_CLOCK_H
#define QUARNSNMP_CAMERA_CLOCK_H

#include <functional>
#include <limits>

namespace camera {

/** Gives the seconds since the camera started; it never goes back. */
using Clock = std::function<double()>;

/** A time that never comes. */
inline constexpr double kNever = std::numeric_limits<double>::infinity();

/** A clock that starts now and goes on whatever happens to the time of day. */
Clock startClock();

} // namespace camera

#endif
