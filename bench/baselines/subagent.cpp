// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Baseline: one scalar from an AgentX subagent. The argument is the AgentX socket of the agent. Runs until terminated.
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
