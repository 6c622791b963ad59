// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Making of the things of a scene.
 */
#ifndef QUARNSNMP_PANEL_THINGS_H
#define QUARNSNMP_PANEL_THINGS_H

#include "thing.h"

namespace panel {

Thing makeBuilding(const Building &building, const Vec3 &eye);
Thing makeTree(const Tree &tree, const Vec3 &eye);
Thing makeStreetLight(const StreetLight &light, const Vec3 &eye);
Thing makeSign(const Sign &sign, const Vec3 &eye);
Thing makeCabinet(const Cabinet &cabinet, const Vec3 &eye);
Thing makeLamp(const Lamp &lamp, const Vec3 &eye);
Thing makeBeacon(const Beacon &beacon, const Vec3 &eye);

/** Makes the pole of signals, and its arm as a thing of its own: traffic passes between the two. */
std::vector<Thing> makeSignalPole(const SignalPole &pole, const Vec3 &eye);

/** Returns the buildings of the city around a scene, beyond what the scene describes. */
std::vector<Building> makeCity(const Scene &scene);

/** Returns the shadow of an upright pole. */
std::vector<Vec2> shadowOfPole(const Vec2 &foot, double radius, double height);

/** Draws a lamp: a disc that shines, or not. */
void drawGlow(Brush &brush, const Vec3 &centre, double radius, const Color &color);

} // namespace panel

#endif
