// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Values of objects taken apart for people who learn the protocol.
 */
#ifndef QUARNSNMP_PANEL_OCTET_PARTS_H
#define QUARNSNMP_PANEL_OCTET_PARTS_H

#include <nlohmann/json.hpp>

#include "object_table.h"
#include "varbind.h"

namespace panel {

/**
 * Takes the octets of a value apart.
 * @return a list of objects with "octets", "field" and "meaning"; empty for a value that has no parts
 */
nlohmann::ordered_json partsOf(const ptz::Instance &instance, const snmp::Varbind &value);

/** Writes a value: octets in hexadecimal, a text or a number as such. */
std::string plainValue(const ptz::Instance &instance, const snmp::Varbind &value);

/** Describes a varbind as JSON, with "oid", "name", "type", "value" and "meaning". */
nlohmann::ordered_json varbindJson(const snmp::Varbind &value);

} // namespace panel

#endif
