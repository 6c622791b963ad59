// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Traps that the module handed to the agent, which has nowhere to send to in a unit test.
 */
#ifndef QUARNSNMP_SENT_TRAPS_H
#define QUARNSNMP_SENT_TRAPS_H

#include <thread>
#include <vector>

#include "net_snmp.h"

namespace traps {

struct SentTrap {
    std::vector<oid> firstName;
    std::vector<oid> trapOid;
    std::vector<oid> valueName;
    unsigned char valueType = 0;
    long value = 0;
    std::thread::id thread;
};

/** All traps of the process, oldest first; the agent's thread fills it in turnEventLoop(). */
extern std::vector<SentTrap> gSent;

std::vector<long> sentValues();

/** One turn of the agent's event loop, as far as registered descriptors go. @return how many were ready */
int turnEventLoop();

} // namespace traps

#endif
