// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Configuration and environment of a camera's agent.
 */
#ifndef QUARNSNMP_FLEET_AGENT_FILES_H
#define QUARNSNMP_FLEET_AGENT_FILES_H

#include <optional>
#include <string>
#include <vector>

#include "plan.h"

namespace fleet {

/** Community that reads the agent's counter of messages, and nothing else. */
inline constexpr const char *kCounterCommunity = "quarnsnmp-fleet";

/** Messages that an agent has received (snmpInPkts). */
inline constexpr const char *kReceivedMessages = ".1.3.6.1.2.1.11.1.0";

/** Returns the text of an agent's configuration. @param trapTo  destination of traps; nothing for none */
std::string agentConfiguration(const CameraPlan &camera, const std::string &module,
                               const std::optional<boost::asio::ip::udp::endpoint> &trapTo);

/** Returns the path of an agent's configuration. */
std::string configurationPath(const CameraPlan &camera);

/** Returns the path of the log of a camera and its agent. */
std::string logPath(const CameraPlan &camera);

/** Returns the path of a camera's presets. */
std::string presetsPath(const CameraPlan &camera);

/** Returns the path of the directory of an agent's persistent data. */
std::string persistentDirectory(const CameraPlan &camera);

/** Returns the command line of a camera. */
std::vector<std::string> cameraCommand(const CameraPlan &camera, const std::string &program);

/** Returns the command line of an agent. It loads only those of the agent's own objects that a camera needs. */
std::vector<std::string> agentCommand(const CameraPlan &camera, const std::string &program);

/** Returns the environment of an agent: that of this process with changes. */
std::vector<std::string> agentEnvironment(const CameraPlan &camera);

} // namespace fleet

#endif
