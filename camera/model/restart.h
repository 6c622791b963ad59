// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Course of a restart of the camera.
 */
#ifndef QUARNSNMP_CAMERA_RESTART_H
#define QUARNSNMP_CAMERA_RESTART_H

#include "clock.h"

namespace camera {

/** State machine of restarts: ordered, away, back. Times are in seconds since the camera started. */
class Restart {
public:
    /** Orders a restart from now on. A new order replaces an earlier one. */
    void order(double now, double seconds);

    /** Returns the time of the next step; kNever without a restart. */
    double nextTime() const {
        return step_;
    }

    /** Returns true from the first step until the second one. */
    bool isAway() const {
        return away_;
    }

    /** Takes the next step, which must be due: the camera goes away, or it is back. */
    void takeStep();

private:
    double step_ = kNever;
    double end_ = kNever;
    bool away_ = false;
};

} // namespace camera

#endif
