// SPDX-License-Identifier: Apache-2.0
/** @file Rows of the table of all results: Markdown with four columns, on standard output. */
#ifndef QUARNSNMP_BENCH_TABLE_H
#define QUARNSNMP_BENCH_TABLE_H

#include <string>
#include <vector>

namespace bench {

/** Prints the heading of a group of measurements. @param comparison  heading of the last column */
void printHeading(const std::string &name, const std::string &comparison = "");

/**
 * Prints the median, the minimum and the maximum of the rounds.
 * @param decimals    number of decimal places
 * @param comparison  ratio of each round to its reference, of which the median is printed; may be empty
 */
void printRounds(const std::string &what, const std::vector<double> &rounds, const std::string &unit, int decimals,
                 const std::vector<double> &comparison = {});

/** Prints a value that is the same in every round. @param comparison  text of the last column */
void printValue(const std::string &what, double value, const std::string &unit, int decimals,
                const std::string &comparison = "");

} // namespace bench

#endif
