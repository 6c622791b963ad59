// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Motion along one axis: position and velocity as functions of time. A motion is planned once, from a position and a
 * velocity. Afterwards, its course can be evaluated at any time, in any order.
 *
 * Times are in seconds, positions in the unit of the axis, velocities in units per second and accelerations in units
 * per second squared. Speeds and accelerations have no sign. An acceleration of 0 stands for immediate changes of the
 * velocity.
 */
#ifndef QUARNSNMP_CAMERA_MOTION_H
#define QUARNSNMP_CAMERA_MOTION_H

#include <vector>

namespace camera {

/** Position and velocity at one time. */
struct MotionPoint {
    double position = 0.0;
    double velocity = 0.0;
};

/** Part of a motion with a constant acceleration, without a change of direction. */
struct MotionPhase {
    double start = 0.0;
    MotionPoint from;          ///< at the start
    double acceleration = 0.0; ///< signed
    double duration = 0.0;     ///< may be infinite

    /** Returns the point at a time after the start of the phase. */
    MotionPoint after(double seconds) const;
};

/** Motion and the following rest. */
struct Motion {
    std::vector<MotionPhase> phases; ///< consecutive, without gaps; empty for a motion without movement
    double endTime = 0.0;            ///< start of the rest; infinite for a motion without an end
    double endPosition = 0.0;        ///< position of the rest; infinite for a motion without an end

    /** Returns the point at a time. Before the start, it is the first point; from the end on, exactly the last. */
    MotionPoint at(double time) const;
};

/** Returns the position of rest of an axis that brakes at once. */
double restPosition(const MotionPoint &from, double acceleration);

/** Plans a stop: the axis brakes to rest. */
Motion planStop(double time, const MotionPoint &from, double acceleration);

/**
 * Plans a move to a position at `speed`. An axis that moves in the other direction, or too fast to stop in time, brakes
 * first and then returns. An axis above `speed` slows down first.
 * @param target  may be infinite, for a motion without an end
 * @param speed  above 0
 */
Motion planMove(double time, const MotionPoint &from, double target, double speed, double acceleration);

/**
 * Plans a run: the axis reaches a velocity and keeps it until it brakes to rest at a wall. An axis beyond the wall, or
 * too close to stop in front of it, brakes at once and does not return.
 * @param velocity  not 0
 * @param wall  in the direction of the velocity; infinite without a wall
 */
Motion planRun(double time, const MotionPoint &from, double velocity, double wall, double acceleration);

/** Ends a motion at once where it reaches an end of the mechanics. */
Motion stoppedByEnds(Motion motion, double lowest, double highest);

} // namespace camera

#endif
