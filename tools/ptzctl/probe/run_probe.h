// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Execution of `probe`, whose output and exit status are those of a monitoring plugin.
 */
#ifndef PTZCTL_PROBE_RUN_PROBE_H
#define PTZCTL_PROBE_RUN_PROBE_H

#include <ostream>

#include "invocation.h"

namespace ptzctl {

/**
 * Probes the cameras, with a line each, and ends the processes that take longer than the time-out.
 * @param invocation  with `expectations`
 * @return the worst state
 */
State runProbe(const Invocation &invocation, std::ostream &output);

/** Reports an error of the command line, or of this machine. @return State::Unknown */
State reportProbeError(const std::string &error, std::ostream &output);

} // namespace ptzctl

#endif
