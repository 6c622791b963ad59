// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Order in which the steps of a scenario reach the cameras of a fleet.
 */
#ifndef QUARNSNMP_FLEET_TIMELINE_H
#define QUARNSNMP_FLEET_TIMELINE_H

#include <cstddef>
#include <vector>

namespace fleet {

/** A step for a camera. */
struct Moment {
    double seconds = 0.0; ///< since the start
    std::size_t camera = 0;
    std::size_t step = 0;
};

/**
 * Returns all steps for all cameras in the order of their times; at the same time, in the order of the cameras, and for
 * each camera in the order of the steps.
 * @param steps    times of the steps in seconds, which never decrease
 * @param cameras  number of cameras
 * @param stagger  seconds by which each camera starts after the one before it
 * @param speed    seconds of the steps per second
 */
std::vector<Moment> timelineOf(const std::vector<double> &steps, std::size_t cameras, double stagger, double speed);

} // namespace fleet

#endif
