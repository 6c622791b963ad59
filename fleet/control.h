// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Control commands and scenarios for the cameras of a running fleet.
 */
#ifndef QUARNSNMP_FLEET_CONTROL_H
#define QUARNSNMP_FLEET_CONTROL_H

#include <iosfwd>
#include <string>
#include <vector>

#include "control_command_line.h"

namespace fleet {

/** Request of the subcommand `control`. */
struct ControlOptions {
    std::string directory;
    std::string select = "*";
    double stagger = 0.0;             ///< seconds between the starts of two cameras
    std::vector<std::string> command; ///< as for quarnsnmp-camctl
};

/**
 * Parses the command of a request.
 * @throws CLI::ParseError for one that quarnsnmp-camctl does not know, and for `follow`, which has no end
 */
camera::ControlRequest parseCommand(const std::vector<std::string> &words);

/**
 * Executes a command, or plays a scenario, on the selected cameras. A camera that refuses a command or does not answer
 * is left out of the rest.
 * @param output  receives a line for each step that all cameras have executed, or the states
 * @param errors  receives a line for each camera that is left out
 * @return true if no camera was left out
 * @throws std::exception without a fleet, for a selection of no camera, for an unusable scenario, or a scenario that a
 *     camera refuses before its start
 */
bool controlFleet(const ControlOptions &options, const camera::ControlRequest &request, std::ostream &output,
                  std::ostream &errors);

} // namespace fleet

#endif
