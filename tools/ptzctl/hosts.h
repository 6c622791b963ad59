// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * One command for several cameras at the same time.
 */
#ifndef PTZCTL_HOSTS_H
#define PTZCTL_HOSTS_H

#include <functional>
#include <string>
#include <vector>

#include "context.h"
#include "failure.h"

namespace ptzctl {

/** How a command ended for one camera. */
struct Outcome {
    ExitCode code = ExitCode::Done;
    Report report;
    std::string error; ///< empty when the code is Done
    std::string advice;
};

/** Runs a command and turns what it throws into an outcome. */
Outcome outcomeOf(const std::function<void(Report &)> &command);

/**
 * Asks all cameras at once, each in a process of its own: the SNMP library keeps the keys of SNMPv3 users for the whole
 * process without a lock, and a camera that does not answer keeps only its own process waiting.
 * @param command  is run in the new processes
 * @return one outcome for each host, in their order
 */
std::vector<Outcome> runOnAll(const std::vector<std::string> &hosts,
                              const std::function<void(const std::string &host, Report &)> &command);

/** The exit code of several commands: their common one, or SomeFailed. */
ExitCode overallCode(const std::vector<Outcome> &outcomes);

/** What an outcome looks like: texts, with the hosts as headings when there are several. */
std::string outcomesText(const std::vector<std::string> &hosts, const std::vector<Outcome> &outcomes,
                         const Style &style);

/** The errors among outcomes, one or two lines each. */
std::string errorsText(const std::vector<std::string> &hosts, const std::vector<Outcome> &outcomes);

/** All outcomes for programs: an object with one host, a list with several. */
nlohmann::ordered_json outcomesJson(const std::vector<std::string> &hosts, const std::vector<Outcome> &outcomes);

} // namespace ptzctl

#endif
