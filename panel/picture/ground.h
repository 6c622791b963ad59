// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Surfaces, paint and shadows on the ground.
 */
#ifndef QUARNSNMP_PANEL_GROUND_H
#define QUARNSNMP_PANEL_GROUND_H

#include "thing.h"

namespace panel {

/** Returns the colour of a surface. */
Color colorOf(SurfaceKind kind);

/** Returns true if a point is inside an outline. */
bool isInside(const Vec2 &point, const std::vector<Vec2> &outline);

/** Adds surfaces with their kerbs, joints and patches. */
void addSurfaces(Mesh &mesh, const Scene &scene);

/** Adds the painted lines, crosswalks, arrows and words of a scene. */
void addPaint(Mesh &mesh, const Scene &scene);

/** Ground of a scene. */
class Ground {
public:
    /** @param things  whose shadows lie on the ground */
    Ground(const Scene &scene, const Vec3 &eye, const std::vector<Thing> &things);

    void draw(Brush &brush) const;

private:
    Mesh mesh_;
    Mesh shadows_;
};

} // namespace panel

#endif
