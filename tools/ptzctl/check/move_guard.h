// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Moves of a camera that end on every way out of a rule.
 */
#ifndef PTZCTL_CHECK_MOVE_GUARD_H
#define PTZCTL_CHECK_MOVE_GUARD_H

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "axes.h"
#include "context.h"
#include "sight.h"

namespace ptzctl::check {

/** What the rules that move a camera know about it. One for each Context. */
struct MoveNotes {
    std::unique_ptr<Sight> sight;      ///< null without a witness
    std::string reason;                ///< why there is no witness
    std::vector<std::string> troubles; ///< stops that failed
};

/** Stops all axes of a camera at the beginning and at the end of its life. */
class MoveGuard {
public:
    /** @throws Undecided, Ended */
    explicit MoveGuard(Context &context);
    /** Stops all axes, also after an interruption, each with several attempts. */
    ~MoveGuard();
    MoveGuard(const MoveGuard &) = delete;
    MoveGuard &operator=(const MoveGuard &) = delete;

    /** Axes that the camera has. */
    const std::vector<const ptz::Axis *> &axes() const {
        return axes_;
    }

    /** Sends a stop, or another command that ends by itself. @throws Ended */
    const Exchange &send(const ptz::Axis &axis, const std::string &octets);

    /**
     * Sends a continuous move, once the axis has taken its time-out and confirmed it.
     * @throws NotPossible without a time-out; then nothing was sent
     */
    const Exchange &run(const ptz::Axis &axis, int speed, std::chrono::milliseconds timeout);

private:
    std::string limit(const ptz::Axis &axis, std::chrono::milliseconds timeout);

    Context &context_;
    std::vector<const ptz::Axis *> axes_;
    const ptz::Axis *running_ = nullptr; ///< the last one with a continuous move
};

/** Returns the witness that the user has chosen; null without one, see MoveNotes::reason. @throws snmp::Failure */
Sight *sightOf(Context &context);

/** Name of an axis's position object. */
std::string objectOf(const ptz::Axis &axis);

} // namespace ptzctl::check

#endif
