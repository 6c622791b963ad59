// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * All cameras of a fleet, from the first start to the last end.
 */
#ifndef QUARNSNMP_FLEET_SUPERVISOR_H
#define QUARNSNMP_FLEET_SUPERVISOR_H

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include <boost/asio/signal_set.hpp>

#include "pair.h"

namespace fleet {

/** What a supervisor tells. */
struct SupervisorReport {
    std::function<void(double seconds)> allReady; ///< once, with the time that the start took
    std::function<void(const std::string &text)> progress;
    std::function<void(const std::string &text)> trouble;
};

/** Starts all cameras, a few at a time, keeps them running and ends them. Not thread-safe. */
class Supervisor : private PairListener {
public:
    /**
     * @param cameras   at least one, with their numbers in order
     * @param programs  must outlive this object
     */
    Supervisor(boost::asio::io_context &io, const std::vector<CameraPlan> &cameras, const Programs &programs,
               SupervisorReport report);

    /** Starts the cameras. Stops the fleet if one cannot be started. */
    void start();

    /** Ends all processes. Then the event loop has no more work of this object. A second call is less patient. */
    void stop();

    /** Returns why the fleet could not start; nothing if it could. */
    const std::optional<std::string> &failure() const {
        return failure_;
    }

    /** Returns the cameras for `status`. */
    nlohmann::json describe() const;

private:
    void ready(unsigned number) override;
    void failed(unsigned number, const std::string &text, unsigned failures) override;
    void started(unsigned number, pid_t process) override;

    Pair &pair(unsigned number) {
        return *pairs_[number - 1];
    }
    void startMore();
    void awaitEnds();
    void takeEnds();
    void answered(const boost::asio::ip::udp::endpoint &from, const snmp::DecodedResponse &response);
    void reportProgress();
    void endIfGone();
    void killLater();

    boost::asio::io_context &io_;
    SupervisorReport report_;
    boost::asio::signal_set childEnds_;
    boost::asio::steady_timer progressTimer_;
    boost::asio::steady_timer killTimer_;
    AgentAsker asker_;
    std::vector<std::unique_ptr<Pair>> pairs_;
    std::unordered_map<pid_t, unsigned> numbers_; ///< of the cameras, by process
    std::chrono::steady_clock::time_point startTime_;
    std::vector<bool> wasReady_;
    std::size_t readyCount_ = 0; ///< cameras that have been ready
    std::size_t startCount_ = 0; ///< cameras whose start has begun
    bool stopping_ = false;
    std::optional<std::string> failure_;
};

} // namespace fleet

#endif
