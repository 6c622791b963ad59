// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Actions of the page as SNMP requests.
 */
#ifndef QUARNSNMP_PANEL_ACTION_PLAN_H
#define QUARNSNMP_PANEL_ACTION_PLAN_H

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "object_values.h"
#include "request.h"
#include "view_angles.h"

namespace panel {

/** Error in an action; what() is for people. */
class ActionError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** Request to the agent that carries out an action. */
struct ActionPlan {
    std::string action;
    snmp::Operation operation = snmp::Operation::Set;
    std::vector<snmp::Varbind> varbinds;
    std::vector<std::string> ptzctl; ///< arguments of ptzctl for the same; empty if it has no such command
    bool isStop = false;             ///< goes ahead of all other actions, and is repeated without an answer
    std::string key;                 ///< a later action with the same key replaces this one; empty for none
};

/**
 * Plans an action.
 * @param body    JSON object with the member "action"; see docs/panel.md
 * @param angles  present view of the camera, for "centre"; nothing without a camera that turns
 * @throws ActionError
 */
ActionPlan planAction(const nlohmann::json &body, const std::optional<ViewAngles> &angles);

/** Command line of Net-SNMP for a plan. @param agent  HOST:PORT */
std::string snmpCommandLine(const ActionPlan &plan, const std::string &agent, const std::string &community);

} // namespace panel

#endif
