// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Texts as outlines, to be drawn in perspective.
 */
#ifndef QUARNSNMP_PANEL_LETTERING_H
#define QUARNSNMP_PANEL_LETTERING_H

#include <string>
#include <vector>

#include "brush.h"

namespace panel {

/** Font of all texts. */
inline constexpr const char *kFont = "DejaVu Sans";

/** Outlines of a text. The unit is the height of a capital letter; y points upwards; the text starts at the origin. */
struct Lettering {
    std::vector<std::vector<Vec2>> outlines;
    double width = 0.0;
};

/** Returns the outlines of a text in UTF-8. @throws std::runtime_error without memory */
Lettering letteringOf(const std::string &text);

/** Rectangle in the scene for a text. */
struct TextPlane {
    Vec3 centre;  ///< of the text
    Vec3 right;   ///< unit vector along the text
    Vec3 up;      ///< unit vector upwards in a letter
    double size;  ///< height of a capital letter in metres
    double width; ///< greatest width in metres; a longer text becomes smaller
};

/** Draws a text on a plane; no effect when its letters would be too small to be seen. */
void drawText(Brush &brush, const Lettering &lettering, const TextPlane &plane, const Color &color);

} // namespace panel

#endif
