// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Names of the agent's numbers, and its types as plain ones.
 */
#ifndef QUARNSNMP_WATCH_AGENT_NAMES_H
#define QUARNSNMP_WATCH_AGENT_NAMES_H

#include <string>

#include "net_snmp.h"
#include "observation.h"

namespace watch {

/** Name of a message, such as "GETNEXT". A number without a name is its own name, here and below. */
std::string operationName(int command);

/** Name of a phase of the agent, such as "commit". */
std::string phaseName(int mode);

/** Name of an error status, such as "wrongValue". */
std::string errorName(long error);

/** OID in numbers, without a leading dot. */
std::string oidText(const oid *numbers, std::size_t count);

/** Sets OID, type and value of an observation. */
void setValue(Observation &observation, const netsnmp_variable_list &varbind);

/** Sets version, community or user, and address of the manager. */
void setSender(Observation &observation, const netsnmp_pdu &pdu);

} // namespace watch

#endif
