// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Object identifiers and values, independent of the SNMP library's own types.
 */
#ifndef QUARNSNMP_HARNESS_VARBIND_H
#define QUARNSNMP_HARNESS_VARBIND_H

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace harness {

/** Type of a value, as its tag in a message. */
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

/** Name of a type as it stands in recorded walks, such as "gauge32"; its tag in hexadecimal when it has none. */
std::string typeName(Type type);

/** One varbind. */
struct Varbind {
    std::string oid; ///< dotted, with a leading dot
    Type type = Type::Null;
    std::int64_t number = 0; ///< value of Integer, Counter32, Gauge32, TimeTicks and Counter64; else 0
    std::string octets;      ///< octets of Octets, IpAddress and Opaque; dotted text of Oid; else empty
};

bool operator==(const Varbind &left, const Varbind &right);
bool operator!=(const Varbind &left, const Varbind &right);

/** An INTEGER for a request. */
Varbind integer(const std::string &oid, std::int64_t value);

/** An OCTET STRING for a request. */
Varbind octets(const std::string &oid, const std::string &value);

/** The value as text: a number, a dotted identifier, octets in quotes when all are printable, in hexadecimal otherwise.
 */
std::string valueText(const Varbind &varbind);

/** The whole varbind as the line `oid type value` of a recorded walk. */
std::string text(const Varbind &varbind);

/** Lets the test framework print varbinds. */
std::ostream &operator<<(std::ostream &stream, const Varbind &varbind);

/**
 * Splits a dotted identifier into its numbers; the leading dot may be missing.
 * @throws std::invalid_argument when it is not one, or has a number of more than 32 bits
 */
std::vector<std::uint32_t> parseOid(const std::string &oid);

/** Writes an identifier with a leading dot. */
std::string oidText(const std::vector<std::uint32_t> &numbers);

/** Whether an identifier is another one or lies below it. */
bool isBelow(const std::string &oid, const std::string &root);

/** Whether an identifier comes before another one in the order of a walk. */
bool comesBefore(const std::string &left, const std::string &right);

} // namespace harness

#endif
