// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Scenarios: control commands that are given to a camera at certain times, from a file.
 */
#ifndef QUARNSNMP_CAMERA_SCENARIO_H
#define QUARNSNMP_CAMERA_SCENARIO_H

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "json_file.h"

namespace camera {

/** A control command of a scenario. */
struct ScenarioCommand {
    nlohmann::json command;     ///< as the control socket takes it
    std::string missingService; ///< the service that the camera does not have, so that it is skipped; empty if it has
};

/** What happens at one time; commands are in the order in which they are given. */
struct ScenarioStep {
    double at = 0.0; ///< in seconds since the scenario's start
    std::vector<ScenarioCommand> commands;
};

/** What a scenario file holds; its steps never go back in time. */
struct Scenario {
    std::string file; ///< for messages
    std::string name;
    std::string description;
    bool skipMissingServices = false;
    std::vector<ScenarioStep> steps;
};

/** Latest time that a step can have, in seconds. */
inline constexpr std::int64_t kLatestStep = 1000000;

/** Reads the text of a scenario file. @param fileName for messages only @throws FileError */
Scenario parseScenario(const std::string &text, const std::string &fileName);

/** Reads a scenario file. @throws FileError */
Scenario readScenarioFile(const std::string &path);

/** Checks the camera's answer to a command of a step. @throws FileError when the camera refuses it */
void expectCarriedOut(const Scenario &scenario, std::size_t step, const nlohmann::json &answer);

/**
 * Checks a scenario for a camera without touching it: gives all commands, in order, to a copy of it. Marks what has to
 * be skipped because the camera does not have the service, where the scenario allows that.
 * @param state  the camera's state as its control socket tells it
 * @throws FileError for the first command that the camera would refuse
 */
void rehearse(Scenario &scenario, const nlohmann::json &state);

/** What a scenario is played on. */
struct Stage {
    std::function<void(double seconds)> waitUntil; ///< returns so many seconds after the start of the playing
    /** Gives the camera a command. @return what it answers */
    std::function<nlohmann::json(const nlohmann::json &command)> execute;
    std::ostream &output; ///< takes a line for each command, as soon as it has been carried out
};

/**
 * Plays a scenario that has been rehearsed.
 * @param speed  how many seconds of the scenario pass in a second
 * @throws FileError when the camera refuses a command after all; the others are not given then
 */
void play(const Scenario &scenario, double speed, const Stage &stage);

} // namespace camera

#endif
