// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Copies of the messages that pass a transport.
 */
#ifndef CLIENT_SNMP_TRANSPORT_TAP_H
#define CLIENT_SNMP_TRANSPORT_TAP_H

#include <memory>

#include "netsnmp_types.h"
#include "session.h"

namespace snmp {

/**
 * Passes a copy of each message of a transport to a tap. The library drops a message that answers none of its requests;
 * the tap sees it.
 * @param transport  must outlive the returned object or be closed with its session right after it
 * @return keeps the tap in place
 */
std::shared_ptr<void> tapTransport(netsnmp_transport &transport, Tap tap);

} // namespace snmp

#endif
