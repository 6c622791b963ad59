// SPDX-License-Identifier: Apache-2.0
/** @file Statistics of measured values. */
#ifndef QUARNSNMP_BENCH_STATISTICS_H
#define QUARNSNMP_BENCH_STATISTICS_H

#include <vector>

namespace bench {

/** Returns a quantile of at least one value. @param share  from 0 to 1, such as 0.99 for the 99th percentile */
double quantile(std::vector<double> values, double share);

/** Returns the median of at least one value. */
double median(std::vector<double> values);

/** Divides each value by the reference of the same round; both lists have the same length. */
std::vector<double> ratios(const std::vector<double> &values, const std::vector<double> &references);

} // namespace bench

#endif
