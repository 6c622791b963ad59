// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * `check`: options and execution.
 */
#ifndef PTZCTL_CHECK_COMMAND_H
#define PTZCTL_CHECK_COMMAND_H

#include <CLI/CLI.hpp>

#include "invocation.h"

namespace ptzctl::check {

/** Adds the command to the command line. */
void addCheck(CLI::App &app, Invocation &invocation);

} // namespace ptzctl::check

#endif
