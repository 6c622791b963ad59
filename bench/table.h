// SPDX-License-Identifier: Apache-2.0
/** @file Lines of the one table that all measurements write: Markdown with four columns, to standard output. */
#ifndef QUARNSNMP_BENCH_TABLE_H
#define QUARNSNMP_BENCH_TABLE_H

#include <string>
#include <vector>

namespace bench {

/** A line that names the measurements below it, and what their last column compares them with. */
void printFamily(const std::string &name, const std::string &comparison = "");

/**
 * A line with the median of some rounds and the lowest and the highest of them.
 * @param decimals    how many are shown; lines of whole numbers have 0
 * @param comparison  ratios of the rounds, of which the median is shown; empty when there is nothing to compare with
 */
void printRounds(const std::string &what, const std::vector<double> &rounds, const std::string &unit, int decimals,
                 const std::vector<double> &comparison = {});

/** A line with a value that is the same in every round. @param comparison text of the last column */
void printValue(const std::string &what, double value, const std::string &unit, int decimals,
                const std::string &comparison = "");

} // namespace bench

#endif
