// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * State of a running fleet.
 */
#ifndef QUARNSNMP_FLEET_USAGE_H
#define QUARNSNMP_FLEET_USAGE_H

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "selection.h"

namespace fleet {

/** Request of the subcommand `status`. */
struct StatusOptions {
    std::string directory;
    double interval = 1.0; ///< seconds over which requests are counted
    bool json = false;
};

/** What a camera uses. */
struct Usage {
    FleetCamera camera;
    std::optional<double> kilobytes;         ///< memory of camera and agent, shared pages by their share (PSS)
    std::optional<double> requestsPerSecond; ///< without those of this program
};

/** Returns the memory of a process in kilobytes; nothing if it has ended or is not the user's. */
std::optional<double> proportionalKilobytes(int process);

/** Measures the cameras of a fleet. @throws std::runtime_error without a fleet in the directory */
std::vector<Usage> measureFleet(const StatusOptions &options);

/** Prints a table, with totals in its last line, or JSON. */
void printUsage(const std::vector<Usage> &cameras, bool asJson, std::ostream &output);

} // namespace fleet

#endif
