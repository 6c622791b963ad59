// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Outcomes of a command for one or several cameras.
 */
#ifndef PTZCTL_OUTCOME_H
#define PTZCTL_OUTCOME_H

#include <functional>
#include <string>
#include <vector>

#include "context.h"
#include "exit_code.h"

namespace ptzctl {

/** Outcome of a command for one camera. */
struct Outcome {
    ExitCode code = ExitCode::Done;
    Report report;
    std::string error; ///< empty for ExitCode::Done
    std::string advice;
};

/** Runs a command and converts its exception, if any. */
Outcome outcomeOf(const std::function<void(Report &)> &command);

/** Returns the common exit code, or SomeFailed. */
ExitCode overallCode(const std::vector<Outcome> &outcomes);

/** Writes the reports, below the names of the hosts if there are several. */
std::string outcomesText(const std::vector<std::string> &hosts, const std::vector<Outcome> &outcomes,
                         const Style &style);

/** Counts the outcomes in a line, such as "3 cameras: 2 done, 1 no answer". */
std::string summaryText(const std::vector<Outcome> &outcomes);

/** Writes an error and its advice as one or two lines. @param host empty for a command without a camera */
std::string errorText(const std::string &host, const Outcome &outcome);

/** Writes the errors of all outcomes. */
std::string errorsText(const std::vector<std::string> &hosts, const std::vector<Outcome> &outcomes);

/** Converts outcomes to JSON: an object for one host, a list for several. */
nlohmann::ordered_json outcomesJson(const std::vector<std::string> &hosts, const std::vector<Outcome> &outcomes);

} // namespace ptzctl

#endif
