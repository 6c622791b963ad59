// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Drive: a motor that moves along one line to a position, or at a velocity until a limit or a time-out. Positions are
 * integers in the drive's own unit. Velocities and speeds are per second; speeds have no sign.
 */
#ifndef QUARNSNMP_CAMERA_DRIVE_H
#define QUARNSNMP_CAMERA_DRIVE_H

#include <algorithm>

#include "clock.h"
#include "fields.h"
#include "motion.h"

namespace camera {

/** Limits of a drive's moves. */
struct DriveLimits {
    double minimum = 0.0; ///< ends of the mechanics
    double maximum = 0.0;
    double lowest = 0.0; ///< range of the ends of moves
    double highest = 0.0;
    double unitSpeed = 1.0; ///< speed for a commanded value of 1
    double slowest = 0.0;   ///< range of speeds
    double fastest = 0.0;
    double acceleration = 0.0; ///< in units per second squared; 0 for immediate changes of the velocity
    double turn = 0.0;         ///< circumference of an endless drive; 0 for a drive with ends
    bool circles = false;      ///< permits moves across the ends of the range
};

bool operator==(const DriveLimits &left, const DriveLimits &right);

/** Command to a drive, and its execution. */
struct DriveMove {
    enum class Kind : std::uint8_t { toPosition, atVelocity, stop };

    Kind kind = Kind::stop;
    std::int64_t wanted = 0; ///< position or velocity, as commanded
    double speed = 0.0;      ///< commanded speed of a move to a position, in DriveLimits::unitSpeed
    double timeOut = kNever; ///< end of a velocity, in seconds since the camera started

    // Results of the command and the limits.
    DriveLimits limits;
    double destination = 0.0;  ///< end of a move to a position; unwrapped for an endless drive
    std::int64_t target = 0;   ///< the same, wrapped into the range
    std::int32_t velocity = 0; ///< velocity within the limits
    Motion motion;
};

/** Returns a command to move to a position. */
DriveMove moveTo(std::int64_t position, double speed);

/** Returns a command to move at a velocity; 0 brakes. */
DriveMove moveAt(std::int32_t velocity, double timeOut = kNever);

/** Drive. Position is the position type of its service's calls: std::int32_t or std::uint32_t. */
template <typename Position>
struct Drive {
    Position position = 0;
    std::int32_t velocity = 0;
    std::optional<DriveMove> move; ///< present move; nothing at rest
};

/** Returns the common field records: position, velocity, target, moving. Setting the position ends a move. */
template <typename Position>
const Fields<Drive<Position>> &driveFields();

/** Returns true if the mechanics reach a position. Narrower limits do not matter, because moves end at them. */
bool canReach(const DriveLimits &limits, std::int64_t position);

/** Receives an event of a drive: its time in seconds since the camera started, its kind and its members. */
using DriveReport = std::function<void(double time, const char *kind, nlohmann::json members)>;

/** Updates position and velocity to a time, and reports the timed events up to then. */
template <typename Position>
void advance(Drive<Position> &drive, double now, const DriveReport &report);

/** Starts a command, which replaces the previous one. The drive must be up to date. */
template <typename Position>
void command(Drive<Position> &drive, DriveMove move, const DriveLimits &limits, double now, const DriveReport &report);

/**
 * Applies the consequences of changed fields: reports the end of a move by a new position, and replans a move under
 * changed limits.
 * @param before  the drive before the change
 */
template <typename Position>
void afterSet(Drive<Position> &drive, const Drive<Position> &before, const DriveLimits &limits, double now,
              const DriveReport &report);

/** Replans a present move if the limits have changed. */
template <typename Position>
void applyLimits(Drive<Position> &drive, const DriveLimits &limits, double now, const DriveReport &report);

/** Ends a move at once, at the present position. */
template <typename Position>
void halt(Drive<Position> &drive) {
    drive.move.reset();
    drive.velocity = 0;
}

/** Returns the time of the next timed event of a drive; kNever without one. */
template <typename Position>
double nextTime(const Drive<Position> &drive) {
    return drive.move ? std::min(drive.move->timeOut, drive.move->motion.endTime) : kNever;
}

} // namespace camera

#endif
