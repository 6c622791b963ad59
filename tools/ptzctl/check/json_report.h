// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Report for programs.
 */
#ifndef PTZCTL_CHECK_JSON_REPORT_H
#define PTZCTL_CHECK_JSON_REPORT_H

#include <nlohmann/json.hpp>

#include "report.h"

namespace ptzctl::check {

/** Version of the members of a report. A change that breaks readers counts up. */
inline constexpr int kSchema = 1;

/** Converts a report to JSON, with the evidence of each rule. */
nlohmann::ordered_json jsonOf(const CheckReport &report);

} // namespace ptzctl::check

#endif
