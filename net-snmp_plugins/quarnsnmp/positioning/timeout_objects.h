// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The time-out objects of continuous moves. The service has one time-out for all axes, so a SET of one object changes
 * the time-out of all axes. Each object answers its own value.
 */
#ifndef QUARNSNMP_TIMEOUT_OBJECTS_H
#define QUARNSNMP_TIMEOUT_OBJECTS_H

#include "positioning_state.h"

namespace positioning {

/** Pending values, between the phases of a SET, in milliseconds. */
extern uint16_t gNewPanTimeout;
extern uint16_t gNewTiltTimeout;
extern uint16_t gNewZoomTimeout;

Netsnmp_Node_Handler handle_timeoutPan, handle_timeoutTilt, handle_timeoutZoom;

} // namespace positioning

#endif
