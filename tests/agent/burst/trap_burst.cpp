// SPDX-License-Identifier: Apache-2.0
// A module of the tests: a SET of its one object lets another thread hand that many traps to the trap sender while the
// agent's thread is busy with the SET.
#include <thread>

#include "core_utils.h"
#include "net_snmp.h"
#include "trap_sender.h"

namespace {

oid gBurst[] = {1, 3, 6, 1, 4, 1, 99999, 99, 1};

int handleBurst(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*registration*/,
                netsnmp_agent_request_info *information, netsnmp_request_info *requests) {
    if (information->mode != MODE_SET_COMMIT) {
        return SNMP_ERR_NOERROR;
    }
    const auto count = static_cast<int>(*requests->requestvb->val.integer);
    std::thread sender([count] {
        for (int i = 1; i <= count; ++i) {
            SendTrap(gBurst, OID_LENGTH(gBurst), i);
        }
    });
    sender.join();
    return SNMP_ERR_NOERROR;
}

} // namespace

extern "C" {

void init_trapburst(void) {
    InitUtils();
    new QuarnSnmpTrapSend; // remembers itself
    netsnmp_register_scalar(
        netsnmp_create_handler_registration("trapBurst", handleBurst, gBurst, OID_LENGTH(gBurst), HANDLER_CAN_RWRITE));
}

void deinit_trapburst(void) {
    unregister_mib(gBurst, OID_LENGTH(gBurst));
    QuarnSnmpTrapSend::DestroyInstance();
    DeinitUtils();
}
}
