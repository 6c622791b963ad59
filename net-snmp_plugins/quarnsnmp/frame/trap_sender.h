// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Transfer of traps from any thread to the agent's own thread, the only one that may use the agent library.
 */
#ifndef QUARNSNMP_TRAP_SENDER_H
#define QUARNSNMP_TRAP_SENDER_H

#include <cstddef>
#include <deque>

#include <boost/thread/mutex.hpp>

#include "net_snmp.h"

/**
 * Singleton queue of traps. A producer appends a finished varbind list and writes one octet to a pipe. The agent's
 * event loop then calls back on its own thread, which sends all queued traps and reads one octet for each.
 */
class QuarnSnmpTrapSend {
public:
    /**
     * Becomes the singleton, opens the pipe and registers its read end with the agent. A second instance ends the
     * process. A failed pipe or registration is logged, and no trap is sent then.
     * @throws boost::thread_resource_error if the system refuses a mutex
     */
    QuarnSnmpTrapSend();

    /** Unregisters the pipe from the agent, closes it, and drops the queued traps. */
    ~QuarnSnmpTrapSend();

    QuarnSnmpTrapSend(const QuarnSnmpTrapSend &) = delete;
    QuarnSnmpTrapSend &operator=(const QuarnSnmpTrapSend &) = delete;

    /** Returns the singleton; null before the start and after the end of the module. */
    static QuarnSnmpTrapSend *GetInstance();

    /** Destroys the singleton, if there is one. */
    static void DestroyInstance();

    /**
     * Queues a trap. Any thread may call it.
     * @param vars  varbinds of the trap; the object takes ownership
     * @return 0
     */
    int send_v2trap(netsnmp_variable_list *vars);

    /** Sends all queued traps, oldest first. Only for the agent's thread. */
    void CallSnmpSendTrap();

    /** Callback of the agent's event loop for a readable pipe. Ignores both arguments. */
    static void snmpMainCallback(int fd, void *data);

private:
    int readFd;
    int writeFd;
    boost::mutex mutex; ///< guards `queue`
    std::deque<netsnmp_variable_list *> queue;

    static QuarnSnmpTrapSend *_pInstance;
};

/**
 * Builds a trap of two varbinds and queues it: snmpTrapOID.0 with the value `trapOid`, and `trapOid` with `value` as a
 * Gauge32. The agent adds its header varbinds later.
 * @param trapOid        OID of the object whose value changed
 * @param trapOidLength  number of its sub-identifiers
 * @param value          the new value; the bits of a negative one become a Gauge32
 * @return 0; -1 without a trap sender or without memory
 */
int SendTrap(oid *trapOid, std::size_t trapOidLength, int value);

#endif
