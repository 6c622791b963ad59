// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Scenario files: control commands and the times of their execution.
 */
#ifndef QUARNSNMP_CAMERA_SCENARIO_H
#define QUARNSNMP_CAMERA_SCENARIO_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace camera {

/** Control command of a scenario. */
struct ScenarioCommand {
    nlohmann::json command;     ///< in the form of the control socket
    std::string missingService; ///< service that the camera lacks; if not empty, the command is skipped
};

/** Commands of one time, in the order of their execution. */
struct ScenarioStep {
    double at = 0.0; ///< in seconds since the start of the scenario
    std::vector<ScenarioCommand> commands;
};

/** Contents of a scenario file. The times of the steps never decrease. */
struct Scenario {
    std::string file; ///< for error messages
    std::string name;
    std::string description;
    bool skipMissingServices = false;
    std::vector<ScenarioStep> steps;
};

/** Latest time of a step, in seconds. */
inline constexpr std::int64_t kLatestStep = 1000000;

/** Returns the path of a step for error messages, such as "steps[2]". */
std::string stepPath(std::size_t index);

/** Parses the text of a scenario file. @param fileName  for error messages @throws FileError */
Scenario parseScenario(const std::string &text, const std::string &fileName);

/** Reads a scenario file. @throws FileError */
Scenario readScenarioFile(const std::string &path);

} // namespace camera

#endif
