// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * How a command ends when it does not end well.
 */
#ifndef PTZCTL_FAILURE_H
#define PTZCTL_FAILURE_H

#include <stdexcept>
#include <string>
#include <utility>

namespace ptzctl {

/** Exit codes of the program. */
enum class ExitCode {
    Done = 0,
    Refused = 1,    ///< the camera answered with an error, or accepted a command and did not do it
    Usage = 2,      ///< the command line, or what it means for this camera, is wrong; nothing was sent
    NoAnswer = 3,   ///< nothing came back in time, or the request was not let in
    SomeFailed = 4, ///< of several cameras not all ended alike
    BadAnswer = 5   ///< an answer that is not what was asked for, or trouble on this machine
};

/** Ends a command for one camera. Its text says what happened, and its advice what to do next. */
class Failure : public std::runtime_error {
public:
    Failure(ExitCode code, const std::string &what, std::string advice = "")
        : std::runtime_error(what), code_(code), advice_(std::move(advice)) {}

    ExitCode code() const {
        return code_;
    }
    const std::string &advice() const {
        return advice_;
    }

private:
    ExitCode code_;
    std::string advice_;
};

} // namespace ptzctl

#endif
