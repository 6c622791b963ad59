// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Entries of the log as JSON.
 */
#ifndef QUARNSNMP_PANEL_LOG_ENTRIES_H
#define QUARNSNMP_PANEL_LOG_ENTRIES_H

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "notification_receiver.h"
#include "watch_report.h"

namespace panel {

/** Describes a request that has reached the agent. */
nlohmann::ordered_json requestEntry(const WatchReport &report);

/** Describes a notification. */
nlohmann::ordered_json trapEntry(const snmp::Received &trap);

/** Describes an event of the camera. */
nlohmann::ordered_json eventEntry(const nlohmann::json &event);

/** Describes something that the panel itself has noticed. @param ok  false for trouble */
nlohmann::ordered_json noticeEntry(const std::string &text, bool ok);

} // namespace panel

#endif
