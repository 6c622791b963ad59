// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Carrying out what a command line asks for.
 */
#ifndef PTZCTL_RUN_H
#define PTZCTL_RUN_H

#include <istream>
#include <ostream>

#include "command_line.h"
#include "failure.h"

namespace ptzctl {

/**
 * Carries out an invocation.
 * @param input     where questions are answered
 * @param terminal  whether somebody is there to answer and to watch
 */
ExitCode run(const Invocation &invocation, std::istream &input, std::ostream &output, std::ostream &errors,
             bool terminal);

} // namespace ptzctl

#endif
