/**
 * @file
 * An axis that moves: to a position, or at a velocity until a limit or a time-out ends it. Positions are in the axis's
 * unit; velocities and speeds are per second, speeds without a sign.
 */
#ifndef QUARNSNMP_CAMERA_AXIS_H
#define QUARNSNMP_CAMERA_AXIS_H

#include "clock.h"
#include "fields.h"
#include "motion.h"

namespace camera {

/** Limits set by the user, which count while they are enabled. */
struct SoftLimits {
    bool enabled = false;
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
};

/** What bounds the moves of an axis, put together from the limits of the mechanics and of the user. */
struct AxisLimits {
    double minimum = 0.0; ///< ends of the mechanics
    double maximum = 0.0;
    double lowest = 0.0; ///< where moves may end
    double highest = 0.0;
    double slowestMechanics = 0.0; ///< the range of speeds that fractions are of
    double fastestMechanics = 0.0;
    double slowest = 0.0; ///< the range of speeds that moves may have
    double fastest = 0.0;
    double acceleration = 0.0; ///< in units per second squared; 0 for any speed at once
    double turn = 0.0;         ///< length of the circle that an endless axis goes round on; 0 for an axis with ends
    bool circles = false;      ///< whether a move may go from one end of the range to the other
};

bool operator==(const AxisLimits &left, const AxisLimits &right);

/** A command to an axis, and what has become of it. */
struct AxisMove {
    enum class Kind : std::uint8_t { toPosition, atVelocity, stop };

    Kind kind = Kind::stop;
    std::int32_t wanted = 0; ///< position or velocity, as commanded
    double fraction = 0.0;   ///< speed of a move to a position, of the range of speeds
    double timeOut = kNever; ///< when a velocity ends, in seconds since the camera started

    // Follows from the command and the limits.
    AxisLimits limits;
    double destination = 0.0;  ///< of a move to a position, counted on beyond the range of an endless axis
    std::int32_t target = 0;   ///< the same within the range
    std::int32_t velocity = 0; ///< the one that is allowed
    Motion motion;
};

/** An axis. */
struct Axis {
    std::int32_t position = 0;
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
    bool endless = false; ///< beyond one end of the range the axis comes in again at the other
    std::int32_t velocity = 0;
    std::int32_t minimumSpeed = 0;
    std::int32_t maximumSpeed = 0;
    std::int32_t acceleration = 0; ///< in units per second squared; 0 for any speed at once
    SoftLimits softPosition;
    SoftLimits softSpeed;
    std::optional<std::int32_t> priority; ///< of the last command
    std::optional<AxisMove> move;         ///< what it is doing; nothing while it rests
};

/** An axis's records. */
const Fields<Axis> &axisFields();

/** The bounds of an axis whose mechanics and lens reach up to `highest`. */
AxisLimits limitsOf(const Axis &axis, std::int32_t highest);

/** Whether a move to a position is possible; soft limits do not forbid it, the move ends at them. */
bool canReach(const AxisLimits &limits, std::int32_t position);

/** Takes note of what happens to an axis: when, in seconds since the camera started, the kind of event, its members. */
using AxisReport = std::function<void(double time, const char *kind, nlohmann::json members)>;

/** Brings position and velocity to a time, and reports what happened by itself until then. */
void advance(Axis &axis, double now, const AxisReport &report);

/** Gives an axis a command, which takes the place of the one before; the axis must have been brought to that time. */
void command(Axis &axis, AxisMove move, const AxisLimits &limits, double now, const AxisReport &report);

/** Goes on with a move under other limits; does nothing when they are the same, or the axis rests. */
void applyLimits(Axis &axis, const AxisLimits &limits, double now, const AxisReport &report);

/** When the next thing happens to an axis by itself; else kNever. */
double nextTime(const Axis &axis);

} // namespace camera

#endif
