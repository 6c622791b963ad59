// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The handler in front of the camera's objects.
 */
#ifndef QUARNSNMP_WATCH_OBSERVER_H
#define QUARNSNMP_WATCH_OBSERVER_H

#include "net_snmp.h"

namespace watch {

/**
 * Passes requests on to the object's own handlers and reports each one when it has ended: a read at once, a SET with
 * its last phase. Never changes a request or its answer.
 */
int observe(netsnmp_mib_handler *handler, netsnmp_handler_registration *registration,
            netsnmp_agent_request_info *information, netsnmp_request_info *requests);

/** Forgets SETs that have not ended. */
void forgetSets() noexcept;

} // namespace watch

#endif
