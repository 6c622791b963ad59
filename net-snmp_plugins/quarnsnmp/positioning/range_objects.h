// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The range objects. Each request reads the pan and tilt limits from the service. The module holds the other values.
 */
#ifndef QUARNSNMP_RANGE_OBJECTS_H
#define QUARNSNMP_RANGE_OBJECTS_H

#include "positioning_state.h"

namespace positioning {

/** 65535: the camera has no true-north offset; 0: pan 0 is north. The service does not get this value. */
extern int32_t gTrueNorthOffset;
/** 65535: the camera has no home position. */
extern int32_t gPanHomePosition;
/** Smallest steps, in hundredths of a degree. */
extern int16_t gMinimumPanStepAngle;
extern int16_t gMinimumTiltStepAngle;
/** Always 0. */
extern int32_t gZoomLimit;
/** Limits in hundredths of a degree, from the last successful read. */
extern int32_t gPanLeftLimit;
extern int32_t gPanRightLimit;
extern int16_t gTiltUpLimit;
extern int16_t gTiltDownLimit;

/** Sets the changeable values to their initial ones. */
void ResetRangeObjects();

Netsnmp_Node_Handler handle_rangePanLeftLimit, handle_rangePanRightLimit, handle_rangePanHomePosition,
    handle_rangeTrueNorthOffset, handle_rangeMinimumPanStepAngle, handle_rangeMinimumTiltStepAngle,
    handle_rangeTiltUpLimit, handle_rangeTiltDownLimit, handle_rangeZoomLimit;

} // namespace positioning

#endif
