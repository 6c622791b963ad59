// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * OIDs as text with a leading dot, such as ".1.3.6.1.4.1.1206.4.2.7.4.1.0". Those of the camera's objects are made from
 * objects.def and have the objects' names:
 *
 *   oids::positionPan                      the instance, to read and write
 *   oids::registered::positionPan          the OID of the registration, without the instance
 *   oids::registered::relayStatesTable     the same of a table
 *   oids::relayStatesState                 a column, without the row
 *   oids::row(oids::relayStatesState, 2)   the column's instance in a row, here the second one
 */
#ifndef QUARNSNMP_OBJECT_OIDS_H
#define QUARNSNMP_OBJECT_OIDS_H

#include <array>
#include <cstddef>
#include <string>

namespace oids {

/** Writes an OID as text at compile time. */
template <unsigned int... Numbers>
class Dotted {
    static constexpr std::size_t kLongest = sizeof ".4294967295" - 1;
    using Characters = std::array<char, sizeof...(Numbers) * kLongest + 1>;

    static constexpr Characters write() {
        Characters text{};
        std::size_t length = 0;
        for (const unsigned int number : {Numbers...}) {
            unsigned int highest = 1;
            while (number / highest >= 10) {
                highest *= 10;
            }
            text[length++] = '.';
            for (; highest != 0; highest /= 10) {
                text[length++] = static_cast<char>('0' + number / highest % 10);
            }
        }
        return text;
    }

    static constexpr Characters kCharacters = write();

public:
    static constexpr const char *kText = kCharacters.data();
};

/** OIDs above the camera's objects. */
inline constexpr const char *kNtcipSubtree = ".1.3.6.1.4.1.1206";
inline constexpr const char *kCctvSubtree = ".1.3.6.1.4.1.1206.4.2.7";
inline constexpr const char *kVendorSubtree = ".1.3.6.1.4.1.99999";

/** Objects of every agent, with their instances, and the subtree of the first ones. */
inline constexpr const char *kSystemSubtree = ".1.3.6.1.2.1.1";
inline constexpr const char *sysDescr = ".1.3.6.1.2.1.1.1.0";
inline constexpr const char *sysUpTime = ".1.3.6.1.2.1.1.3.0";
inline constexpr const char *sysContact = ".1.3.6.1.2.1.1.4.0";

/** Varbind of a notification that holds the notification's own OID. */
inline constexpr const char *snmpTrapOID = ".1.3.6.1.6.3.1.1.4.1.0";

#define CAMERA_SCALAR(symbol, name, numbers, access, syntax)                                                           \
    inline constexpr const char *name = Dotted<numbers, 0>::kText;
#define CAMERA_COLUMN(table, number, name, numbers, access, syntax)                                                    \
    inline constexpr const char *name = Dotted<numbers>::kText;
#include "objects.def"

namespace registered {

#define CAMERA_SCALAR(symbol, name, numbers, access, syntax) inline constexpr const char *name = Dotted<numbers>::kText;
#define CAMERA_TABLE(symbol, name, numbers) inline constexpr const char *name = Dotted<numbers>::kText;
#include "objects.def"

} // namespace registered

/** Returns the OID of a column's instance in a row. @param number row, from 1 */
inline std::string row(const char *column, unsigned int number) {
    return std::string(column) + "." + std::to_string(number);
}

} // namespace oids

#endif
