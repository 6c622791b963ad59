// SPDX-License-Identifier: Apache-2.0
#include "light.h"

#include <algorithm>

namespace panel {

Vec3 sunDirection() {
    static const Vec3 sun = at(direction(kSunBearing) * std::cos(radians(kSunHeight)), std::sin(radians(kSunHeight)));
    return sun;
}

Color lit(const Color &color, const Vec3 &normal) {
    constexpr double kAmbient = 0.60;
    constexpr double kSun = 0.52;
    // The blue sky lights what the sun does not reach.
    constexpr Color kShadow = {74, 88, 112};
    const double sun = std::max(0.0, dot(normal, sunDirection()));
    const Color shaded = shade(color, std::min(1.0, kAmbient + kSun * sun));
    return sun > 0.0 ? shaded : mix(shaded, kShadow, 0.16);
}

Vec2 shadowOffset(double height) {
    return direction(kSunBearing) * (-height / std::tan(radians(kSunHeight)));
}

std::vector<Vec2> convexHull(std::vector<Vec2> points) {
    std::sort(points.begin(), points.end(),
              [](const Vec2 &a, const Vec2 &b) { return a.x < b.x || (a.x == b.x && a.y < b.y); });
    std::vector<Vec2> hull;
    const auto extend = [&hull](const Vec2 &point, std::size_t fewest) {
        while (hull.size() > fewest && cross(hull.back() - hull[hull.size() - 2], point - hull.back()) <= 0.0) {
            hull.pop_back();
        }
        hull.push_back(point);
    };
    for (const Vec2 &point : points) {
        extend(point, 1);
    }
    const std::size_t lower = hull.size();
    for (auto point = points.rbegin(); point != points.rend(); ++point) {
        extend(*point, lower);
    }
    if (hull.size() > 1) {
        hull.pop_back();
    }
    return hull;
}

std::vector<Vec2> shadowOf(const std::vector<Vec2> &points, double bottom, double top) {
    std::vector<Vec2> all;
    for (const Vec2 &point : points) {
        all.push_back(point + shadowOffset(bottom));
        all.push_back(point + shadowOffset(top));
    }
    return convexHull(std::move(all));
}

} // namespace panel
