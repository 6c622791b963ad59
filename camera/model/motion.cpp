// SPDX-License-Identifier: Apache-2.0
#include "motion.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace camera {

namespace {

/** Far below the unit of any axis, and far above the sum of rounding errors. */
constexpr double kTolerance = 1e-3;

/** Builder of a motion from consecutive phases. */
class Plan {
public:
    Plan(double time, const MotionPoint &from) : time_(time), point_(from) {}

    const MotionPoint &point() const {
        return point_;
    }

    void changeVelocity(double velocity, double acceleration) {
        const double change = velocity - point_.velocity;
        if (acceleration > 0.0 && change != 0.0) {
            add(std::copysign(acceleration, change), std::fabs(change) / acceleration);
        }
        point_.velocity = velocity;
    }

    void keepVelocity(double distance) {
        if (distance > 0.0) {
            add(0.0, distance / std::fabs(point_.velocity));
        }
    }

    /** Replaces the position at the end of the phases by the exact one, without rounding errors. */
    void correctPosition(double position) {
        point_.position = position;
    }

    Motion finish() {
        return {std::move(phases_), time_, point_.position};
    }

private:
    void add(double acceleration, double duration) {
        phases_.push_back({time_, point_, acceleration, duration});
        point_ = phases_.back().after(duration);
        time_ += duration;
    }

    double time_;
    MotionPoint point_;
    std::vector<MotionPhase> phases_;
};

/** Returns the distance of a change between two speeds. */
double distanceBetween(double speed, double otherSpeed, double acceleration) {
    return acceleration > 0.0 ? std::fabs(speed * speed - otherSpeed * otherSpeed) / (2.0 * acceleration) : 0.0;
}

/** Returns the highest speed of a move; a short distance may not suffice for the allowed speed. */
double peakSpeed(double distance, double speedNow, double speed, double acceleration) {
    if (acceleration <= 0.0 || speedNow >= speed) {
        return speed;
    }
    return std::min(speed, std::sqrt(acceleration * distance + speedNow * speedNow / 2.0));
}

/** Returns the time at which a phase reaches a position on its way, in seconds after its start. */
double timeTo(const MotionPhase &phase, double position) {
    const double way = position - phase.from.position;
    const double velocity = phase.from.velocity;
    const double there = std::sqrt(std::max(0.0, velocity * velocity + 2.0 * phase.acceleration * way));
    const double sum = std::fabs(velocity) + there;
    return sum > 0.0 ? std::max(0.0, 2.0 * std::fabs(way) / sum) : 0.0;
}

} // namespace

MotionPoint MotionPhase::after(double seconds) const {
    // The product of zero and an infinite time is not a number.
    const double change = acceleration != 0.0 ? acceleration * seconds : 0.0;
    return {from.position + (from.velocity + change / 2.0) * seconds, from.velocity + change};
}

MotionPoint Motion::at(double time) const {
    if (time >= endTime) {
        return {endPosition, 0.0};
    }
    for (auto phase = phases.rbegin(); phase != phases.rend(); ++phase) {
        if (phase->start <= time) {
            return phase->after(time - phase->start);
        }
    }
    return phases.empty() ? MotionPoint{endPosition, 0.0} : phases.front().from;
}

double restPosition(const MotionPoint &from, double acceleration) {
    return from.position + std::copysign(distanceBetween(from.velocity, 0.0, acceleration), from.velocity);
}

Motion planStop(double time, const MotionPoint &from, double acceleration) {
    Plan plan(time, from);
    plan.changeVelocity(0.0, acceleration);
    return plan.finish();
}

Motion planMove(double time, const MotionPoint &from, double target, double speed, double acceleration) {
    Plan plan(time, from);
    const double direction = target < restPosition(from, acceleration) ? -1.0 : 1.0;
    if (from.velocity * direction < 0.0) {
        plan.changeVelocity(0.0, acceleration);
    }
    const double distance = std::fabs(target - plan.point().position);
    const double speedNow = std::fabs(plan.point().velocity);
    const double peak = peakSpeed(distance, speedNow, speed, acceleration);
    const double braking = distanceBetween(peak, 0.0, acceleration);
    plan.changeVelocity(direction * peak, acceleration);
    plan.keepVelocity(distance - distanceBetween(speedNow, peak, acceleration) - braking);
    if (std::isfinite(target)) {
        plan.correctPosition(target - direction * braking);
        plan.changeVelocity(0.0, acceleration);
        plan.correctPosition(target);
    }
    return plan.finish();
}

Motion planRun(double time, const MotionPoint &from, double velocity, double wall, double acceleration) {
    const double room = (wall - restPosition(from, acceleration)) * (velocity < 0.0 ? -1.0 : 1.0);
    return room > 0.0 ? planMove(time, from, wall, std::fabs(velocity), acceleration)
                      : planStop(time, from, acceleration);
}

Motion stoppedByEnds(Motion motion, double lowest, double highest) {
    for (std::size_t i = 0; i < motion.phases.size(); ++i) {
        MotionPhase &phase = motion.phases[i];
        const double reached = phase.after(phase.duration).position;
        if (reached >= lowest - kTolerance && reached <= highest + kTolerance) {
            continue;
        }
        const double end = reached < lowest ? lowest : highest;
        phase.duration = std::min(phase.duration, timeTo(phase, end));
        motion.endTime = phase.start + phase.duration;
        motion.endPosition = end;
        motion.phases.resize(i + 1);
    }
    return motion;
}

} // namespace camera
