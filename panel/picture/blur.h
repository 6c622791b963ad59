// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Blur of a lens out of focus. A blurred picture has no fine details, so it is drawn small and enlarged, which is
 * faster than drawing a sharp one.
 */
#ifndef QUARNSNMP_PANEL_BLUR_H
#define QUARNSNMP_PANEL_BLUR_H

#include "canvas.h"

namespace panel {

/** How a picture of a given blur is made. */
struct BlurPlan {
    double reduction = 1.0; ///< of width and height
    int spread = 0;         ///< radius of the filter in pixels of the small picture
};

/** @param radius  of the blur in pixels of the full picture */
BlurPlan planBlur(double radius);

/** Averages over squares of pixels, twice. No effect for a radius of 0. */
void soften(Canvas &canvas, int radius);

/** Enlarges a small picture into a full one. */
void enlarge(const Canvas &small, Canvas &full);

} // namespace panel

#endif
