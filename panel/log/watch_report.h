// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Reports of the agent's watch module; docs/watch.md describes them.
 */
#ifndef QUARNSNMP_PANEL_WATCH_REPORT_H
#define QUARNSNMP_PANEL_WATCH_REPORT_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "varbind.h"

namespace panel {

/** Longest datagram in octets. */
inline constexpr std::size_t kLongestReport = 4096;

/** Request for one object, as the agent has handled it. */
struct WatchReport {
    std::chrono::system_clock::time_point time{};
    std::chrono::microseconds duration{0};
    std::string version;   ///< 1, 2c or 3; empty if unknown
    std::string principal; ///< community or user; empty if unknown
    std::string sender;    ///< ADDRESS:PORT; empty if unknown
    std::string operation; ///< GET, GETNEXT, GETBULK or SET
    std::string phase;
    snmp::Varbind value; ///< with the OID of the object
    bool isCut = false;  ///< the value has more octets
    std::string outcome;
    std::uint64_t lost = 0; ///< number of reports that are missing before this one

    bool isWrite() const {
        return operation == "SET";
    }
};

/** Parses a datagram. @return nothing for anything but a complete report */
std::optional<WatchReport> parseWatchReport(std::string_view datagram);

} // namespace panel

#endif
