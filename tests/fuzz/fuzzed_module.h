// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The module with all of its features, in the agent's library and on the scripted core library.
 */
#ifndef QUARNSNMP_FUZZED_MODULE_H
#define QUARNSNMP_FUZZED_MODULE_H

#include "agent_requests.h"
#include "input.h"

namespace fuzz {

/** Returns the registrations of the module, in the order of their OIDs; they do not change. */
using Objects = std::vector<netsnmp_handler_registration *>;

/**
 * Starts the agent's library and every feature once in a process. The objects of a lens with steppers, whose
 * OIDs are those of another lens, lie below 1.3.6.1.4.1.1207 in place of 1206.
 */
const Objects &startModule();

/** Scripts a call of the core library by the input: outputs of any value, or any status. */
void scriptAnswer(Input &input);

/** Polls the watched values, as the poll thread does, and sends the traps, as the agent's loop does. */
void poll();

/**
 * Ends an input: takes back what scriptAnswer() said, and forgets the record. Reports a call or a log line that the
 * scripted core library finds fault with.
 */
void endInput();

/** Appends sub-identifiers to a name, of which one octet may stand for the largest ones; as many as names may have. */
void appendSubIdentifiers(std::vector<oid> &name, Input &input);

/** Returns the OID of a varbind: one that begins with an object's, or any. */
std::vector<oid> variableName(const Objects &objects, Input &input);

/** Returns the value of a varbind, of a size in memory that the agent passes for its type. */
requests::NewValue variableValue(Input &input);

} // namespace fuzz

#endif
