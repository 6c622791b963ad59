// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Options and commands of the command line.
 */
#ifndef PTZCTL_COMMAND_LINE_H
#define PTZCTL_COMMAND_LINE_H

#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include "invocation.h"

namespace ptzctl {

/**
 * Makes the parser of the command line.
 * @param invocation  filled by parse(); must outlive the parser
 * @return a parser whose parse() throws CLI::ParseError or std::invalid_argument
 */
std::unique_ptr<CLI::App> commandLine(Invocation &invocation);

/** Describes the error of a parse(). */
std::string errorOf(const CLI::App &app, const CLI::ParseError &error);

/** Parses a speed: 1 to 127, or a percentage of 127. @throws std::invalid_argument */
int speedOf(const std::string &text);

} // namespace ptzctl

#endif
