// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Conversion between varbinds and the SNMP library's own types. A manager of its own, such as that of the tests, links
 * `client-snmp` and writes
 *
 *   snmp::SessionPointer session(snmp_sess_open(&wanted));
 *   snmp::PduPointer request(snmp_pdu_create(SNMP_MSG_GET));
 *   snmp::append(*request, snmp::nameOnly(oids::positionPan));
 *   netsnmp_pdu *received = nullptr;
 *   const int status = snmp_sess_synch_response(session.get(), request.release(), &received);
 *   const snmp::PduPointer response(received);
 *   ... snmp::varbindsOf(*response), or snmp::libraryError(session.get())
 *
 * snmp::Session does all of this for one agent with the user's own configuration.
 */
#ifndef CLIENT_SNMP_NETSNMP_CONVERT_H
#define CLIENT_SNMP_NETSNMP_CONVERT_H

#include <string>
#include <vector>

#include "netsnmp_types.h"
#include "varbind.h"

namespace snmp {

/**
 * Appends a varbind of any type to a request.
 * @throws std::invalid_argument for a malformed OID
 * @throws std::runtime_error when the library rejects the value
 */
void append(netsnmp_pdu &pdu, const Varbind &varbind);

/** Returns the varbinds of a message. */
std::vector<Varbind> varbindsOf(const netsnmp_pdu &pdu);

/** Describes the last error of a session, or with null that of opening one. */
std::string libraryError(void *session);

/** Tests whether an error of the library stands for a report: the agent rejected the credentials of a request. */
bool isReport(int error);

} // namespace snmp

#endif
