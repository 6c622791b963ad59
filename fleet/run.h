// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Run of a fleet.
 */
#ifndef QUARNSNMP_FLEET_RUN_H
#define QUARNSNMP_FLEET_RUN_H

#include "options.h"

namespace fleet {

/** Name of the program in messages. */
inline constexpr const char *kProgram = "quarnsnmp-fleet";

/**
 * Starts a fleet, and runs it until SIGINT, SIGTERM or SIGHUP.
 * @param options  checked
 * @throws std::exception for what prevents the start
 */
void runFleet(const Options &options);

} // namespace fleet

#endif
