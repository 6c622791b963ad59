// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The one scalar that a module would hold, in a process of its own: a subagent of the agent whose AgentX socket is the
 * argument. It runs until it is ended.
 */
#include <cstdio>

#include "net_snmp.h"

namespace {

oid gScalar[] = {1, 3, 6, 1, 4, 1, 99999, 98, 1, 0};
long gValue = 1;

} // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: bench-subagent SOCKET\n");
        return 2;
    }
    netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_ROLE, 1);
    netsnmp_ds_set_string(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_X_SOCKET, argv[1]);
    init_agent("bench-subagent");
    netsnmp_register_long_instance("scalar", gScalar, OID_LENGTH(gScalar), &gValue, nullptr);
    init_snmp("bench-subagent");
    for (;;) {
        agent_check_and_process(1);
    }
}
