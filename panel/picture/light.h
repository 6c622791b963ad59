// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Light of the sun on the things of a scene.
 */
#ifndef QUARNSNMP_PANEL_LIGHT_H
#define QUARNSNMP_PANEL_LIGHT_H

#include "tone.h"

namespace panel {

/** Bearing and height of the sun in degrees. */
inline constexpr double kSunBearing = 232.0;
inline constexpr double kSunHeight = 40.0;

/** Colour and opacity of shadows on the ground. */
inline constexpr Color kShadowColor = {18, 24, 38};
inline constexpr double kShadowOpacity = 0.34;

/** Returns the unit vector to the sun. */
Vec3 sunDirection();

/** Returns the colour of a face in the sun or in its own shadow. @param normal  unit vector */
Color lit(const Color &color, const Vec3 &normal);

/** Returns the offset on the ground of the shadow of a point at a height. */
Vec2 shadowOffset(double height);

/** Returns the convex hull of points, in counterclockwise order. */
std::vector<Vec2> convexHull(std::vector<Vec2> points);

/** Returns the shadow on the ground of an upright prism. @param points  of its base */
std::vector<Vec2> shadowOf(const std::vector<Vec2> &points, double bottom, double top);

/** Random numbers that are the same on each machine and in each run. */
class Dice {
public:
    explicit Dice(std::uint32_t seed) : state_(seed * 2654435761U + 12345U) {}

    /** Returns a number from 0 to below 1. */
    double next() {
        state_ = state_ * 1664525U + 1013904223U;
        std::uint32_t mixed = state_ ^ (state_ >> 15U);
        mixed *= 2246822519U;
        mixed ^= mixed >> 13U;
        return mixed / 4294967296.0;
    }

    /** Returns a number from lowest to below highest. */
    double between(double lowest, double highest) {
        return lowest + (highest - lowest) * next();
    }

    /** Returns an index below a count, which must not be 0. */
    std::size_t below(std::size_t count) {
        return static_cast<std::size_t>(next() * static_cast<double>(count));
    }

private:
    std::uint32_t state_;
};

} // namespace panel

#endif
