// SPDX-License-Identifier: Apache-2.0
#include "control.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <thread>

#include "command_text.h"
#include "control_client.h"
#include "resources.h"
#include "run.h"
#include "scenario_runner.h"
#include "selection.h"
#include "shipped_files.h"
#include "timeline.h"
#include "visible_text.h"

namespace fleet {

namespace {

using nlohmann::json;
using Clock = std::chrono::steady_clock;

/** A camera while commands reach it. */
struct Controlled {
    FleetCamera camera;
    camera::Scenario scenario; ///< with the commands that this camera skips
    std::unique_ptr<camera::ControlClient> client;
    bool isLeftOut = false;
};

/** What has become of a step. */
struct StepCount {
    std::size_t pending = 0;
    std::size_t executed = 0;
    std::size_t skipped = 0;
};

/** Returns a scenario with a single command at its start. */
camera::Scenario scenarioOf(const json &command) {
    camera::Scenario scenario;
    scenario.steps.push_back({0.0, {{command, ""}}});
    return scenario;
}

/** Checks the scenario for each camera, and notes what each skips. */
void checkScenario(std::vector<Controlled> &cameras) {
    for (Controlled &each : cameras) {
        camera::ControlClient client(each.camera.directory);
        try {
            camera::dryRun(each.scenario, [&client](const json &command) { return client.execute(command); });
        } catch (const std::runtime_error &error) {
            throw std::runtime_error(each.camera.name + ": " + error.what());
        }
    }
}

/** Runs a function for a camera, and leaves the camera out if it fails. */
template <typename Act>
void attempt(Controlled &each, std::ostream &errors, const Act &act) {
    try {
        if (!each.client) {
            each.client = std::make_unique<camera::ControlClient>(each.camera.directory);
        }
        act();
    } catch (const std::runtime_error &error) {
        each.isLeftOut = true;
        errors << kProgram << ": " << camera::visible(each.camera.name + ": " + error.what()) << std::endl;
    }
}

json executeOrThrow(Controlled &each, const json &command) {
    json answer = each.client->execute(command);
    if (const std::optional<std::string> refusal = camera::refusalIn(answer)) {
        throw std::runtime_error(*refusal);
    }
    return answer;
}

/** Executes a step on a camera. @return true unless the camera lacks the service of each command */
bool executeStep(Controlled &each, std::size_t step) {
    bool executed = false;
    for (const camera::ScenarioCommand &command : each.scenario.steps[step].commands) {
        if (command.missingService.empty()) {
            executeOrThrow(each, command.command);
            executed = true;
        }
    }
    return executed;
}

/** Describes the effect of a step. */
std::string stepText(const camera::ScenarioStep &step) {
    std::string text;
    for (const camera::ScenarioCommand &each : step.commands) {
        text += (text.empty() ? "" : ", ") + camera::doneText(each.command);
    }
    return text;
}

std::string countText(const StepCount &count) {
    const std::string cameras = std::to_string(count.executed) + (count.executed == 1 ? " camera" : " cameras");
    return count.skipped == 0 ? cameras : cameras + "; " + std::to_string(count.skipped) + " without the service";
}

std::vector<double> timesOf(const camera::Scenario &scenario) {
    std::vector<double> times;
    std::transform(scenario.steps.begin(), scenario.steps.end(), std::back_inserter(times),
                   [](const camera::ScenarioStep &step) { return step.at; });
    return times;
}

void play(std::vector<Controlled> &cameras, double stagger, double speed, std::ostream &output, std::ostream &errors) {
    const camera::Scenario &scenario = cameras.front().scenario;
    std::vector<StepCount> counts(scenario.steps.size(), {cameras.size(), 0, 0});
    const Clock::time_point start = Clock::now();
    for (const Moment &moment : timelineOf(timesOf(scenario), cameras.size(), stagger, speed)) {
        std::this_thread::sleep_until(
            start + std::chrono::ceil<Clock::duration>(std::chrono::duration<double>(moment.seconds)));
        Controlled &each = cameras[moment.camera];
        StepCount &count = counts[moment.step];
        if (!each.isLeftOut) {
            attempt(each, errors, [&] { ++(executeStep(each, moment.step) ? count.executed : count.skipped); });
        }
        if (moment.step + 1 == scenario.steps.size()) {
            each.client.reset();
        }
        if (--count.pending == 0) {
            output << camera::visible(stepText(scenario.steps[moment.step]) + " (" + countText(count) + ")")
                   << std::endl;
        }
    }
}

void printStates(std::vector<Controlled> &cameras, std::ostream &output, std::ostream &errors) {
    nlohmann::ordered_json states = nlohmann::ordered_json::object();
    for (Controlled &each : cameras) {
        attempt(each, errors, [&] {
            states[each.camera.name] = executeOrThrow(each, {{"command", "state"}})["state"];
        });
        each.client.reset();
    }
    constexpr int kIndent = 2;
    output << camera::visible(states.dump(kIndent, ' ', false, nlohmann::ordered_json::error_handler_t::replace), "\n")
           << std::endl;
}

} // namespace

camera::ControlRequest parseCommand(const std::vector<std::string> &words) {
    CLI::App app("Control command", "control --");
    app.set_help_flag();
    camera::ControlRequest request;
    camera::ControlArguments arguments;
    camera::addControlCommands(app, request, arguments);
    const std::string word = words.empty() ? "" : words.front();
    if (app.get_subcommands([&word](const CLI::App *command) { return command->get_name() == word; }).empty()) {
        throw CLI::ValidationError("COMMAND", "'" + word + "' is not a command of quarnsnmp-camctl");
    }
    app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    if (request.command.value("command", "") == "follow") {
        throw CLI::ValidationError("follow", "works for one camera only; use quarnsnmp-camctl --directory DIR/NUMBER");
    }
    return request;
}

bool controlFleet(const ControlOptions &options, const camera::ControlRequest &request, std::ostream &output,
                  std::ostream &errors) {
    raiseLimits(); // a connection to each camera while a scenario plays
    const bool isScenario = !request.scenario.empty();
    const camera::Scenario scenario =
        isScenario ? camera::readScenarioFile(camera::findShippedFile("scenario", request.scenario))
                   : scenarioOf(request.command);
    std::vector<Controlled> cameras;
    for (const FleetCamera &camera : selected(camerasOf(options.directory), options.select)) {
        cameras.push_back({camera, scenario, nullptr, false});
    }
    if (isScenario) {
        checkScenario(cameras);
    }
    if (request.command.value("command", "") == "state") {
        printStates(cameras, output, errors);
    } else {
        play(cameras, options.stagger, request.speed, output, errors);
    }
    return std::none_of(cameras.begin(), cameras.end(), [](const Controlled &each) { return each.isLeftOut; });
}

} // namespace fleet
