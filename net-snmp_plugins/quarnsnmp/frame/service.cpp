// SPDX-License-Identifier: Apache-2.0
#include "service.h"

#include "core_utils.h"
#include "service_health.h"

bool FindTargets(const Service &service) {
    service.targets.clear();
    if (!DiscoverTargets(service.name, service.targets)) {
        service.targets.clear();
    }
    return !service.targets.empty();
}

bool OpenService(const char *function, void *ipcCookie, const Service &service) {
    if (service.targets.empty()) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s", service.noTargetText);
        return false;
    }
    if (service.openInitiator(ipcCookie, GetLogCookie(), &service.cookie, 0, nullptr) != 0) {
        service.cookie = nullptr; // a failed call may have written to it
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: failed %s initiator init", function,
                               service.initiatorName);
        return false;
    }
    return true;
}
