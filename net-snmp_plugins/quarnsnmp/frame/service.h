// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Discovery and start of a feature's service of the core library.
 */
#ifndef QUARNSNMP_SERVICE_H
#define QUARNSNMP_SERVICE_H

#include <string>
#include <vector>

#include "zorva-core.h"

/** A service as one feature uses it. The feature owns `targets` and `cookie`. */
struct Service {
    const char *name;
    const char *noTargetText;  ///< logged if the service has no target
    const char *initiatorName; ///< in the log line of a failed initiator
    std::vector<std::string> &targets;
    void *&cookie; ///< handle of the open service; null while it is not open
    zorva_core_status (*openInitiator)(void *ipcCookie, void *logCookie, void **apiCookie, int32_t reserved0,
                                       void *reserved1);
};

/**
 * Finds the targets of a service with one discovery. Nothing is logged.
 * @return true if there is at least one target
 */
bool FindTargets(const Service &service);

/**
 * Opens a service whose targets are known. A missing target and a failed initiator are logged.
 * @param function  name of the calling Init function, for the log
 * @return true if the service is open
 */
bool OpenService(const char *function, void *ipcCookie, const Service &service);

#endif
