// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Exit codes of the program.
 */
#ifndef PTZCTL_EXIT_CODE_H
#define PTZCTL_EXIT_CODE_H

#include "failure.h"

namespace ptzctl {

enum class ExitCode {
    Done = 0,
    Refused = 1, ///< those of a failure, see snmp::Cause
    Usage = 2,
    NoAnswer = 3,
    SomeFailed = 4, ///< several cameras with different outcomes
    BadResponse = 5
};

inline ExitCode exitCodeOf(snmp::Cause cause) {
    switch (cause) {
    case snmp::Cause::Refused:
        return ExitCode::Refused;
    case snmp::Cause::Usage:
        return ExitCode::Usage;
    case snmp::Cause::NoAnswer:
        return ExitCode::NoAnswer;
    case snmp::Cause::BadResponse:
        break;
    }
    return ExitCode::BadResponse;
}

} // namespace ptzctl

#endif
