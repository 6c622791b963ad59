// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Commands to one axis of the camera. A failed call is logged, but not reported to the manager: NTCIP has no way to do
 * so.
 */
#ifndef QUARNSNMP_MOTION_COMMANDS_H
#define QUARNSNMP_MOTION_COMMANDS_H

#include "positioning_state.h"

namespace positioning {

/** Stops an axis. */
void stopMovement(Axis axis);

/** Returns the present position of an axis in NTCIP units; 0 after a failed call. */
uint32_t getInitialPosition(Axis axis);

/**
 * Moves an axis by an offset.
 * @param speed  the magnitude is the speed, the sign the direction of a positive offset
 * @param delta  hundredths of a degree, or zoom units; a negative offset reverses the direction
 */
void deltaMovement(Axis axis, signed char speed, short delta);

/**
 * Moves an axis to a position.
 * @param speed     only the magnitude counts
 * @param position  hundredths of a degree, or zoom 0 to 65535
 */
void absoluteMovement(Axis axis, signed char speed, unsigned short position);

/**
 * Starts a move of an axis that ends with a stop or with the time-out of the axis.
 * @param speed  -128 to 127; positive is clockwise, up and tele; 0 stops the axis
 */
void continuousMovement(Axis axis, int speed);

} // namespace positioning

#endif
