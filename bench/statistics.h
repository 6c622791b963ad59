// SPDX-License-Identifier: Apache-2.0
/** @file The figures that measurements come down to. */
#ifndef QUARNSNMP_BENCH_STATISTICS_H
#define QUARNSNMP_BENCH_STATISTICS_H

#include <vector>

namespace bench {

/** The value below which this share of the values lies; at least one value is needed. @param share from 0 to 1 */
double quantile(std::vector<double> values, double share);

/** The value in the middle. */
double median(std::vector<double> values);

/** Each value divided by that of the same round; both lists are equally long. */
std::vector<double> ratios(const std::vector<double> &values, const std::vector<double> &references);

} // namespace bench

#endif
