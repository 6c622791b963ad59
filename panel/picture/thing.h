// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Things that stand in a scene, and the order in which they are drawn.
 */
#ifndef QUARNSNMP_PANEL_THING_H
#define QUARNSNMP_PANEL_THING_H

#include <functional>

#include "mesh.h"
#include "traffic.h"

namespace panel {

/** What changes between two pictures. */
struct Moment {
    double seconds = 0.0; ///< time of the picture
    const SignalCycle *signals = nullptr;
    std::vector<bool> inputs;
    std::vector<bool> relays;

    /** Returns the state of an input or a relay, numbered from 1; false without it. */
    static bool isOn(const std::vector<bool> &states, const std::optional<int> &number) {
        return number && *number >= 1 && static_cast<std::size_t>(*number) <= states.size() &&
               states[static_cast<std::size_t>(*number) - 1];
    }
};

/** Convex outline on the ground, as seen from the camera. */
struct Footprint {
    Footprint() = default;
    /** @param outline  at least one point */
    explicit Footprint(std::vector<Vec2> outline);

    std::vector<Vec2> points;
    double bearing = 0.0;   ///< of its middle, in degrees
    double halfAngle = 0.0; ///< from its middle to its sides, in degrees; 180 around the camera
    double distance = 0.0;  ///< of its middle
};

/** Returns a square footprint around a point. */
Footprint squareAround(const Vec2 &point, double halfSide);

/** Returns the slope at which the camera sees a height in a distance. */
double slopeTo(const Vec3 &eye, double height, double distance);

/** Returns whether one footprint hides another one: -1 if `a` is in front, 1 if `b` is, 0 if neither. */
int compareDepth(const Footprint &a, const Footprint &b);

/** Thing that stands still. Parts of it can change. */
struct Thing {
    explicit Thing(const Vec3 &eye) : mesh(eye) {}

    Mesh mesh;
    Footprint footprint;
    std::function<void(Brush &, const Moment &)> changing; ///< drawn after the mesh; can be empty
    bool isTimed = false;                                  ///< `changing` depends on the time
    std::vector<std::vector<Vec2>> shadows;                ///< on the ground
    Vec3 centre;                                           ///< of a sphere around the thing
    double radius = 0.0;
    double lowest = 0.0; ///< heights in the view of the camera, as slopes
    double highest = 0.0;

    /** Finds the sphere and the heights. @param margin  for parts that change */
    void enclose(double margin = 0.0);
};

/** Sorts things so that each is drawn before those that hide it. */
void sortByDepth(std::vector<Thing> &things);

} // namespace panel

#endif
