// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The results as a table, or as JSON.
 */
#ifndef QUARNSNMP_CORE_CHECK_REPORT_H
#define QUARNSNMP_CORE_CHECK_REPORT_H

#include <string>
#include <vector>

#include "trial.h"

namespace core_check {

/** Writes a row of the table to standard output at once, with a heading before the first row of each group. */
class Table {
public:
    void add(const Result &result);

private:
    std::string group_;
};

/** Returns the results as a JSON object. */
std::string jsonOf(const std::string &library, const std::vector<Result> &results);

} // namespace core_check

#endif
