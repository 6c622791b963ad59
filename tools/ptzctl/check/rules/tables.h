// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Walks through columns and subtrees.
 */
#ifndef PTZCTL_CHECK_TABLES_H
#define PTZCTL_CHECK_TABLES_H

#include <string>
#include <vector>

#include "check/context.h"

namespace ptzctl::check {

/** Objects below an OID in the order in which the camera has answered them, and the end of the walk. */
struct Walk {
    std::vector<snmp::Varbind> varbinds;
    std::string disorder; ///< the successor that does not follow its request; empty without one
    bool ends = true;     ///< false if the subtree has more than kMostObjects
    long error = 0;       ///< error status that ended the walk; 0 for none
};

/** Number of objects after which a subtree counts as endless. */
inline constexpr std::size_t kMostObjects = 5000;

/** Walks through a subtree with GETNEXT. Asks the camera once in a check. @throws Undecided, Ended */
Walk walkOf(Context &context, const std::string &root);

/** Returns the cells of a column as the walk finds them, 256 at most. @throws Undecided, Ended */
std::vector<snmp::Varbind> columnOf(Context &context, const std::string &column);

} // namespace ptzctl::check

#endif
