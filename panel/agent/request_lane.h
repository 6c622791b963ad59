// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Requests to an agent, one after the other, in a thread of their own.
 */
#ifndef QUARNSNMP_PANEL_REQUEST_LANE_H
#define QUARNSNMP_PANEL_REQUEST_LANE_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "session.h"

namespace panel {

/**
 * Queue of jobs that wait for an agent. An agent that hangs holds back the jobs of this lane only. All functions may be
 * called in any thread.
 */
class RequestLane {
public:
    using Clock = std::chrono::steady_clock;

    /** Work for the thread of the lane. */
    struct Job {
        std::string key; ///< a later job with the same key replaces this one while it waits; empty for none
        std::function<void(snmp::Requester &agent)> run;     ///< gets all failures of the SNMP library as snmp::Failure
        std::function<void(const std::string &reason)> fail; ///< called instead without a session
        std::function<void()> drop;                          ///< called instead when another job has replaced it
    };

    /** @param agent  address and community; the session is opened with the first job */
    explicit RequestLane(snmp::SessionOptions agent);

    /** Ends the thread. A wait for an answer is cut short, and jobs that wait are forgotten. */
    ~RequestLane();
    RequestLane(const RequestLane &) = delete;
    RequestLane &operator=(const RequestLane &) = delete;

    /** Adds a job. @return false when too many wait */
    bool add(Job job);

    /** Drops all jobs that wait. */
    void clear();

    /** Returns the number of jobs that wait. */
    std::size_t waiting() const;

    /** Returns the start of the present job; nothing without one. */
    std::optional<Clock::time_point> busySince() const;

    /** Returns the port from which the agent gets the requests; 0 before the first one. */
    std::uint16_t localPort() const;

private:
    void work();
    void perform(const Job &job);

    snmp::SessionOptions agent_;
    std::unique_ptr<snmp::Session> session_; ///< belongs to the thread
    mutable std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<Job> jobs_;
    std::optional<Clock::time_point> busySince_;
    std::atomic<bool> isStopping_{false};
    std::atomic<std::uint16_t> localPort_{0};
    std::thread thread_;
};

} // namespace panel

#endif
