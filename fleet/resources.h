// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Limits of the machine and the user.
 */
#ifndef QUARNSNMP_FLEET_RESOURCES_H
#define QUARNSNMP_FLEET_RESOURCES_H

#include <cstdint>
#include <optional>
#include <string>

namespace fleet {

/** A resource: how much a fleet needs, and how much there is. */
struct Supply {
    std::string name; ///< such as "open files of a process"
    std::uint64_t needed = 0;
    std::uint64_t available = 0;
    std::string advice;
};

/** Returns a message about a resource that does not suffice; nothing if it does. */
std::optional<std::string> shortage(const Supply &supply);

/** Raises the soft limits of open files and processes to the hard ones. */
void raiseLimits();

/** Checks that the machine and the user have what a fleet needs. @throws std::runtime_error with the first shortage */
void checkResources(unsigned cameras);

} // namespace fleet

#endif
