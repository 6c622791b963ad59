// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A drive: something that goes along one line, to a position or at a velocity until a limit or a time-out ends it.
 * Positions are whole units of the drive's own; velocities and speeds are per second, speeds without a sign.
 */
#ifndef QUARNSNMP_CAMERA_DRIVE_H
#define QUARNSNMP_CAMERA_DRIVE_H

#include <algorithm>

#include "clock.h"
#include "fields.h"
#include "motion.h"

namespace camera {

/** What bounds the moves of a drive. */
struct DriveLimits {
    double minimum = 0.0; ///< ends of the mechanics
    double maximum = 0.0;
    double lowest = 0.0; ///< where moves may end
    double highest = 0.0;
    double unitSpeed = 1.0; ///< what a commanded speed of 1 stands for
    double slowest = 0.0;   ///< the range of speeds that moves may have
    double fastest = 0.0;
    double acceleration = 0.0; ///< in units per second squared; 0 for any speed at once
    double turn = 0.0;         ///< length of the circle that an endless drive goes round on; 0 for a drive with ends
    bool circles = false;      ///< whether a move may go from one end of the range to the other
};

bool operator==(const DriveLimits &left, const DriveLimits &right);

/** A command to a drive, and what has become of it. */
struct DriveMove {
    enum class Kind : std::uint8_t { toPosition, atVelocity, stop };

    Kind kind = Kind::stop;
    std::int64_t wanted = 0; ///< position or velocity, as commanded
    double speed = 0.0;      ///< of a move to a position, as commanded; in DriveLimits::unitSpeed
    double timeOut = kNever; ///< when a velocity ends, in seconds since the camera started

    // Follows from the command and the limits.
    DriveLimits limits;
    double destination = 0.0;  ///< of a move to a position, counted on beyond the range of an endless drive
    std::int64_t target = 0;   ///< the same within the range
    std::int32_t velocity = 0; ///< the one that is allowed
    Motion motion;
};

/** The command to go to a position. */
DriveMove moveTo(std::int64_t position, double speed);

/** The command to go at a velocity; 0 brakes. */
DriveMove moveAt(std::int32_t velocity, double timeOut = kNever);

/** A drive; the type of its positions is the one that its service's calls have, std::int32_t or std::uint32_t. */
template <typename Position>
struct Drive {
    Position position = 0;
    std::int32_t velocity = 0;
    std::optional<DriveMove> move; ///< what it is doing; nothing while it rests
};

/** The records that all drives have: position, velocity, target, moving. Setting the position ends a move. */
template <typename Position>
const Fields<Drive<Position>> &driveFields();

/** Whether a drive can get to a position; limits within those of the mechanics do not count, moves end at them. */
bool canReach(const DriveLimits &limits, std::int64_t position);

/** Takes note of what happens to a drive: when, in seconds since the camera started, the kind of event, its members. */
using DriveReport = std::function<void(double time, const char *kind, nlohmann::json members)>;

/** Brings position and velocity to a time, and reports what happened by itself until then. */
template <typename Position>
void advance(Drive<Position> &drive, double now, const DriveReport &report);

/** Gives a drive a command, which takes the place of the one before; the drive must have been brought to that time. */
template <typename Position>
void command(Drive<Position> &drive, DriveMove move, const DriveLimits &limits, double now, const DriveReport &report);

/**
 * Draws the consequences of fields that were set: reports the end of a move that setting the position ended, and goes
 * on with one under other limits.
 * @param before  the drive as it was
 */
template <typename Position>
void afterSet(Drive<Position> &drive, const Drive<Position> &before, const DriveLimits &limits, double now,
              const DriveReport &report);

/** Goes on with a move under other limits; does nothing when they are the same, or the drive rests. */
template <typename Position>
void applyLimits(Drive<Position> &drive, const DriveLimits &limits, double now, const DriveReport &report);

/** Ends a move at once, at the position that the drive has. */
template <typename Position>
void halt(Drive<Position> &drive) {
    drive.move.reset();
    drive.velocity = 0;
}

/** When the next thing happens to a drive by itself; else kNever. */
template <typename Position>
double nextTime(const Drive<Position> &drive) {
    return drive.move ? std::min(drive.move->timeOut, drive.move->motion.endTime) : kNever;
}

} // namespace camera

#endif
