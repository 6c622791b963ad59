// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * One command for several cameras at the same time.
 */
#ifndef PTZCTL_HOST_PROCESSES_H
#define PTZCTL_HOST_PROCESSES_H

#include <functional>
#include <string>
#include <vector>

#include "outcome.h"

namespace ptzctl {

/**
 * Runs a command for all cameras at once, in a child process each: the SNMP library keeps the keys of SNMPv3 users for
 * the whole process without a lock, and a camera that does not answer delays only its own process.
 * @param command  runs in the child processes
 * @return one outcome for each host, in the same order
 * @throws std::system_error when a process cannot be started
 */
std::vector<Outcome> runOnAll(const std::vector<std::string> &hosts,
                              const std::function<void(const std::string &host, Report &)> &command);

} // namespace ptzctl

#endif
