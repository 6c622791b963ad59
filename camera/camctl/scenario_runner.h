// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Dry run and execution of scenarios.
 */
#ifndef QUARNSNMP_CAMERA_SCENARIO_RUNNER_H
#define QUARNSNMP_CAMERA_SCENARIO_RUNNER_H

#include <functional>
#include <iosfwd>

#include "scenario.h"

namespace camera {

/** Sends a control command and returns the camera's answer. */
using CommandExecutor = std::function<nlohmann::json(const nlohmann::json &command)>;

/**
 * Checks a scenario for a camera, without a change of the camera: sends all its commands to a dry run. Marks the
 * commands that the camera skips because it lacks their service.
 * @param execute  sends commands on a connection of its own, which this function puts into a dry run
 * @throws FileError for the first command that the camera refuses
 */
void dryRun(Scenario &scenario, const CommandExecutor &execute);

/** Environment for the execution of a scenario. */
struct ScenarioRunner {
    std::function<void(double seconds)> waitUntil; ///< waits until a time, in seconds since the start of the execution
    CommandExecutor execute;
    std::ostream &output; ///< receives a line after each command

    /**
     * Executes a scenario after its dry run.
     * @param speed  seconds of the scenario per second
     * @throws FileError when the camera refuses a command; the execution ends there
     */
    void play(const Scenario &scenario, double speed) const;
};

} // namespace camera

#endif
