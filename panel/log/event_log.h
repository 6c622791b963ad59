// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The last events of a camera.
 */
#ifndef QUARNSNMP_PANEL_EVENT_LOG_H
#define QUARNSNMP_PANEL_EVENT_LOG_H

#include <cstddef>
#include <cstdint>
#include <deque>

#include <nlohmann/json.hpp>

#include "http_response.h"

namespace panel {

/** Bounded list of entries, each one line of JSON. */
class EventLog {
public:
    struct Entry {
        std::uint64_t id;
        SharedText json; ///< without a newline
    };

    /** Number of entries; each new one replaces the oldest. */
    static constexpr std::size_t kLimit = 2000;

    /** Adds an entry and gives it the member "id". */
    const Entry &add(const nlohmann::ordered_json &entry);

    /** Returns all entries, oldest first. */
    const std::deque<Entry> &entries() const;

private:
    std::uint64_t lastId_ = 0;
    std::deque<Entry> entries_;
};

} // namespace panel

#endif
