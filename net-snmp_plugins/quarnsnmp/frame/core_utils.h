// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The module's one connection to the core library: start, end, and the two handles that every feature uses.
 */
#ifndef QUARNSNMP_CORE_UTILS_H
#define QUARNSNMP_CORE_UTILS_H

#include <cstddef>

#include "zorva-core.h"

/** Levels of zorva_core_logging_log(): syslog severities. */
enum LogLevel : int { kLogError = 3, kLogNotice = 5, kLogInfo = 6, kLogDebug = 7 };

/** Entry of a feature's target list that its calls go to; only alarm inputs and relays use more than one target. */
inline constexpr std::size_t kDefaultIndex = 0;

/**
 * Starts the core library, opens logging under the name "SNMP" and opens the IPC initiator.
 * @return status of the IPC initiator. A library that did not start shows itself again at the first feature's service.
 */
zorva_core_status InitUtils();

/** Closes what InitUtils() opened. May run twice: after a failed load the agent still unloads the module. */
void DeinitUtils();

/** Handle of the logging context; null before InitUtils(). */
void *GetLogCookie();

/** Handle of the IPC initiator, for the service initiators; null before InitUtils(). */
void *GetIpcCookie();

#endif
