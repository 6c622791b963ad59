// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Control commands on a command line.
 */
#ifndef QUARNSNMP_CAMERA_CONTROL_COMMAND_LINE_H
#define QUARNSNMP_CAMERA_CONTROL_COMMAND_LINE_H

#include <cstdint>
#include <string>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace camera {

/** Control command of a command line. */
struct ControlRequest {
    nlohmann::json command = nlohmann::json::object(); ///< in the form of the control socket
    std::string scenario;                              ///< name or path of a scenario; empty for a single command
    double speed = 1.0;                                ///< in seconds of the scenario per second
};

/** Storage of the arguments of control commands during the parsing. */
struct ControlArguments {
    std::string service;
    std::string operation;
    std::string target;
    std::string field;
    std::string value;
    std::int64_t number = 0;
    std::int64_t times = 1;
    bool always = false;
};

/**
 * Adds all control commands as subcommands, of which the command line needs one.
 * @param request    receives the command
 * @param arguments  must outlive the parsing
 */
void addControlCommands(CLI::App &app, ControlRequest &request, ControlArguments &arguments);

} // namespace camera

#endif
