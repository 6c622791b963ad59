// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Execution of a command line.
 */
#ifndef PTZCTL_RUN_H
#define PTZCTL_RUN_H

#include <istream>
#include <ostream>

#include "exit_code.h"
#include "invocation.h"

namespace ptzctl {

/**
 * Executes an invocation, and reports its errors. Ends it when the output cannot be written.
 * @param input     for answers to questions
 * @param terminal  input and output are a terminal
 */
ExitCode run(const Invocation &invocation, std::istream &input, std::ostream &output, std::ostream &errors,
             bool terminal);

} // namespace ptzctl

#endif
