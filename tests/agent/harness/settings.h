// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Paths of the programs and libraries under test, set by the build. Variables of the environment replace some of them.
 */
#ifndef QUARNSNMP_HARNESS_SETTINGS_H
#define QUARNSNMP_HARNESS_SETTINGS_H

#include <string>
#include <vector>

namespace harness {

/** The agent program: the environment's QUARNSNMP_SNMPD, or Debian's. */
std::string agentPath();

/** Words before the agent's path, such as an emulator: the environment's QUARNSNMP_SNMPD_PREFIX, split at blanks. */
std::vector<std::string> agentPrefix();

/** The trap receiver: the environment's QUARNSNMP_SNMPTRAPD, or Debian's. */
std::string trapReceiverPath();

/** The module: the environment's QUARNSNMP_MODULE, or the one of this build; empty in a build without it. */
std::string modulePath();

/** The stand-in core library of this build; empty in a build without it. */
std::string coreLibraryPath();

/** The module that sends traps by the thousand. */
std::string burstModulePath();

/** The module that reports requests. */
std::string watchModulePath();

/** The program that keeps hold of an agent that runs as a daemon. */
std::string guardianPath();

/**
 * The library that makes the agent's clock run faster: the environment's QUARNSNMP_FAKETIME, or this machine's; empty
 * when it has none.
 */
std::string fakeTimeLibraryPath();

/** Libraries that the agent must load first because the module is sanitized and the agent is not; else empty. */
std::vector<std::string> sanitizerRuntimes();

/** Directory of the recorded walks. */
std::string goldenDirectory();

/** Directory of the agent configurations that are shipped. */
std::string examplesDirectory();

/** Directory of the MIB modules that are shipped. */
std::string mibsDirectory();

/** The environment's value of a name, or a default when it is unset or empty. */
std::string environmentOr(const char *name, const std::string &otherwise);

} // namespace harness

#endif
