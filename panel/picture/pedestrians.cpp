// SPDX-License-Identifier: Apache-2.0
#include <array>

#include "light.h"
#include "vehicles.h"

namespace panel {

namespace {

/** Adds an ellipse on the ground, or a disc that faces the camera. */
void addOval(Brush &brush, const Vec3 &centre, const Vec3 &x, const Vec3 &y) {
    constexpr int kCorners = 12;
    std::array<Vec3, kCorners> points;
    for (int i = 0; i < kCorners; ++i) {
        const double angle = 2.0 * kPi * i / kCorners;
        points.at(static_cast<std::size_t>(i)) = centre + x * std::cos(angle) + y * std::sin(angle);
    }
    brush.add(points.data(), points.size());
}

} // namespace

void drawPedestrian(Brush &brush, const PedestrianPose &pedestrian) {
    constexpr Color kSkin = {196, 152, 124};
    constexpr Color kTrousers = {52, 56, 66};
    constexpr Color kHair = {58, 44, 36};
    const Vec3 foot = at(pedestrian.at, 0.0);
    const double distance = brush.distanceOf(foot);
    const Vec3 view = unit(foot - brush.eye());
    const Vec3 side = unit(Vec3{view.y, -view.x, 0.0});
    const Vec3 ahead = at(direction(pedestrian.bearing), 0.0);
    if (view.z < -0.85) {
        addOval(brush, foot + Vec3{0.0, 0.0, 1.45}, at(rightOf(direction(pedestrian.bearing)), 0.0) * 0.26,
                ahead * 0.13);
        brush.fill(pedestrian.color, distance);
        addOval(brush, foot + Vec3{0.0, 0.0, 1.7}, ahead * 0.11, at(rightOf(direction(pedestrian.bearing)), 0.0) * 0.1);
        brush.fill(kHair, distance);
        return;
    }
    const double swing = pedestrian.walking ? std::sin(pedestrian.step) : 0.0;
    const Vec3 hip = foot + Vec3{0.0, 0.0, 0.88};
    const Vec3 shoulder = foot + Vec3{0.0, 0.0, 1.45};
    for (const double leg : {-1.0, 1.0}) {
        const Vec3 sole = foot + ahead * (leg * swing * 0.3) + side * (0.07 * leg);
        brush.line(hip + side * (0.07 * leg), sole, 0.14, kTrousers, distance);
    }
    brush.add({hip - side * 0.17, hip + side * 0.17, shoulder + side * 0.21, shoulder - side * 0.21});
    brush.fill(lit(pedestrian.color, at(direction(pedestrian.bearing), 0.0)), distance);
    for (const double arm : {-1.0, 1.0}) {
        const Vec3 hand = hip + ahead * (-arm * swing * 0.26) + side * (0.25 * arm);
        brush.line(shoulder + side * (0.2 * arm), hand, 0.09, shade(pedestrian.color, 0.82), distance);
    }
    addOval(brush, foot + Vec3{0.0, 0.0, 1.62}, side * 0.11, {0.0, 0.0, 0.14});
    brush.fill(kSkin, distance);
    addOval(brush, foot + Vec3{0.0, 0.0, 1.68}, side * 0.115, {0.0, 0.0, 0.095});
    brush.fill(kHair, distance);
}

} // namespace panel
