#include "axis.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace camera {

namespace {

using Kind = AxisMove::Kind;

const Fields<SoftLimits> &softLimitFields() {
    static const Fields<SoftLimits> fields = {
        flagField("enabled", &SoftLimits::enabled),
        integerField("minimum", &SoftLimits::minimum),
        integerField("maximum", &SoftLimits::maximum),
    };
    return fields;
}

/** Putting an axis somewhere ends its move, even where it is already. */
Field<Axis> positionField() {
    Field<Axis> field = integerField("position", &Axis::position);
    field.set = [set = field.set](Axis &axis, const nlohmann::json &value) {
        std::optional<Problem> problem = set(axis, value);
        if (!problem) {
            axis.move.reset();
            axis.velocity = 0;
        }
        return problem;
    };
    return field;
}

nlohmann::json targetOf(const Axis &axis) {
    const bool hasTarget = axis.move && axis.move->kind == Kind::toPosition;
    return hasTarget ? nlohmann::json(axis.move->target) : nlohmann::json();
}

/** The place within the range that a position counted on beyond it stands for. */
double withinRange(const AxisLimits &limits, double position) {
    if (limits.turn <= 0.0) {
        return std::clamp(position, limits.minimum, limits.maximum);
    }
    const double offset = std::fmod(position - limits.minimum, limits.turn);
    return limits.minimum + (offset < 0.0 ? offset + limits.turn : offset);
}

/** As withinRange(), to the unit. Rounding first may be a step to the other end of the range. */
std::int32_t shownPosition(const AxisLimits &limits, double position) {
    return static_cast<std::int32_t>(withinRange(limits, std::round(position)));
}

/** Where a move ends that starts within the range; beyond the range when it goes round. */
double destinationOf(const AxisMove &move, double from) {
    const AxisLimits &limits = move.limits;
    const double wanted = std::clamp(withinRange(limits, move.wanted), limits.lowest, limits.highest);
    if (!limits.circles) {
        return wanted;
    }
    const double way = wanted - from;
    if (way > limits.turn / 2.0) {
        return wanted - limits.turn;
    }
    return way <= -limits.turn / 2.0 ? wanted + limits.turn : wanted;
}

std::int32_t allowedVelocity(const AxisMove &move) {
    if (move.wanted == 0) {
        return 0;
    }
    const double speed = std::clamp(std::fabs(move.wanted), move.limits.slowest, move.limits.fastest);
    return static_cast<std::int32_t>(std::copysign(speed, move.wanted));
}

/** The speed of a move to a position: with a speed of 0 it would never get there. */
double speedOf(const AxisMove &move) {
    const AxisLimits &limits = move.limits;
    const double wanted = move.fraction * (limits.fastestMechanics - limits.slowestMechanics);
    return std::max(1.0, std::clamp(wanted, limits.slowest, limits.fastest));
}

/** Where an axis with a velocity has to stop. */
double wallOf(const AxisMove &move) {
    if (move.limits.circles) {
        return std::copysign(kNever, move.velocity);
    }
    return move.velocity < 0 ? move.limits.lowest : move.limits.highest;
}

/** Plans how a command is carried out. */
void plan(AxisMove &move, const AxisLimits &limits, MotionPoint from, double now) {
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

void reportStart(const Axis &axis, double now, const AxisReport &report) {
    const AxisMove &move = *axis.move;
    if (move.kind == Kind::toPosition) {
        report(now, "move_started", {{"position", axis.position}, {"to", move.target}});
    } else if (move.kind == Kind::atVelocity) {
        report(now, "move_started", {{"position", axis.position}, {"velocity", move.velocity}});
    }
}

/** Brakes from a velocity whose time is over. */
void timeOut(AxisMove &move, const AxisReport &report) {
    const double time = std::exchange(move.timeOut, kNever);
    const MotionPoint point = move.motion.at(time);
    report(time, "move_timed_out", {{"position", shownPosition(move.limits, point.position)}});
    move.kind = Kind::stop;
    plan(move, move.limits, point, time);
}

/** Ends a move whose motion has come to its end. */
void arrive(Axis &axis, const AxisReport &report) {
    AxisMove &move = *axis.move;
    const double time = move.motion.endTime;
    const double position = move.motion.endPosition;
    axis.position = shownPosition(move.limits, position);
    axis.velocity = 0;
    const bool cutOff = position < move.destination || position > move.destination;
    if (move.kind == Kind::toPosition && cutOff) {
        // It could not brake in front of an end of the mechanics, and goes on to where it was sent from there.
        plan(move, move.limits, {position, 0.0}, time);
        return;
    }
    if (move.kind == Kind::atVelocity) {
        report(time, "limit_reached", {{"position", axis.position}});
    }
    report(time, "move_stopped", {{"position", axis.position}});
    axis.move.reset();
}

} // namespace

bool operator==(const AxisLimits &left, const AxisLimits &right) {
    const auto values = [](const AxisLimits &limits) {
        return std::tie(limits.minimum, limits.maximum, limits.lowest, limits.highest, limits.slowest, limits.fastest,
                        limits.slowestMechanics, limits.fastestMechanics, limits.acceleration, limits.turn,
                        limits.circles);
    };
    return values(left) == values(right);
}

const Fields<Axis> &axisFields() {
    static const Fields<Axis> all = [] {
        constexpr std::int32_t kFastest = std::numeric_limits<std::int32_t>::max();
        const std::string integerOrNull = "an integer or null";
        Fields<Axis> fields = {
            positionField(),
            integerField("minimum", &Axis::minimum),
            integerField("maximum", &Axis::maximum),
            flagField("endless", &Axis::endless),
            readOnlyField<Axis>("velocity", "an integer", [](const Axis &axis) { return axis.velocity; }),
            readOnlyField<Axis>("target", integerOrNull, targetOf),
            readOnlyField<Axis>("moving", "true or false", [](const Axis &axis) { return axis.move.has_value(); }),
            readOnlyField<Axis>(
                "priority", integerOrNull,
                [](const Axis &axis) { return axis.priority ? nlohmann::json(*axis.priority) : nlohmann::json(); }),
            integerField("minimumSpeed", &Axis::minimumSpeed, 0, kFastest),
            integerField("maximumSpeed", &Axis::maximumSpeed, 0, kFastest),
            integerField("acceleration", &Axis::acceleration, 0, kFastest),
        };
        addPart(fields, "softPosition", &Axis::softPosition, softLimitFields());
        addPart(fields, "softSpeed", &Axis::softSpeed, softLimitFields());
        return fields;
    }();
    return all;
}

AxisLimits limitsOf(const Axis &axis, std::int32_t highest) {
    const SoftLimits &positions = axis.softPosition;
    const SoftLimits &speeds = axis.softSpeed;
    const auto allowed = [&speeds](std::int32_t speed) {
        return speeds.enabled ? std::clamp(speed, speeds.minimum, speeds.maximum) : speed;
    };
    AxisLimits limits;
    limits.minimum = axis.minimum;
    limits.maximum = highest;
    limits.lowest = positions.enabled ? positions.minimum : axis.minimum;
    limits.highest = positions.enabled ? positions.maximum : highest;
    limits.slowestMechanics = axis.minimumSpeed;
    limits.fastestMechanics = axis.maximumSpeed;
    limits.slowest = allowed(axis.minimumSpeed);
    limits.fastest = allowed(axis.maximumSpeed);
    limits.acceleration = axis.acceleration;
    limits.turn = axis.endless ? limits.maximum - limits.minimum + 1.0 : 0.0;
    limits.circles = axis.endless && !positions.enabled;
    return limits;
}

bool canReach(const AxisLimits &limits, std::int32_t position) {
    return limits.turn > 0.0 || (position >= limits.minimum && position <= limits.maximum);
}

void advance(Axis &axis, double now, const AxisReport &report) {
    while (nextTime(axis) <= now) {
        if (axis.move->timeOut < axis.move->motion.endTime) {
            timeOut(*axis.move, report);
        } else {
            arrive(axis, report);
        }
    }
    if (axis.move) {
        const MotionPoint point = axis.move->motion.at(now);
        axis.position = shownPosition(axis.move->limits, point.position);
        axis.velocity = static_cast<std::int32_t>(std::lround(point.velocity));
    }
}

void command(Axis &axis, AxisMove move, const AxisLimits &limits, double now, const AxisReport &report) {
    const MotionPoint from =
        axis.move ? axis.move->motion.at(now) : MotionPoint{static_cast<double>(axis.position), 0.0};
    plan(move, limits, from, now);
    if (move.kind == Kind::stop && !axis.move) {
        return;
    }
    axis.move = std::move(move);
    reportStart(axis, now, report);
    advance(axis, now, report);
}

void applyLimits(Axis &axis, const AxisLimits &limits, double now, const AxisReport &report) {
    if (!axis.move || axis.move->limits == limits) {
        return;
    }
    AxisMove &move = *axis.move;
    const std::int32_t target = move.target;
    const std::int32_t velocity = move.velocity;
    plan(move, limits, move.motion.at(now), now);
    if (move.target != target || move.velocity != velocity) {
        reportStart(axis, now, report);
    }
    advance(axis, now, report);
}

double nextTime(const Axis &axis) {
    if (!axis.move) {
        return kNever;
    }
    return std::min(axis.move->timeOut, axis.move->motion.endTime);
}

} // namespace camera
