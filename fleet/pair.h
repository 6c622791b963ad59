// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A camera of the fleet: the camera process and its agent.
 */
#ifndef QUARNSNMP_FLEET_PAIR_H
#define QUARNSNMP_FLEET_PAIR_H

#include <array>
#include <chrono>
#include <string>

#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/steady_timer.hpp>
#include <nlohmann/json.hpp>

#include "agent_asker.h"
#include "plan.h"

namespace fleet {

/** Pause before a process starts again. @param failures  how often it has ended soon after its start, from 1 */
std::chrono::milliseconds pauseAfter(unsigned failures);

/** What a pair reports. */
class PairListener {
public:
    virtual ~PairListener() = default;

    /** Reports that the camera runs and its agent answers, also after a restart. */
    virtual void ready(unsigned number) = 0;
    /** Reports an end that nobody asked for. @param failures  in succession */
    virtual void failed(unsigned number, const std::string &text, unsigned failures) = 0;
    /** Reports a new process, whose end must be passed to ended(). */
    virtual void started(unsigned number, pid_t process) = 0;
};

/** A camera and its agent. Starts each again when it ends. Not thread-safe. */
class Pair {
public:
    /** The references must outlive the pair. */
    Pair(boost::asio::io_context &io, const CameraPlan &plan, const Programs &programs, AgentAsker &asker,
         PairListener &listener);
    Pair(const Pair &) = delete;
    Pair &operator=(const Pair &) = delete;

    /** Starts the camera, and after it the agent. */
    void start();

    /** Takes the end of a process. @param status  as from waitpid() */
    void ended(pid_t process, int status);

    /** Takes a response of the agent. */
    void answered(const snmp::DecodedResponse &response);

    /** Ends both processes with a signal, and starts none again. */
    void stop(int signal);

    bool isReady() const {
        return camera_.isReady && agent_.isReady;
    }

    /** Returns true if no process runs. */
    bool isGone() const {
        return camera_.process < 0 && agent_.process < 0;
    }

    const CameraPlan &plan() const {
        return plan_;
    }

    /** Returns what `status` shows. */
    nlohmann::json describe() const;

private:
    using Clock = std::chrono::steady_clock;

    /** One of the two programs. */
    struct Part {
        Part(boost::asio::io_context &io, std::string partName) : timer(io), name(std::move(partName)) {}

        boost::asio::steady_timer timer; ///< of the pause before a start, then of the time limit of the start
        std::string name;
        pid_t process = -1;
        bool isReady = false;
        unsigned starts = 0;
        unsigned failures = 0; ///< ends in succession, each soon after the start
        Clock::time_point started;
        std::string reason; ///< why this program has ended the process, if it has
    };

    void startCamera();
    void startAgent();
    void readCamera();
    void askAgent();
    void becomeReady(Part &part);
    void begin(Part &part, pid_t process);
    void limitStart(Part &part);
    void startAgain(Part &part, const std::string &text);
    void startPart(Part &part);

    CameraPlan plan_;
    const Programs &programs_;
    AgentAsker &asker_;
    PairListener &listener_;
    Part camera_;
    Part agent_;
    boost::asio::posix::stream_descriptor output_; ///< of the camera until it is ready
    boost::asio::steady_timer nextQuestion_;
    snmp::Message question_;
    std::array<char, 512> line_{};
    bool stopping_ = false;
};

} // namespace fleet

#endif
