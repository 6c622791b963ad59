// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Values and messages in the SNMP library's own types.
 */
#ifndef PTZCTL_NATIVE_H
#define PTZCTL_NATIVE_H

// clang-format off
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
// clang-format on

#include <memory>
#include <string>
#include <vector>

#include "variable.h"

namespace ptzctl {

using PduPointer = std::unique_ptr<netsnmp_pdu, decltype(&snmp_free_pdu)>;

/** Adds a varbind to a request. @throws Failure for what the library does not take */
void append(netsnmp_pdu *pdu, const Variable &variable);

/** The varbinds of a message. */
std::vector<Variable> variablesOf(const netsnmp_pdu &pdu);

/** The library's last error, of a session or, without one, of opening one. */
std::string libraryError(void *session);

} // namespace ptzctl

#endif
