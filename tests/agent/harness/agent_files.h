// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The configuration and the environment of an agent.
 */
#ifndef QUARNSNMP_HARNESS_AGENT_FILES_H
#define QUARNSNMP_HARNESS_AGENT_FILES_H

#include <cstdint>
#include <map>
#include <string>

#include "agent.h"

namespace harness {

/** The text of the agent's configuration. */
std::string agentConfiguration(const AgentOptions &options, std::uint16_t port);

/**
 * Returns the environment that the agent has in addition to that of the test.
 * @param directory      directory of the agent's files
 * @param moduleLogPath  where the module logs
 * @throws std::runtime_error when the machine has no library for the wanted clock
 */
std::map<std::string, std::string> agentEnvironment(const AgentOptions &options, const TemporaryDirectory &directory,
                                                    const std::string &moduleLogPath);

/** Directory of the agent's persistent data, in the agent's directory. */
inline constexpr const char *kPersistentDirectory = "persistent";

/** Files in the agent's directory that a sanitizer writes have names that start so. */
inline constexpr const char *kSanitizerLog = "sanitizer";

} // namespace harness

#endif
