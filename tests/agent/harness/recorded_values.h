// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Varbinds of the client library, and their text in recorded walks.
 */
#ifndef QUARNSNMP_HARNESS_RECORDED_VALUES_H
#define QUARNSNMP_HARNESS_RECORDED_VALUES_H

#include <string>

#include "oid_text.h"
#include "varbind.h"

namespace harness {

using snmp::comesBefore;
using snmp::integer;
using snmp::isBelow;
using snmp::octetString;
using snmp::Type;
using snmp::Varbind;

/** Name of a type in recorded walks, such as "gauge32"; its tag in hexadecimal for an unknown one. */
std::string recordedType(Type type);

/** Writes a value: a number, an OID, octets in quotes if all are printable, in hexadecimal otherwise. */
std::string recordedValue(const Varbind &varbind);

/** Writes a varbind as the line `oid type value` of a recorded walk. */
std::string recordedLine(const Varbind &varbind);

} // namespace harness

#endif
