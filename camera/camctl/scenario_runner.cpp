// SPDX-License-Identifier: Apache-2.0
#include "scenario_runner.h"

#include <iomanip>
#include <ostream>

#include "command_text.h"
#include "text_file.h"
#include "visible_text.h"

namespace camera {

namespace {

using nlohmann::json;

/** Checks the answer to a command of a step. @throws FileError when the camera refused the command */
void expectSuccess(const Scenario &scenario, std::size_t step, const json &answer) {
    if (const std::optional<std::string> refusal = refusalIn(answer)) {
        throw FileError(scenario.file + ": " + stepPath(step) + ": " + *refusal);
    }
}

} // namespace

void dryRun(Scenario &scenario, const CommandExecutor &execute) {
    const json start = {{"command", "dryRun"}, {"skipMissingServices", scenario.skipMissingServices}};
    if (const std::optional<std::string> refusal = refusalIn(execute(start))) {
        throw FileError(scenario.file + ": " + *refusal);
    }
    for (std::size_t i = 0; i < scenario.steps.size(); ++i) {
        for (ScenarioCommand &each : scenario.steps[i].commands) {
            const json answer = execute(each.command);
            expectSuccess(scenario, i, answer);
            const json skipped = answer.value("skipped", json());
            each.missingService = skipped.is_string() ? skipped.get<std::string>() : "";
        }
    }
}

void ScenarioRunner::play(const Scenario &scenario, double speed) const {
    constexpr int kColumn = 9;
    for (std::size_t i = 0; i < scenario.steps.size(); ++i) {
        const ScenarioStep &step = scenario.steps[i];
        waitUntil(step.at / speed);
        for (const ScenarioCommand &each : step.commands) {
            std::string text = "skipped: the camera has no " + each.missingService;
            if (each.missingService.empty()) {
                expectSuccess(scenario, i, execute(each.command));
                text = doneText(each.command);
            }
            output << std::setw(kColumn) << std::fixed << std::setprecision(1) << step.at << " s  " << visible(text)
                   << std::endl;
        }
    }
}

} // namespace camera
