// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The agent of one camera: actions of the page, and readings for the table of objects.
 */
#ifndef QUARNSNMP_PANEL_AGENT_CLIENT_H
#define QUARNSNMP_PANEL_AGENT_CLIENT_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <boost/asio/io_context.hpp>
#include <nlohmann/json.hpp>

#include "action_plan.h"
#include "reading.h"
#include "request_lane.h"

namespace panel {

/** Address and communities of an agent. */
struct AgentAddress {
    std::string agent; ///< HOST:PORT
    std::string readCommunity = "public";
    std::string writeCommunity = "private";
};

/** What is known about an agent. */
struct AgentReport {
    std::string status = "unknown"; ///< unknown, up, waiting or silent
    std::chrono::system_clock::time_point since{};
    std::chrono::steady_clock::time_point answered{}; ///< time of the last answer
    std::string message;
    std::size_t queue = 0;
    std::chrono::milliseconds busy{0}; ///< age of the oldest request under way
};

/**
 * Requests to an agent. Stops, other actions and readings have a lane each, so that a hanging service never holds back
 * a stop. Functions and callbacks belong to the thread of the io_context.
 */
class AgentClient : public std::enable_shared_from_this<AgentClient> {
public:
    using Done = std::function<void(const nlohmann::ordered_json &report)>;
    using ReadDone = std::function<void(const std::vector<ptz::Reading> &readings, std::chrono::microseconds duration)>;

    AgentClient(boost::asio::io_context &io, AgentAddress address);

    /** Carries out an action. @return false when too many actions wait */
    bool perform(const ActionPlan &plan, Done done);

    /** Reads objects. @return false when the lane is busy */
    bool read(const std::vector<ptz::Instance> &instances, ReadDone done);

    /** Finds the rows of a column. @return false when the lane is busy */
    bool readRows(const std::string &column, ReadDone done);

    /** Returns what is known now. */
    AgentReport report();

    /** Tests whether a request came from the readings of this client. @param source  ADDRESS:PORT */
    bool isOwnReading(const std::string &source) const;

    const AgentAddress &address() const;

private:
    using Reader = std::function<std::vector<ptz::Reading>(snmp::Requester &agent)>;

    bool addRead(Reader reader, ReadDone done);
    nlohmann::ordered_json outline(const ActionPlan &plan) const;
    void enter(const std::string &status, const std::string &message);
    void noteAnswer(bool hasAnswer, const std::string &message);

    boost::asio::io_context &io_;
    AgentAddress address_;
    AgentReport report_;
    RequestLane stops_;
    RequestLane commands_;
    RequestLane reads_;
};

} // namespace panel

#endif
