// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Commands to one axis of the camera. A call that the service refuses is logged here; managers are not told, as NTCIP
 * has no way to report it.
 */
#ifndef QUARNSNMP_MOTION_COMMANDS_H
#define QUARNSNMP_MOTION_COMMANDS_H

#include "positioning_state.h"

namespace positioning {

/** Stops an axis. */
void stopMovement(Axis axis);

/** Present position of an axis in NTCIP units; 0 when it cannot be read. */
uint32_t getInitialPosition(Axis axis);

/**
 * Moves an axis by an offset.
 * @param speed  its magnitude is the speed, its sign the direction in which a positive offset goes
 * @param delta  hundredths of a degree, or zoom units; a negative offset turns the direction round
 */
void deltaMovement(Axis axis, signed char speed, short delta);

/**
 * Moves an axis to a position.
 * @param speed     only its magnitude counts
 * @param position  hundredths of a degree, or zoom 0 to 65535
 */
void absoluteMovement(Axis axis, signed char speed, unsigned short position);

/**
 * Lets an axis run until its time-out, or until it is stopped.
 * @param speed  -128 to 127: positive is clockwise, up and tele; 0 stops the axis
 */
void continuousMovement(Axis axis, int speed);

} // namespace positioning

#endif
