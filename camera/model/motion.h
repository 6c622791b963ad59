// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Motion along one axis: position and velocity as functions of time. A motion is planned once, from where the axis is
 * and how fast it goes; afterwards any moment of it can be asked for, in any order and as often as wanted.
 *
 * Times are in seconds, positions in the axis's own unit, velocities in units per second and accelerations in units per
 * second squared. Speeds and accelerations have no sign. An acceleration of 0 stands for an axis that has any speed at
 * once.
 */
#ifndef QUARNSNMP_CAMERA_MOTION_H
#define QUARNSNMP_CAMERA_MOTION_H

#include <vector>

namespace camera {

/** Where an axis is, and how fast it goes. */
struct MotionPoint {
    double position = 0.0;
    double velocity = 0.0;
};

/** A part of a motion with one acceleration, in which the velocity does not change its sign. */
struct MotionPhase {
    double start = 0.0;
    MotionPoint from;          ///< at the start
    double acceleration = 0.0; ///< with a sign
    double duration = 0.0;     ///< may be infinite

    /** The moment so many seconds after the start. */
    MotionPoint after(double seconds) const;
};

/** A motion, and the rest that follows it. */
struct Motion {
    std::vector<MotionPhase> phases; ///< one after the other without gaps; none when there is nothing to do
    double endTime = 0.0;            ///< when it rests; infinite when it never does
    double endPosition = 0.0;        ///< where it rests; infinite when it never does

    /** The moment of a time; before the beginning it is the first one. From the end on it is exactly the end. */
    MotionPoint at(double time) const;
};

/** Where an axis comes to rest when it brakes now. */
double restPosition(const MotionPoint &from, double acceleration);

/** Brakes to rest. */
Motion planStop(double time, const MotionPoint &from, double acceleration);

/**
 * Goes to a position as fast as `speed` allows and rests there. An axis that goes the other way, or that is too fast to
 * rest in time, brakes first and comes back; one that is faster than `speed` slows down first.
 * @param target  may be infinite: the axis then goes on for ever
 * @param speed  above 0
 */
Motion planMove(double time, const MotionPoint &from, double target, double speed, double acceleration);

/**
 * Gets to a velocity and keeps it until the axis has to brake to rest at a wall. An axis that is beyond the wall or
 * cannot rest in front of it brakes at once and does not come back.
 * @param velocity  not 0
 * @param wall  in the direction of the velocity; infinite when there is none
 */
Motion planRun(double time, const MotionPoint &from, double velocity, double wall, double acceleration);

/** Cuts a motion off where it hits an end of the mechanics: there it rests at once. */
Motion stoppedByEnds(Motion motion, double lowest, double highest);

} // namespace camera

#endif
