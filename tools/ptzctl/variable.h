// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Object identifiers and values, independent of the SNMP library's own types.
 */
#ifndef PTZCTL_VARIABLE_H
#define PTZCTL_VARIABLE_H

#include <cstdint>
#include <string>
#include <vector>

namespace ptzctl {

/** Type of a value, as its tag in a message. */
enum class Type : unsigned char {
    Integer = 0x02,
    Octets = 0x04,
    Null = 0x05,
    ObjectIdentifier = 0x06,
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

/** One varbind. */
struct Variable {
    std::string identifier; ///< dotted, without a leading dot
    Type type = Type::Null;
    std::int64_t number = 0; ///< value of Integer, the counters, Gauge32 and TimeTicks; else 0
    std::string octets;      ///< octets of Octets, IpAddress and Opaque; dotted text of ObjectIdentifier; else empty
};

Variable integer(const std::string &identifier, std::int64_t value);
Variable octetString(const std::string &identifier, const std::string &value);

/** Name of a type, such as "OCTET STRING"; its tag when it has none. */
std::string typeName(Type type);

/** Whether the type stands for a value, and not for the lack of one. */
bool hasValue(Type type);

/** The value as text: a number, an identifier, a text in quotes, or octets in hexadecimal. */
std::string valueText(const Variable &variable);

/**
 * Splits a dotted identifier into its numbers; there may be a leading dot.
 * @throws std::invalid_argument when it is none: 2 to 128 numbers of 32 bits
 */
std::vector<std::uint32_t> parseIdentifier(const std::string &text);

/** Whether an identifier is another one or lies below it. Both are written without a leading dot. */
bool isBelow(const std::string &identifier, const std::string &root);

} // namespace ptzctl

#endif
