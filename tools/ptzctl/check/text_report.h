// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Report for people.
 */
#ifndef PTZCTL_CHECK_TEXT_REPORT_H
#define PTZCTL_CHECK_TEXT_REPORT_H

#include <string>

#include "report.h"
#include "settings.h"

namespace ptzctl::check {

/** Writes a report: a line for each rule, the details of all that did not pass, and a summary. */
std::string textOf(const CheckReport &report, const Settings &settings);

/** Writes the list of rules. */
std::string ruleList(bool json);

} // namespace ptzctl::check

#endif
