// SPDX-License-Identifier: Apache-2.0
#include "sent_traps.h"

#include <sys/select.h>

#include <gtest/gtest.h>
#include <net-snmp/library/fd_event_manager.h>

namespace traps {

std::vector<SentTrap> gSent;

namespace {

std::vector<oid> nameOf(const netsnmp_variable_list *vars) {
    return {vars->name, vars->name + vars->name_length};
}

} // namespace

std::vector<long> sentValues() {
    std::vector<long> values;
    values.reserve(gSent.size());
    for (const SentTrap &trap : gSent) {
        values.push_back(trap.value);
    }
    return values;
}

int turnEventLoop() {
    int highest = 0;
    fd_set readable;
    fd_set writable;
    fd_set exceptional;
    FD_ZERO(&readable);
    FD_ZERO(&writable);
    FD_ZERO(&exceptional);
    netsnmp_external_event_info(&highest, &readable, &writable, &exceptional);
    timeval now{};
    int ready = select(highest, &readable, &writable, &exceptional, &now);
    const int result = ready;
    netsnmp_dispatch_external_events(&ready, &readable, &writable, &exceptional);
    return result;
}

} // namespace traps

/** In place of the agent library's function of this name. */
extern "C" void send_v2trap(netsnmp_variable_list *vars) {
    traps::SentTrap trap;
    ASSERT_NE(vars, nullptr);
    ASSERT_NE(vars->next_variable, nullptr);
    ASSERT_EQ(vars->next_variable->next_variable, nullptr);
    ASSERT_EQ(vars->type, ASN_OBJECT_ID);
    trap.firstName = traps::nameOf(vars);
    trap.trapOid.assign(vars->val.objid, vars->val.objid + vars->val_len / sizeof(oid));
    trap.valueName = traps::nameOf(vars->next_variable);
    trap.valueType = vars->next_variable->type;
    trap.value = *vars->next_variable->val.integer;
    trap.thread = std::this_thread::get_id();
    traps::gSent.push_back(trap);
}
