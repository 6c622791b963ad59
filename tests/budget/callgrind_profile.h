// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Number of instructions of the module for a request, counted by callgrind. They are the same in every run.
 */
#ifndef QUARNSNMP_CALLGRIND_PROFILE_H
#define QUARNSNMP_CALLGRIND_PROFILE_H

#include <cstdint>
#include <map>
#include <string>

namespace budget {

/** Instructions of one request, in all its modes, from the module's entry to its return. */
struct Instructions {
    std::uint64_t own = 0;   ///< the module's, and those of what it uses but the agent's library
    std::uint64_t total = 0; ///< all of them
};

/**
 * Counts the instructions of all requests of the budget, by the requests' names.
 * @throws std::runtime_error when the requests cannot be made, or a profile cannot be understood
 */
std::map<std::string, Instructions> countInstructions();

} // namespace budget

#endif
