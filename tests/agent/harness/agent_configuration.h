// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Configurations of the tests' agents, and the roles of the two agents that share the work of one.
 */
#ifndef QUARNSNMP_HARNESS_AGENT_CONFIGURATION_H
#define QUARNSNMP_HARNESS_AGENT_CONFIGURATION_H

#include <cstdint>
#include <string>

#include "agent.h"

namespace harness {

/** Returns the configuration of an agent that serves managers. @param port  UDP port on the loopback interface */
std::string agentConfiguration(const AgentOptions &options, std::uint16_t port);

/**
 * Returns the options of the master: all of `options` but the modules.
 * @param socket  path of the socket that the master offers to its subagent
 */
AgentOptions masterOptions(const AgentOptions &options, const std::string &socket);

/** Returns the options of the subagent: the modules, and the way to the master. @param socket  as for masterOptions()
 */
AgentOptions subagentOptions(const AgentOptions &options, const std::string &socket);

} // namespace harness

#endif
