// SPDX-License-Identifier: Apache-2.0
#include "core_utils.h"

#include "service_health.h"

namespace {

void *gLogCookie = nullptr;
void *gIpcCookie = nullptr;

} // namespace

zorva_core_status InitUtils() {
    ForgetHangs();
    zorva_core_init();
    zorva_core_logging_init("SNMP", &gLogCookie);
    return zorva_core_ipc_initiator_init(gLogCookie, nullptr, &gIpcCookie);
}

void DeinitUtils() {
    zorva_core_ipc_deinit(gIpcCookie);
    zorva_core_logging_deinit(gLogCookie);
    zorva_core_deinit();
}

void *GetLogCookie() {
    return gLogCookie;
}

void *GetIpcCookie() {
    return gIpcCookie;
}
