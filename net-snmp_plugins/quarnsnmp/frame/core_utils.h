// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The module's connection to the core library: start, end, and the two handles for all features.
 */
#ifndef QUARNSNMP_CORE_UTILS_H
#define QUARNSNMP_CORE_UTILS_H

#include <cstddef>

#include "zorva-core.h"

/** Levels of zorva_core_logging_log(): syslog severities. */
enum LogLevel : int { kLogError = 3, kLogNotice = 5, kLogInfo = 6, kLogDebug = 7 };

/** Index of the target for a feature's calls. Only alarm inputs and relays use further targets. */
inline constexpr std::size_t kDefaultIndex = 0;

/**
 * Starts the core library, opens logging under the name "SNMP" and opens the IPC initiator.
 * @return status of the IPC initiator. After a failure each feature fails in turn, so callers may ignore it.
 */
zorva_core_status InitUtils();

/** Closes IPC, logging and library. May run twice: the agent unloads a module even after a failed load. */
void DeinitUtils();

/** Returns the handle of the logging context; null before InitUtils(). */
void *GetLogCookie();

/** Returns the handle of the IPC initiator, for the service initiators; null before InitUtils(). */
void *GetIpcCookie();

#endif
