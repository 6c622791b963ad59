// SPDX-License-Identifier: Apache-2.0
#include "drive.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace camera {

namespace {

using Kind = DriveMove::Kind;

/** Makes the field of the position. Setting it ends a move, even without a change of the position. */
template <typename Position>
Field<Drive<Position>> positionField() {
    Field<Drive<Position>> field = integerField("position", &Drive<Position>::position);
    field.set = [set = field.set](Drive<Position> &drive, const nlohmann::json &value) {
        std::optional<Problem> problem = set(drive, value);
        if (!problem) {
            halt(drive);
        }
        return problem;
    };
    return field;
}

template <typename Position>
nlohmann::json targetOf(const Drive<Position> &drive) {
    const bool hasTarget = drive.move && drive.move->kind == Kind::toPosition;
    return hasTarget ? nlohmann::json(drive.move->target) : nlohmann::json();
}

/** Wraps the position of an endless drive into its range, and clamps that of others. */
double withinRange(const DriveLimits &limits, double position) {
    if (limits.turn <= 0.0) {
        return std::clamp(position, limits.minimum, limits.maximum);
    }
    const double offset = std::fmod(position - limits.minimum, limits.turn);
    return limits.minimum + (offset < 0.0 ? offset + limits.turn : offset);
}

/** Returns withinRange() of the rounded position. Rounding can cross the end of the range, so it comes first. */
std::int64_t shownPosition(const DriveLimits &limits, double position) {
    return static_cast<std::int64_t>(withinRange(limits, std::round(position)));
}

/** Returns the end of a move from a position in the range; unwrapped for a move across the ends. */
double destinationOf(const DriveMove &move, double from) {
    const DriveLimits &limits = move.limits;
    const double place = withinRange(limits, static_cast<double>(move.wanted));
    const double wanted = std::clamp(place, limits.lowest, limits.highest);
    if (!limits.circles) {
        return wanted;
    }
    const double way = wanted - from;
    if (way > limits.turn / 2.0) {
        return wanted - limits.turn;
    }
    return way <= -limits.turn / 2.0 ? wanted + limits.turn : wanted;
}

std::int32_t allowedVelocity(const DriveMove &move) {
    if (move.wanted == 0) {
        return 0;
    }
    const auto wanted = static_cast<double>(move.wanted);
    const double speed = std::clamp(std::fabs(wanted), move.limits.slowest, move.limits.fastest);
    return static_cast<std::int32_t>(std::copysign(speed, wanted));
}

/** Returns the speed of a move to a position: at least 1, because a move without speed would never end. */
double speedOf(const DriveMove &move) {
    const DriveLimits &limits = move.limits;
    return std::max(1.0, std::clamp(move.speed * limits.unitSpeed, limits.slowest, limits.fastest));
}

/** Returns the position at which a drive with a velocity must stop. */
double wallOf(const DriveMove &move) {
    if (move.limits.circles) {
        return std::copysign(kNever, move.velocity);
    }
    return move.velocity < 0 ? move.limits.lowest : move.limits.highest;
}

/** Plans the execution of a command. */
void plan(DriveMove &move, const DriveLimits &limits, MotionPoint from, double now) {
    move.limits = limits;
    from.position = withinRange(limits, from.position);
    if (move.kind == Kind::atVelocity) {
        move.velocity = allowedVelocity(move);
        move.kind = move.velocity == 0 ? Kind::stop : Kind::atVelocity;
    }
    switch (move.kind) {
    case Kind::toPosition:
        move.destination = destinationOf(move, from.position);
        move.target = shownPosition(limits, move.destination);
        move.motion = planMove(now, from, move.destination, speedOf(move), limits.acceleration);
        break;
    case Kind::atVelocity:
        move.motion = planRun(now, from, move.velocity, wallOf(move), limits.acceleration);
        break;
    case Kind::stop:
        move.motion = planStop(now, from, limits.acceleration);
        break;
    }
    if (limits.turn <= 0.0) {
        move.motion = stoppedByEnds(std::move(move.motion), limits.minimum, limits.maximum);
    }
}

template <typename Position>
void reportStart(const Drive<Position> &drive, double now, const DriveReport &report) {
    const DriveMove &move = *drive.move;
    if (move.kind == Kind::toPosition) {
        report(now, "move_started", {{"position", drive.position}, {"to", move.target}});
    } else if (move.kind == Kind::atVelocity) {
        report(now, "move_started", {{"position", drive.position}, {"velocity", move.velocity}});
    }
}

/** Brakes at the time-out of a velocity. */
void timeOut(DriveMove &move, const DriveReport &report) {
    const double time = std::exchange(move.timeOut, kNever);
    const MotionPoint point = move.motion.at(time);
    report(time, "move_timed_out", {{"position", shownPosition(move.limits, point.position)}});
    move.kind = Kind::stop;
    plan(move, move.limits, point, time);
}

/** Ends a move at the end of its motion. */
template <typename Position>
void arrive(Drive<Position> &drive, const DriveReport &report) {
    DriveMove &move = *drive.move;
    const double time = move.motion.endTime;
    const double position = move.motion.endPosition;
    drive.position = static_cast<Position>(shownPosition(move.limits, position));
    drive.velocity = 0;
    const bool cutOff = position < move.destination || position > move.destination;
    if (move.kind == Kind::toPosition && cutOff) {
        // An end of the mechanics stopped the drive, so it continues to its destination from there.
        plan(move, move.limits, {position, 0.0}, time);
        return;
    }
    if (move.kind == Kind::atVelocity) {
        report(time, "limit_reached", {{"position", drive.position}});
    }
    report(time, "move_stopped", {{"position", drive.position}});
    drive.move.reset();
}

} // namespace

