// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Sky, clouds, the ground up to the horizon, and the haze over it.
 */
#ifndef QUARNSNMP_PANEL_SKY_H
#define QUARNSNMP_PANEL_SKY_H

#include "mesh.h"

namespace panel {

/** Everything behind the things of a scene. */
class Sky {
public:
    Sky(const Scene &scene, const Vec3 &eye);

    /** Fills the whole picture: the sky above the horizon, bare ground below. */
    void draw(Brush &brush) const;

    /** Draws the haze over the ground. */
    static void drawHaze(Brush &brush);

    /** Draws what stands on the horizon. */
    void drawHorizon(Brush &brush) const;

private:
    Color ground_;
    Mesh clouds_;
    Mesh hills_;
    Mesh skyline_;
};

} // namespace panel

#endif
