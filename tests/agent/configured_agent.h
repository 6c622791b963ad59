// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Agents with the shipped configurations, and objects to write.
 */
#ifndef QUARNSNMP_CONFIGURED_AGENT_H
#define QUARNSNMP_CONFIGURED_AGENT_H

#include <map>
#include <string>
#include <vector>

#include "camera_agent.h"

namespace configured_agent {

/** A passage of a shipped configuration, and the text in its place. */
struct Replacement {
    std::string passage;
    std::string with;
};

/**
 * Returns the text of a shipped configuration with some passages replaced.
 * @param name  of the file, without its directory
 * @throws std::runtime_error if the file cannot be read, or does not have a passage exactly once
 */
std::string shippedConfiguration(const std::string &name, const std::vector<Replacement> &replacements = {});

/** Command that starts an agent. */
struct AgentCommand {
    std::map<std::string, std::string> environment;
    std::vector<std::string> arguments;
};

/**
 * Returns the example command of a shipped configuration, except the arguments that every agent of a test receives: the
 * configuration, the log and -f.
 * @param name  of the file, without its directory
 * @throws std::runtime_error if the file cannot be read, or contains no command
 */
AgentCommand documentedCommand(const std::string &name);

/** An object that can be written, and a value for it. */
struct Written {
    const char *name;
    harness::Varbind value;
};

/** Returns objects that move the camera or switch something. */
std::vector<Written> commands();

/** Returns objects that keep a value, and rebootDevice with a value that does not restart the camera. */
std::vector<Written> settings();

/** Returns objects of the agent outside the module's subtrees, with values that an agent with wide views accepts. */
std::vector<Written> objectsOfTheAgent();

/** Returns the SET that restarts the camera. */
harness::Varbind reboot();

inline const harness::User kViewer = {"viewer", "viewer signs with this", "viewer encrypts with this"};
inline const harness::User kOperator = {"operator", "operator signs with this", "operator encrypts with this"};
inline const harness::User kNotifier = {"notifier", "notifier signs with this", "notifier encrypts with this"};

/**
 * The agent of the lab's configuration.
 * @param traps  where it sends traps, as HOST:PORT
 */
harness::AgentOptions labAgent(const std::string &traps);

/**
 * The agent of the field's configuration, with three users.
 * @param further  passages of the file to replace, besides those that belong to a place
 */
harness::AgentOptions fieldAgent(const std::string &traps, const std::vector<Replacement> &further = {});

/** Writes objects one by one. @param expected  status of each answer */
void expectWrites(harness::Manager &manager, const std::vector<Written> &objects, harness::ErrorStatus expected);

/** Expects objects in each of the subtrees, and none outside. */
void expectToSeeOnly(harness::Manager &manager, const std::vector<std::string> &subtrees);

} // namespace configured_agent

#endif
