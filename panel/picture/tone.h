// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * From the colours of things to those of pixels: haze by distance, brightness by the iris.
 */
#ifndef QUARNSNMP_PANEL_TONE_H
#define QUARNSNMP_PANEL_TONE_H

#include <array>
#include <vector>

#include "scene.h"

namespace panel {

/** Colour of a pixel; channels from 0 to 1. */
struct Tint {
    double red = 0.0;
    double green = 0.0;
    double blue = 0.0;
};

/** Returns a colour with another brightness; a factor above 1 approaches white. */
Color shade(const Color &color, double factor);

/** Returns a mixture. @param share  of the second colour, from 0 to 1 */
Color mix(const Color &first, const Color &second, double share);

/**
 * Colours in a picture. The exposure acts on each colour before it is drawn, which gives the same picture as on each
 * pixel afterwards, for nearly nothing.
 */
class Tone {
public:
    /** @param exposure  light on the sensor; 1 for a normal brightness */
    explicit Tone(double exposure);

    /** Returns the colour of a thing at a distance in metres. */
    Tint at(const Color &color, double distance) const;

    /** Returns the colour of a thing without haze. */
    Tint of(const Color &color) const;

    /** Returns the share of haze in the light from a distance in metres. */
    static double hazeAt(double distance);

    /** Haze at the horizon. */
    static constexpr Color kHaze = {201, 213, 222};

private:
    std::array<double, 256> exposed_{};
};

} // namespace panel

#endif
