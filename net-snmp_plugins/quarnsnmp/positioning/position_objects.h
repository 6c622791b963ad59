// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The objects that move the camera: `positionPan`, `positionTilt` and `positionZoomLens`.
 *
 * A SET has four octets: mode (0 stop, 1 delta, 2 absolute, 3 continuous), speed (signed), and a 16-bit position with
 * its low-order octet first. A GET answers the last accepted command. Before the first command it answers the position
 * of the axis at the first request.
 */
#ifndef QUARNSNMP_POSITION_OBJECTS_H
#define QUARNSNMP_POSITION_OBJECTS_H

#include "position_command.h"
#include "positioning_state.h"

namespace positioning {

/** Values of the objects: the last accepted commands. */
extern PositionOctets gLastPanPosition;
extern PositionOctets gLastTiltPosition;
extern PositionOctets gLastZoomPosition;

/** Pending values, between the phases of a SET. */
extern PositionOctets gNewPanPosition;
extern PositionOctets gNewTiltPosition;
extern PositionOctets gNewZoomPosition;

/** Clears the values, so that the next request reads the position. */
void ResetPositionObjects();

Netsnmp_Node_Handler handle_positionPan, handle_positionTilt, handle_positionZoomLens;

} // namespace positioning

#endif
