// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A handler in front of all registrations of the camera's two subtrees.
 */
#ifndef QUARNSNMP_WATCH_HANDLER_CHAINS_H
#define QUARNSNMP_WATCH_HANDLER_CHAINS_H

#include "net_snmp.h"

namespace watch {

/**
 * Puts a handler in front of every present registration below the camera's two subtrees, and of each one to come. A
 * registration that has the handler already is left alone.
 * @return whether the agent accepted all of them
 */
bool injectHandlers(Netsnmp_Node_Handler *handler) noexcept;

/** Removes the handler everywhere, so that its code can be unloaded. The other handlers remain as they were. */
void removeHandlers() noexcept;

} // namespace watch

#endif
