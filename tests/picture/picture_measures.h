// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Measures of pictures: places of beacons, sharpness, brightness.
 */
#ifndef QUARNSNMP_TESTS_PICTURE_MEASURES_H
#define QUARNSNMP_TESTS_PICTURE_MEASURES_H

#include <optional>
#include <vector>

#include "picture.h"

namespace panel {

/** Copy of a picture. */
struct Photograph {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels; ///< blue, green, red, unused

    Color at(int x, int y) const;
};

Photograph photograph(const Pixels &pixels);

/** Decompresses a JPEG file. @throws std::runtime_error */
Photograph decodeJpeg(const std::string &jpeg);

/** Returns the middle of the pixels of a beacon, known by its colour; nothing when it is not in the picture. */
std::optional<Vec2> findBeacon(const Photograph &picture, const Color &color);

/** Returns the mean difference between neighbouring pixels. */
double sharpnessOf(const Photograph &picture);

/** Returns the mean of all channels. */
double brightnessOf(const Photograph &picture);

} // namespace panel

#endif
