// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Scenarios that the page plays.
 */
#ifndef QUARNSNMP_PANEL_SCENARIO_PLAYER_H
#define QUARNSNMP_PANEL_SCENARIO_PLAYER_H

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <boost/asio/io_context.hpp>

#include "scenario.h"

namespace panel {

/** Progress of a scenario. */
struct ScenarioProgress {
    std::string status = "stopped"; ///< playing, done, stopped or failed
    std::string name;
    double speed = 1.0;
    double at = 0.0;      ///< time of the last step, in seconds of the scenario
    double seconds = 0.0; ///< time of the end
    std::size_t step = 0; ///< number of steps that have begun
    std::size_t steps = 0;
    std::string message; ///< last command, or the reason of a failure
};

/** A scenario to choose. */
struct ScenarioSummary {
    std::string name; ///< for play()
    std::string description;
    double seconds;
    std::size_t steps;
};

/** Lists the shipped scenarios. A file that cannot be read is left out. */
std::vector<ScenarioSummary> shippedScenarios();

/**
 * Plays one scenario at a time in a thread of its own, which has its own connection to the camera. Public functions
 * belong to the thread of the io_context.
 */
class ScenarioPlayer : public std::enable_shared_from_this<ScenarioPlayer> {
public:
    using Handler = std::function<void(const ScenarioProgress &progress)>;

    /** @param onProgress  called in the thread of the io_context */
    ScenarioPlayer(boost::asio::io_context &io, std::string directory, Handler onProgress);
    ~ScenarioPlayer();
    ScenarioPlayer(const ScenarioPlayer &) = delete;
    ScenarioPlayer &operator=(const ScenarioPlayer &) = delete;

    /**
     * Starts a shipped scenario.
     * @param speed  seconds of the scenario per second
     * @throws std::runtime_error while another one plays, for an unknown name and for an unusable file
     */
    void play(const std::string &name, double speed);

    /** Ends the present scenario, and leaves the camera as it is. */
    void stop();

    const ScenarioProgress &progress() const;

private:
    void work(camera::Scenario scenario, double speed);
    void perform(camera::Scenario &scenario, double speed, ScenarioProgress &progress);
    void report(const ScenarioProgress &progress);

    boost::asio::io_context &io_;
    std::string directory_;
    Handler onProgress_;
    ScenarioProgress progress_;
    std::mutex mutex_;
    std::condition_variable wake_;
    bool isStopping_ = false;
    std::thread thread_;
};

} // namespace panel

#endif
