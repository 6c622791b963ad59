// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Conversion between units of NTCIP and of the positioning service: hundredths of a degree and millidegrees, zoom 0 to
 * 65535 and deciX (tenths of a magnification step), signed speed codes and velocities or speed fractions.
 *
 * Functions that need limits read them from the service each time, so that a change counts from the next command on. A
 * failed call is logged, and no function throws.
 */
#ifndef QUARNSNMP_UNIT_CONVERSION_H
#define QUARNSNMP_UNIT_CONVERSION_H

#include "positioning_state.h"

namespace positioning {

/** Converts pan from hundredths of a degree to millidegrees. Wraps by one circle: 36000 gives 0, -1 gives 359990. */
int convertNTCIPToZorvaPan(int ntcipPan);

/**
 * Converts tilt from hundredths of a degree (0 to 35999) to millidegrees, positive upwards. The circle is folded into
 * -90 to 90 degrees, with the bands of the camera's maker: 9000 and 18000 give 90000, 9001 gives 10, 18001 gives -10.
 */
int convertNTCIPToZorvaTilt(int ntcipTilt);

/**
 * Converts zoom from 0 (widest) to 65535 to deciX. The range is that of the user's limits if these or the digital zoom
 * are on; otherwise it ends at the optical maximum. Values outside give the bound.
 * @return deciX; 0 after a failed call
 */
int convertNTCIPToZorvaZoom(int ntcipZoom);

/** Converts pan from millidegrees to the nearest hundredth of a degree; 359995 and more give 36000. */
int convertZorvaToNTCIPPan(int zorvaPan);

/** Converts tilt from millidegrees to hundredths of a degree. Downward tilt lies in the upper part of the circle. */
int convertZorvaToNTCIPTilt(int zorvaTilt);

/**
 * Converts zoom from deciX to 0 to 65535, always with the user's limits.
 * @return 0 after a failed call, and for equal limits
 */
int convertZorvaToNTCIPZoom(int zorvaZoom);

/**
 * Converts an NTCIP speed to the magnitude of a velocity. Sets the user's velocity limits to `maxPanSpeed` for pan and
 * half of it for tilt, unless they have these values already.
 * @param speed        -128 to 127; the sign does not count
 * @param maxPanSpeed  in millidegrees per second
 * @return millidegrees (zoom: deciX) per second; 0 after a failed call
 */
int speedNTCIPToZorva(Axis axis, signed char speed, unsigned int maxPanSpeed);

/**
 * Converts an NTCIP speed to a fraction of the axis's velocity range: 1.0 is the highest speed if the lowest is 0.
 * @return 0.0 after a failed call, and for an empty range
 */
float speedPercentage(Axis axis, signed char speed);

} // namespace positioning

#endif
