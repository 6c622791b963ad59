// SPDX-License-Identifier: Apache-2.0
#include "scenario_player.h"

#include <chrono>
#include <exception>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <utility>

#include <boost/asio/post.hpp>

#include "command_text.h"
#include "control_client.h"
#include "scenario_runner.h"
#include "shipped_files.h"
#include "text_file.h"

namespace panel {

namespace {

/** End of a scenario that somebody has stopped. */
class Stopped : public std::exception {};

std::string directoryOfScenarios() {
    return camera::shippedDirectory("scenarios");
}

double lengthOf(const camera::Scenario &scenario) {
    return scenario.steps.empty() ? 0.0 : scenario.steps.back().at;
}

} // namespace

std::vector<ScenarioSummary> shippedScenarios() {
    std::vector<ScenarioSummary> summaries;
    for (const camera::NamedFile &file : camera::namedFiles(directoryOfScenarios())) {
        try {
            const camera::Scenario scenario = camera::readScenarioFile(file.path);
            summaries.push_back({file.name, scenario.description, lengthOf(scenario), scenario.steps.size()});
        } catch (const camera::FileError &) {
            continue;
        }
    }
    return summaries;
}

ScenarioPlayer::ScenarioPlayer(boost::asio::io_context &io, std::string directory, Handler onProgress)
    : io_(io), directory_(std::move(directory)), onProgress_(std::move(onProgress)) {}

ScenarioPlayer::~ScenarioPlayer() {
    stop();
    if (thread_.joinable()) {
        thread_.join();
    }
}

const ScenarioProgress &ScenarioPlayer::progress() const {
    return progress_;
}

void ScenarioPlayer::play(const std::string &name, double speed) {
    if (progress_.status == "playing") {
        throw std::runtime_error(progress_.name + " is playing");
    }
    // Names only: a path would let the page read files.
    for (const camera::NamedFile &file : camera::namedFiles(directoryOfScenarios())) {
        if (file.name != name) {
            continue;
        }
        camera::Scenario scenario = camera::readScenarioFile(file.path);
        if (thread_.joinable()) {
            thread_.join();
        }
        isStopping_ = false;
        progress_ = {"playing", name, speed, 0.0, lengthOf(scenario), 0, scenario.steps.size(), ""};
        onProgress_(progress_);
        thread_ = std::thread([this, scenario = std::move(scenario), speed] { work(scenario, speed); });
        return;
    }
    throw std::runtime_error("there is no scenario '" + name + "'");
}

void ScenarioPlayer::stop() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        isStopping_ = true;
    }
    wake_.notify_one();
}

void ScenarioPlayer::work(camera::Scenario scenario, double speed) {
    ScenarioProgress progress = progress_;
    try {
        perform(scenario, speed, progress);
        progress.status = "done";
    } catch (const Stopped &) {
        progress.status = "stopped";
    } catch (const std::exception &error) {
        progress.status = "failed";
        progress.message = error.what();
    }
    report(progress);
}

void ScenarioPlayer::perform(camera::Scenario &scenario, double speed, ScenarioProgress &progress) {
    camera::ControlClient trial(directory_);
    camera::dryRun(scenario, [&](const nlohmann::json &command) { return trial.execute(command); });
    camera::ControlClient client(directory_);
    std::ostringstream lines; // the progress has the same
    const auto start = std::chrono::steady_clock::now();
    const camera::ScenarioRunner runner = {
        [&](double seconds) {
            const auto time = start + std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                                          std::chrono::duration<double>(seconds));
            std::unique_lock<std::mutex> lock(mutex_);
            if (wake_.wait_until(lock, time, [&] { return isStopping_; })) {
                throw Stopped();
            }
            progress.at = seconds * speed;
            ++progress.step;
        },
        [&](const nlohmann::json &command) {
            nlohmann::json answer = client.execute(command);
            progress.message = camera::doneText(command);
            report(progress);
            return answer;
        },
        lines};
    runner.play(scenario, speed);
}

void ScenarioPlayer::report(const ScenarioProgress &progress) {
    boost::asio::post(io_, [weak = weak_from_this(), progress] {
        if (const std::shared_ptr<ScenarioPlayer> self = weak.lock()) {
            self->progress_ = progress;
            self->onProgress_(progress);
        }
    });
}

} // namespace panel
