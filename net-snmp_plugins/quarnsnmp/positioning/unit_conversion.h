// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * NTCIP units against the positioning service's: hundredths of a degree against millidegrees, zoom 0 to 65535 against
 * deciX (tenths of a magnification step), signed speed codes against velocities and speed fractions.
 *
 * Nothing is cached: whatever depends on limits asks the service for them, so that limits changed elsewhere count from
 * the next command on. A failed query is logged here and never leaves a function.
 */
#ifndef QUARNSNMP_UNIT_CONVERSION_H
#define QUARNSNMP_UNIT_CONVERSION_H

#include "positioning_state.h"

namespace positioning {

/** Pan in hundredths of a degree to millidegrees, once around the circle at most: 36000 gives 0, -1 gives 359990. */
int convertNTCIPToZorvaPan(int ntcipPan);

/**
 * Tilt in hundredths of a degree (0 to 35999) to millidegrees, positive upwards. The circle is folded into -90 to 90
 * degrees by the camera maker's bands: 9000 and 18000 both give 90000, 9001 gives 10, 18001 gives -10.
 */
int convertNTCIPToZorvaTilt(int ntcipTilt);

/**
 * Zoom 0 (widest) to 65535 to deciX. The range is the user's while the user's limits are on or the digital zoom is;
 * otherwise it ends where the optics end. Values outside give the bound.
 * @return 0 after a failed query
 */
int convertNTCIPToZorvaZoom(int ntcipZoom);

/** Pan in millidegrees to the nearest hundredth of a degree; 359995 and more give 36000. */
int convertZorvaToNTCIPPan(int zorvaPan);

/** Tilt in millidegrees to hundredths of a degree; downward tilt lies in the upper part of the circle. */
int convertZorvaToNTCIPTilt(int zorvaTilt);

/**
 * Zoom in deciX to 0 to 65535, always over the user's limits.
 * @return 0 after a failed query, and when the limits are equal
 */
int convertZorvaToNTCIPZoom(int zorvaZoom);

/**
 * Magnitude of the velocity for an NTCIP speed. Sees to it that the user's velocity limits end at `maxPanSpeed` for pan
 * and at half of it for tilt.
 * @param speed        -128 to 127; the sign does not matter here
 * @param maxPanSpeed  in millidegrees per second
 * @return millidegrees (zoom: deciX) per second; 0 after a failed query
 */
int speedNTCIPToZorva(Axis axis, signed char speed, unsigned int maxPanSpeed);

/**
 * Fraction of an axis's own velocity range for an NTCIP speed: 1.0 is the fastest when the slowest is 0.
 * @return 0.0 after a failed query, and when the slowest is the fastest
 */
float speedPercentage(Axis axis, signed char speed);

} // namespace positioning

#endif
