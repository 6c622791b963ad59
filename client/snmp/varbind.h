// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Varbinds, independent of the SNMP library's own types.
 */
#ifndef CLIENT_SNMP_VARBIND_H
#define CLIENT_SNMP_VARBIND_H

#include <cstdint>
#include <ostream>
#include <string>

namespace snmp {

/** Type of a value. The number is its tag in a message. */
enum class Type : unsigned char {
    Integer = 0x02,
    Octets = 0x04,
    Null = 0x05,
    Oid = 0x06,
    IpAddress = 0x40,
    Counter32 = 0x41,
    Gauge32 = 0x42,
    TimeTicks = 0x43,
    Opaque = 0x44,
    Counter64 = 0x46,
    NoSuchObject = 0x80,
    NoSuchInstance = 0x81,
    EndOfMibView = 0x82
};

/** An OID and its value. */
struct Varbind {
    std::string oid; ///< with a leading dot
    Type type = Type::Null;
    std::int64_t number = 0; ///< value of Integer, the counters, Gauge32 and TimeTicks; else 0
    std::string octets;      ///< octets of Octets, IpAddress and Opaque; text of Oid, with a leading dot; else empty
};

bool operator==(const Varbind &left, const Varbind &right);
bool operator!=(const Varbind &left, const Varbind &right);

/** Makes a varbind with an INTEGER. */
Varbind integer(const std::string &oid, std::int64_t value);

/** Makes a varbind with an OCTET STRING. */
Varbind octetString(const std::string &oid, const std::string &value);

/** Makes a varbind without a value, for requests that read. */
Varbind nameOnly(const std::string &oid);

/** Name of a type in SNMP's own notation, such as "OCTET STRING"; "type" and the tag for an unknown one. */
std::string typeName(Type type);

/** Tests whether SNMP defines a type. The value of another one is not read. */
bool isDefined(Type type);

/** Tests whether a type has a value, unlike Null and the exceptions noSuchObject, noSuchInstance and endOfMibView. */
bool hasValue(Type type);

/** Writes the value: a number, an OID without its dot, a text in quotes, octets in hexadecimal, or the type's name. */
std::string valueText(const Varbind &varbind);

/** Prints OID, type and value. */
std::ostream &operator<<(std::ostream &stream, const Varbind &varbind);

} // namespace snmp

#endif
