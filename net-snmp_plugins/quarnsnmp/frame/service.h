// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * How a feature finds and opens its service of the core library.
 */
#ifndef QUARNSNMP_SERVICE_H
#define QUARNSNMP_SERVICE_H

#include <string>
#include <vector>

#include "zorva-core.h"

/** A service as one feature uses it; `targets` and `cookie` are the feature's own. */
struct Service {
    const char *name;
    const char *noTargetText;  ///< logged when the service has no target
    const char *initiatorName; ///< in the log line of an initiator that does not open
    std::vector<std::string> &targets;
    void *&cookie; ///< handle of the open service; null while it is not open
    zorva_core_status (*openInitiator)(void *ipcCookie, void *logCookie, void **apiCookie, int32_t reserved0,
                                       void *reserved1);
};

/**
 * Finds the targets with one discovery.
 * @return whether there are any; nothing is logged
 */
bool FindTargets(const Service &service);

/**
 * Opens a service whose targets are known.
 * @param function  name of the calling Init function, for the log
 * @return whether it is open; that it has no target, or does not open, is logged
 */
bool OpenService(const char *function, void *ipcCookie, const Service &service);

#endif
