// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Report about one camera.
 */
#ifndef PTZCTL_CHECK_REPORT_H
#define PTZCTL_CHECK_REPORT_H

#include <array>
#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "exchange.h"
#include "rule.h"

namespace ptzctl::check {

/** What a rule has found, with its evidence. */
struct RuleOutcome {
    const Rule *rule;
    Finding finding;
    std::vector<const Exchange *> evidence; ///< in their order; owned by the Context
    std::chrono::microseconds elapsed = {};
};

/** The camera's own statements about itself; empty texts for missing ones. */
struct Subject {
    std::string host;
    std::string make;
    std::string model;
    std::string version;
};

/** Sentences that each report has in the same words. */
inline constexpr const char *kDisclaimer =
    "This report certifies nothing. NTCIP 1205 has no test procedures; the rules compare the camera with public "
    "definitions, sound SNMP behaviour and its own statements.";

struct CheckReport {
    Subject subject;
    std::string target; ///< credentials and address as options of the Net-SNMP programs
    std::string time;   ///< of the start, as 2026-03-12T10:00:00Z
    std::vector<RuleOutcome> outcomes;
    std::vector<std::string> troubles; ///< values that could not be restored
    std::size_t requests = 0;
    std::chrono::microseconds elapsed = {};
};

/** Number of outcomes with a result. */
std::size_t count(const CheckReport &report, Result result);

/** Writes the numbers of results in words, such as "40 pass, 2 fail, 6 differ". */
std::string summaryText(const CheckReport &report);

} // namespace ptzctl::check

#endif
