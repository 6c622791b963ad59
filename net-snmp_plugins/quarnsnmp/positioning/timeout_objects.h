// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The time-out objects of continuous moves. The service has one time-out for all axes, so a SET of any of the three
 * changes it for all, while each object answers what it was set to itself.
 */
#ifndef QUARNSNMP_TIMEOUT_OBJECTS_H
#define QUARNSNMP_TIMEOUT_OBJECTS_H

#include "positioning_state.h"

namespace positioning {

/** Value being set, between the phases of a SET, in milliseconds. */
extern uint16_t gNewPanTimeout;
extern uint16_t gNewTiltTimeout;
extern uint16_t gNewZoomTimeout;

int handle_timeoutPan(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                      netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests);
int handle_timeoutTilt(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                       netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests);
int handle_timeoutZoom(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                       netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests);

} // namespace positioning

#endif
