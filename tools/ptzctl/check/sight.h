// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Somebody who sees what a camera does, since SNMP does not show motion.
 */
#ifndef PTZCTL_CHECK_SIGHT_H
#define PTZCTL_CHECK_SIGHT_H

#include <istream>
#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include "axes.h"

namespace ptzctl::check {

/** What was seen. */
struct Seen {
    enum class Answer { Yes, No, Unknown };
    Answer answer = Answer::Unknown;
    std::string observation;
};

/**
 * A witness. Positions and offsets are in positions of the axis: hundredths of a degree, or 0 to 65535 for the whole
 * range. A positive direction is that of a positive speed. All functions throw Ended on Ctrl-C.
 */
class Sight {
public:
    Sight() = default;
    Sight(const Sight &) = delete;
    Sight &operator=(const Sight &) = delete;
    virtual ~Sight() = default;

    /** Returns the reason why an axis cannot be seen; empty if it can. */
    virtual std::string blindness(const ptz::Axis &axis) = 0;

    /** Returns the present position; nothing if it is unknown. */
    virtual std::optional<double> position(const ptz::Axis &axis) = 0;

    /** Says what the camera will do, and waits until the witness looks. */
    virtual void announce(const std::string &what) = 0;

    /** Tells whether an axis moves in a direction, +1 or -1. @param before  position before the move, if it was known
     */
    virtual Seen moves(const ptz::Axis &axis, std::optional<double> before, int direction) = 0;

    /** Tells whether an axis is at rest, now or very soon. */
    virtual Seen rests(const ptz::Axis &axis) = 0;

    /** Tells whether an axis has reached a position. */
    virtual Seen reaches(const ptz::Axis &axis, double target) = 0;

    /** Tells whether an axis has made a step. @param before  position before the step, if it was known */
    virtual Seen steps(const ptz::Axis &axis, std::optional<double> before, double offset) = 0;
};

/** Asks a person at a terminal. @param questions and answers must outlive the witness */
std::unique_ptr<Sight> personSight(std::istream &answers, std::ostream &questions);

/**
 * Looks at a simulated camera through its control socket.
 * @param directory  of the camera's sockets
 * @throws snmp::Failure with Cause::Usage without a camera there
 */
std::unique_ptr<Sight> simulatedSight(const std::string &directory);

} // namespace ptzctl::check

#endif
