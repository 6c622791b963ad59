// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * OIDs as text. Everywhere in the client an OID is a text with a leading dot, such as ".1.3.6.1.2.1.1.3.0".
 */
#ifndef CLIENT_SNMP_OID_TEXT_H
#define CLIENT_SNMP_OID_TEXT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace snmp {

/**
 * Splits an OID into its numbers. The leading dot may be missing.
 * @throws std::invalid_argument for any other text than 2 to 128 numbers of 32 bits
 */
std::vector<std::uint32_t> parseOid(const std::string &oid);

/** Joins numbers to an OID. */
template <typename Numbers>
std::string oidText(const Numbers &numbers) {
    std::string text;
    for (const auto number : numbers) {
        text.append(".").append(std::to_string(number));
    }
    return text;
}

/** Removes the leading dot, for people and for JSON. */
std::string withoutDot(const std::string &oid);

/** Removes the last number: the column of an instance. */
std::string parentOf(const std::string &oid);

/** Tests whether an OID equals a root or lies below it. */
bool isBelow(const std::string &oid, const std::string &root);

/** Tests whether an OID precedes another one in the order of a walk. */
bool comesBefore(const std::string &left, const std::string &right);

} // namespace snmp

#endif
