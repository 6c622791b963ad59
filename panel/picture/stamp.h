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

/** Prints name, date and time, direction and zoom. */
void drawStamp(Canvas &canvas, const View &view, PictureTime time);

/** Draws a test picture with the name, the time and a reason. */
void drawTestPicture(Canvas &canvas, const std::string &name, const std::string &reason, PictureTime time);

} // namespace panel

#endif
