// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The range objects. Pan and tilt limits are read from the service at every request; the others are the module's own.
 */
#ifndef QUARNSNMP_RANGE_OBJECTS_H
#define QUARNSNMP_RANGE_OBJECTS_H

#include "positioning_state.h"

namespace positioning {

/** Whether the camera knows where north is: 65535 it does not, 0 pan 0 is north. Kept here only. */
extern int32_t gTrueNorthOffset;
/** 65535: the camera has no home position. */
extern int32_t gPanHomePosition;
/** Smallest steps, in hundredths of a degree. */
extern int16_t gMinimumPanStepAngle;
extern int16_t gMinimumTiltStepAngle;
/** Always 0. */
extern int32_t gZoomLimit;
/** Limits in hundredths of a degree, as of the last request that could read them. */
extern int32_t gPanLeftLimit;
extern int32_t gPanRightLimit;
extern int16_t gTiltUpLimit;
extern int16_t gTiltDownLimit;

/** Sets all of these values as they are before the first request. */
void ResetRangeObjects();

Netsnmp_Node_Handler handle_rangePanLeftLimit, handle_rangePanRightLimit, handle_rangePanHomePosition,
    handle_rangeTrueNorthOffset, handle_rangeMinimumPanStepAngle, handle_rangeMinimumTiltStepAngle,
    handle_rangeTiltUpLimit, handle_rangeTiltDownLimit, handle_rangeZoomLimit;

} // namespace positioning

#endif
