// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The way of a trap from any thread to the agent's own thread, the only one that may use the agent library.
 */
#ifndef QUARNSNMP_TRAP_SENDER_H
#define QUARNSNMP_TRAP_SENDER_H

#include <cstddef>
#include <deque>

#include <boost/thread/mutex.hpp>

#include "net_snmp.h"

/**
 * Singleton queue of traps. A producer appends a finished varbind list and writes one octet into a pipe; the agent's
 * event loop sees the pipe readable and calls back on its thread, which sends all that is queued, one octet a trap.
 */
class QuarnSnmpTrapSend {
public:
    /**
     * Becomes the singleton, opens the pipe and registers its read end with the agent. A second instance ends the
     * process; a pipe or a registration that fails is logged, and traps are then never sent.
     * @throws boost::thread_resource_error when there is no mutex to be had
     */
    QuarnSnmpTrapSend();

    /** Takes the pipe back from the agent, closes it, and drops the traps that are still queued. */
    ~QuarnSnmpTrapSend();

    QuarnSnmpTrapSend(const QuarnSnmpTrapSend &) = delete;
    QuarnSnmpTrapSend &operator=(const QuarnSnmpTrapSend &) = delete;

    /** The singleton; null before the module is initialised and after it is ended. */
    static QuarnSnmpTrapSend *GetInstance();

    /** Ends the singleton, if there is one. */
    static void DestroyInstance();

    /**
     * Queues a trap. Any thread may call it.
     * @param vars  the trap's varbinds; the object owns them from here on
     * @return 0
     */
    int send_v2trap(netsnmp_variable_list *vars);

    /** Sends every queued trap, oldest first. Agent's thread only. */
    void CallSnmpSendTrap();

    /** What the agent's event loop calls when the pipe is readable; needs neither argument. */
    static void snmpMainCallback(int fd, void *data);

private:
    int readFd;
    int writeFd;
    boost::mutex mutex; ///< guards `queue`
    std::deque<netsnmp_variable_list *> queue;

    static QuarnSnmpTrapSend *_pInstance;
};

/**
 * Builds a trap and queues it: snmpTrapOID.0 with `trapOid` as its value, and `trapOid` itself with `value` as a
 * Gauge32. The agent adds its header varbinds when it sends.
 * @param trapOid        identifier of the object whose value changed
 * @param trapOidLength  number of its sub-identifiers
 * @param value          the new value; a negative one travels as its 32 bits
 * @return 0, or -1 when there is no trap sender or no memory
 */
int SendTrap(oid *trapOid, std::size_t trapOidLength, int value);

#endif
