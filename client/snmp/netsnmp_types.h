// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The SNMP library's client headers, which depend on each other's order, and owners of its objects.
 */
#ifndef CLIENT_SNMP_NETSNMP_TYPES_H
#define CLIENT_SNMP_NETSNMP_TYPES_H

#include <memory>
#include <mutex>

#include <net-snmp/library/large_fd_set.h>
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

namespace snmp {

/**
 * Returns the lock of the SNMP library, whose functions share error texts and request numbers without protection.
 * Sessions and receivers hold it during their calls, but not while they wait.
 */
inline std::mutex &libraryMutex() {
    static std::mutex mutex;
    return mutex;
}

struct PduDeleter {
    void operator()(netsnmp_pdu *pdu) const {
        snmp_free_pdu(pdu);
    }
};

/** Owns a message. Functions of the library that take ownership get `release()`. */
using PduPointer = std::unique_ptr<netsnmp_pdu, PduDeleter>;

struct SessionCloser {
    void operator()(void *session) const {
        snmp_sess_close(session);
    }
};

/** Owns a session from snmp_sess_open() and closes it. */
using SessionPointer = std::unique_ptr<void, SessionCloser>;

} // namespace snmp

#endif
