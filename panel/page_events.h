// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Events for the pages as text and as JSON.
 */
#ifndef QUARNSNMP_PANEL_PAGE_EVENTS_H
#define QUARNSNMP_PANEL_PAGE_EVENTS_H

#include <cstdint>
#include <string>

#include <nlohmann/json.hpp>

#include "agent_client.h"
#include "camera_link.h"
#include "event_log.h"
#include "scenario_player.h"

namespace panel {

/** Writes an event of the stream. @param data  one line @param id  0 for an event without an ID */
SharedText eventText(const std::string &event, const std::string &data, std::uint64_t id = 0);

/** Writes the entries of a log as events, without those up to an ID. */
SharedText logText(const EventLog &log, std::uint64_t lastId);

/** Describes a status of a camera for people. */
std::string statusText(const CameraReport &report);

nlohmann::ordered_json agentJson(const AgentReport &report);
nlohmann::ordered_json scenarioJson(const ScenarioProgress &progress);

/** Returns the place of a drive in its range, from 0 to 100. */
double percentOf(const DriveState &drive);

/** Writes the arguments of the control program for a command of its socket. */
std::string controlArguments(const nlohmann::json &command);

} // namespace panel

#endif
