// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The objects that move the camera: `positionPan`, `positionTilt` and `positionZoomLens`.
 *
 * A SET carries four octets: mode (0 stop, 1 delta, 2 absolute, 3 continuous), speed (signed), and a 16-bit position
 * with its low-order octet first. A GET answers the last command that was accepted, and before the first one the
 * position at the first request.
 */
#ifndef QUARNSNMP_POSITION_OBJECTS_H
#define QUARNSNMP_POSITION_OBJECTS_H

#include "position_command.h"
#include "positioning_state.h"

namespace positioning {

/** Value of each object: the last command that was accepted. */
extern PositionOctets gLastPanPosition;
extern PositionOctets gLastTiltPosition;
extern PositionOctets gLastZoomPosition;

/** Value being set, between the phases of a SET. */
extern PositionOctets gNewPanPosition;
extern PositionOctets gNewTiltPosition;
extern PositionOctets gNewZoomPosition;

/** Forgets the values, so that the first request reads the position anew. */
void ResetPositionObjects();

int handle_positionPan(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                       netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests);
int handle_positionTilt(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                        netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests);
int handle_positionZoomLens(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                            netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests);

} // namespace positioning

#endif
