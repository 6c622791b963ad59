// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Objects that every agent has.
 */
#ifndef QUARNSNMP_WELL_KNOWN_OBJECTS_H
#define QUARNSNMP_WELL_KNOWN_OBJECTS_H

namespace harness {

inline constexpr const char *kSystem = ".1.3.6.1.2.1.1";
inline constexpr const char *kDescription = ".1.3.6.1.2.1.1.1.0";
inline constexpr const char *kUpTime = ".1.3.6.1.2.1.1.3.0";
inline constexpr const char *kContact = ".1.3.6.1.2.1.1.4.0";

/** The variable of a notification that says which one it is. */
inline constexpr const char *kTrapOid = ".1.3.6.1.6.3.1.1.4.1.0";

} // namespace harness

#endif
