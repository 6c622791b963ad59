// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Values of all objects of an agent, read in turn.
 */
#ifndef QUARNSNMP_PANEL_OBJECT_WATCH_H
#define QUARNSNMP_PANEL_OBJECT_WATCH_H

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <nlohmann/json.hpp>

#include "agent_client.h"

namespace panel {

/** Access to an object by somebody, for people. */
struct ObjectAccess {
    std::string time; ///< empty without an access
    std::string by;   ///< address
    std::string as;   ///< community or user
    std::string value;
    std::string meaning;
};

/**
 * Table of the objects. While somebody looks, it reads a few objects at a time; a slow agent is asked more seldom. All
 * functions belong to the thread of the io_context.
 */
class ObjectWatch : public std::enable_shared_from_this<ObjectWatch> {
public:
    /** @param onRows  called with the rows of each reading, as JSON */
    ObjectWatch(boost::asio::io_context &io, std::shared_ptr<AgentClient> agent,
                std::function<void(const nlohmann::ordered_json &rows)> onRows);

    /** Starts or stops reading. */
    void setActive(bool active);

    /** Returns all rows as JSON. */
    nlohmann::ordered_json rows() const;

    /** Notes that somebody has read or written an object. @param oid  with a leading dot */
    void noteAccess(const std::string &oid, bool isWrite, const ObjectAccess &access);

    /** Looks for the rows of the tables again, as after a restart of the agent. */
    void forgetRows();

private:
    struct Row {
        ptz::Instance instance;
        snmp::Varbind value; ///< the last good one; Null before
        std::chrono::system_clock::time_point read{};
        std::string problem = "not read yet";
        bool missing = false;
        ObjectAccess written = {};
        ObjectAccess asked = {};
    };

    void schedule(std::chrono::microseconds pause);
    void readNext();
    void readNextColumn();
    void takeColumn(const std::vector<ptz::Reading> &rows);
    void takeRows(const std::vector<ptz::Reading> &rows);
    void takeReadings(const std::vector<ptz::Reading> &readings);
    void finish(std::chrono::microseconds duration);
    void markUnread();
    nlohmann::ordered_json json(const Row &row) const;
    Row *rowAt(const std::string &oid);

    std::shared_ptr<AgentClient> agent_;
    std::function<void(const nlohmann::ordered_json &rows)> onRows_;
    boost::asio::steady_timer timer_;
    std::vector<Row> rows_;
    std::size_t next_ = 0;   ///< row to read next
    std::size_t column_ = 0; ///< column to look for next; kColumns.size() when all are known
    std::size_t round_ = 0;  ///< number of the pass through the table
    bool isActive_ = false;
    bool isReading_ = false;
};

} // namespace panel

#endif
