// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Texts that a camera prints into its picture.
 */
#ifndef QUARNSNMP_PANEL_STAMP_H
#define QUARNSNMP_PANEL_STAMP_H

#include "canvas.h"
#include "picture.h"

namespace panel {

/** One of the texts. */
struct StampLine {
    std::string text;
    double x = 0.0; ///< where the text starts
    double y = 0.0;
    PixelBox box; ///< of all its pixels
};

/** Returns name, date and time, direction and zoom, each in its place. */
std::vector<StampLine> stampOf(const Canvas &canvas, const View &view, PictureTime time);

/** Prints a line. */
void drawLine(Canvas &canvas, const StampLine &line);

/** Draws a test picture with the name, the time and a reason. */
void drawTestPicture(Canvas &canvas, const std::string &name, const std::string &reason, PictureTime time);

} // namespace panel

#endif
