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

Netsnmp_Node_Handler handle_timeoutPan, handle_timeoutTilt, handle_timeoutZoom;

} // namespace positioning

#endif
