// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * What the tests of the shipped configurations share: agents with them, and the objects that they are asked for.
 */
#ifndef QUARNSNMP_CONFIGURED_AGENT_H
#define QUARNSNMP_CONFIGURED_AGENT_H

#include "camera_agent.h"
#include "shipped_configuration.h"

namespace configured_agent {

/** An object that can be written, and a value for it. */
struct Written {
    const char *name;
    harness::Varbind value;
};

/** What moves the camera or switches something. */
std::vector<Written> commands();

/** What stays as it is written, and the reboot; the values do not start it. */
std::vector<Written> settings();

/** Objects of the agent outside the module's subtrees, with values that an agent takes whose views are too wide. */
std::vector<Written> objectsOfTheAgent();

/** The one that restarts the camera. */
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
harness::AgentOptions fieldAgent(const std::string &traps, const std::vector<harness::Replacement> &further = {});

/** Every outcome of writing objects one by one. @param expected  what each of them must be answered */
void expectWrites(harness::Manager &manager, const std::vector<Written> &objects, harness::ErrorStatus expected);

/** Whether all that a manager can walk lies below one of the subtrees, and something below each of them. */
void expectToSeeOnly(harness::Manager &manager, const std::vector<std::string> &subtrees);

} // namespace configured_agent

#endif
