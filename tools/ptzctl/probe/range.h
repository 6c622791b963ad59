// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Ranges in the notation of monitoring plugins.
 */
#ifndef PTZCTL_PROBE_RANGE_H
#define PTZCTL_PROBE_RANGE_H

#include <limits>
#include <string>

namespace ptzctl {

/** Values that are in order, or with `inverted` those that are not. Both ends belong to the range. */
struct AlertRange {
    double lowest = -std::numeric_limits<double>::infinity();
    double highest = std::numeric_limits<double>::infinity();
    bool inverted = false;
    std::string text; ///< as it was written

    /** Tests whether a value is not in order. */
    bool alertsFor(double value) const;

    /** Says where values are that are not in order, such as "outside 10:20". */
    std::string alertText() const;
};

/**
 * Reads a range: `10` from 0 to 10, `10:` from 10, `~:10` up to 10, `10:20` from 10 to 20, `@10:20` for the opposite.
 * @throws std::invalid_argument for another text, and for a range that ends before it starts
 */
AlertRange parseRange(const std::string &text);

} // namespace ptzctl

#endif
