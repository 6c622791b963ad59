// SPDX-License-Identifier: Apache-2.0
#include "things.h"

namespace panel {

namespace {

constexpr Color kPost = {122, 126, 130};
constexpr Color kRim = {246, 246, 244};
constexpr Color kDarkRim = {40, 42, 46};

} // namespace

Thing makeBeacon(const Beacon &beacon, const Vec3 &eye) {
    Thing thing(eye);
    const Vec2 foot = direction(beacon.bearing) * beacon.distance;
    const Vec3 centre = at(foot, beacon.height);
    const double radius = beacon.size / 2.0;
    const Vec3 up = {0.0, 0.0, 1.0};
    // The disc stands upright and faces the camera's pole, so that its centre is exactly in the bearing.
    const Vec3 right = at(rightOf(direction(beacon.bearing)), 0.0);
    thing.mesh.bar(at(foot, 0.0), at(foot, beacon.height - radius), 0.08, 0.055, kPost);
    thing.mesh.color(kDarkRim);
    thing.mesh.disc(centre, right, up, radius * 1.06);
    thing.mesh.color(kRim);
    thing.mesh.disc(centre, right, up, radius);
    thing.footprint = squareAround(foot, 0.15);
    thing.shadows.push_back(shadowOfPole(foot, 0.06, beacon.height));
    // Haze would change the colours by which beacons are known.
    thing.mesh.pureColor(beacon.color);
    thing.mesh.disc(centre, right, up, radius * 0.86);
    // The label is in the lower half: the centre keeps the colour.
    thing.mesh.text(beacon.label, {centre - up * (radius * 0.42), right, up, radius * 0.46, radius * 1.35}, kRim);
    thing.enclose(0.2);
    return thing;
}

} // namespace panel
