// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Failure of a request or of a command.
 */
#ifndef CLIENT_SNMP_FAILURE_H
#define CLIENT_SNMP_FAILURE_H

#include <stdexcept>
#include <string>
#include <utility>

namespace snmp {

/** Kind of a failure. */
enum class Cause {
    Refused,    ///< the camera answered with an error, or accepted a command and did not carry it out
    Usage,      ///< the request does not fit the camera or the configuration; nothing was sent
    NoAnswer,   ///< no answer in time, or the agent did not admit the request
    BadResponse ///< the answer does not belong to the request, or this machine failed
};

/** Ends a request or a command. `what()` says what happened, and the advice what to do next. */
class Failure : public std::runtime_error {
public:
    Failure(Cause cause, const std::string &what, std::string advice = "")
        : std::runtime_error(what), cause_(cause), advice_(std::move(advice)) {}

    Cause cause() const {
        return cause_;
    }

    /** A clause without a full stop; may be empty. */
    const std::string &advice() const {
        return advice_;
    }

private:
    Cause cause_;
    std::string advice_;
};

} // namespace snmp

#endif
