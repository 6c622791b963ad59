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
 * Runs a command for all cameras, in a child process each: the SNMP library keeps the keys of SNMPv3 users for the
 * whole process without a lock, and a camera that does not answer delays only its own process. Up to 250 run at once,
 * or fewer if this process may not have as many descriptors or children; an ended one makes room for the next.
 * @param command  runs in the child processes
 * @return one outcome for each host, in the same order
 */
std::vector<Outcome> runOnAll(const std::vector<std::string> &hosts,
                              const std::function<void(const std::string &host, Report &)> &command);

} // namespace ptzctl

#endif