bool operator==(const DriveLimits &left, const DriveLimits &right) {
    const auto values = [](const DriveLimits &limits) {
        return std::tie(limits.minimum, limits.maximum, limits.lowest, limits.highest, limits.unitSpeed, limits.slowest,
                        limits.fastest, limits.acceleration, limits.turn, limits.circles);
    };
    return values(left) == values(right);
}

DriveMove moveTo(std::int64_t position, double speed) {
    DriveMove move;
    move.kind = Kind::toPosition;
    move.wanted = position;
    move.speed = speed;
    return move;
}

DriveMove moveAt(std::int32_t velocity, double timeOut) {
    DriveMove move;
    move.kind = Kind::atVelocity;
    move.wanted = velocity;
    move.timeOut = timeOut;
    return move;
}

template <typename Position>
const Fields<Drive<Position>> &driveFields() {
    using State = Drive<Position>;
    static const Fields<State> fields = {
        positionField<Position>(),
        readOnlyField<State>("velocity", "an integer", [](const State &drive) { return drive.velocity; }),
        readOnlyField<State>("target", "an integer or null", targetOf<Position>),
        readOnlyField<State>("moving", "true or false", [](const State &drive) { return drive.move.has_value(); }),
    };
    return fields;
}

bool canReach(const DriveLimits &limits, std::int64_t position) {
    const auto place = static_cast<double>(position);
    return limits.turn > 0.0 || (place >= limits.minimum && place <= limits.maximum);
}

template <typename Position>
void advance(Drive<Position> &drive, double now, const DriveReport &report) {
    while (nextTime(drive) <= now) {
        if (drive.move->timeOut < drive.move->motion.endTime) {
            timeOut(*drive.move, report);
        } else {
            arrive(drive, report);
        }
    }
    if (drive.move) {
        const MotionPoint point = drive.move->motion.at(now);
        drive.position = static_cast<Position>(shownPosition(drive.move->limits, point.position));
        drive.velocity = static_cast<std::int32_t>(std::lround(point.velocity));
    }
}

template <typename Position>
void command(Drive<Position> &drive, DriveMove move, const DriveLimits &limits, double now, const DriveReport &report) {
    const MotionPoint from =
        drive.move ? drive.move->motion.at(now) : MotionPoint{static_cast<double>(drive.position), 0.0};
    plan(move, limits, from, now);
    if (move.kind == Kind::stop && !drive.move) {
        return;
    }
    drive.move = std::move(move);
    reportStart(drive, now, report);
    advance(drive, now, report);
}

template <typename Position>
void afterSet(Drive<Position> &drive, const Drive<Position> &before, const DriveLimits &limits, double now,
              const DriveReport &report) {
    if (before.move && !drive.move) {
        report(now, "move_stopped", {{"position", drive.position}});
    }
    applyLimits(drive, limits, now, report);
}

template <typename Position>
void applyLimits(Drive<Position> &drive, const DriveLimits &limits, double now, const DriveReport &report) {
    if (!drive.move || drive.move->limits == limits) {
        return;
    }
    DriveMove &move = *drive.move;
    const std::int64_t target = move.target;
    const std::int32_t velocity = move.velocity;
    plan(move, limits, move.motion.at(now), now);
    if (move.target != target || move.velocity != velocity) {
        reportStart(drive, now, report);
    }
    advance(drive, now, report);
}

template const Fields<Drive<std::int32_t>> &driveFields<std::int32_t>();
template const Fields<Drive<std::uint32_t>> &driveFields<std::uint32_t>();
template void advance(Drive<std::int32_t> &, double, const DriveReport &);
template void advance(Drive<std::uint32_t> &, double, const DriveReport &);
template void command(Drive<std::int32_t> &, DriveMove, const DriveLimits &, double, const DriveReport &);
template void command(Drive<std::uint32_t> &, DriveMove, const DriveLimits &, double, const DriveReport &);
template void afterSet(Drive<std::int32_t> &, const Drive<std::int32_t> &, const DriveLimits &, double,
                       const DriveReport &);
template void afterSet(Drive<std::uint32_t> &, const Drive<std::uint32_t> &, const DriveLimits &, double,
                       const DriveReport &);
template void applyLimits(Drive<std::int32_t> &, const DriveLimits &, double, const DriveReport &);
template void applyLimits(Drive<std::uint32_t> &, const DriveLimits &, double, const DriveReport &);

} // namespace camera
