// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * One command for several cameras at the same time.
 */
#ifndef PTZCTL_HOST_PROCESSES_H
#define PTZCTL_HOST_PROCESSES_H

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "outcome.h"

namespace ptzctl {

/** Number of cameras that are asked at the same time. */
inline constexpr std::size_t kMostCamerasAtOnce = 64;

/** Supervision of the processes. */
struct Supervision {
    /**
     * SIGINT, SIGTERM and SIGHUP go to the child processes as SIGTERM. This process waits for their outcomes. No
     * further one is started. If this process dies, they get SIGTERM as well.
     */
    bool passesSignals = false;
    std::chrono::milliseconds longest{0};            ///< time after which a process is killed; 0 for any time
    std::function<void(const Outcome &)> ended = {}; ///< takes each outcome as soon as it is known; may be empty
};

/**
 * Runs a command for all cameras, in a child process each: the SNMP library keeps the keys of SNMPv3 users for the
 * whole process without a lock, and a camera that does not answer delays only its own process. kMostCamerasAtOnce run
 * at once, or fewer if this process may not have as many descriptors or children; an ended one makes room for the next.
 * @param command  runs in the child processes
 * @return one outcome for each host, in the same order; Cause::NoAnswer for a process that was killed
 */
std::vector<Outcome> runOnAll(const std::vector<std::string> &hosts,
                              const std::function<void(const std::string &host, Report &)> &command,
                              const Supervision &supervision = {});

} // namespace ptzctl

#endif
