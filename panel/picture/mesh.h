// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Meshes: polygons of a thing in the order of their drawing. The camera turns but never moves, so what it can see of a
 * thing that stands still, and in which order, is found once.
 */
#ifndef QUARNSNMP_PANEL_MESH_H
#define QUARNSNMP_PANEL_MESH_H

#include "brush.h"
#include "lettering.h"

namespace panel {

/** Polygons in the order of their drawing. */
class Mesh {
public:
    /** @param eye  place of the camera */
    explicit Mesh(const Vec3 &eye) : eye_(eye) {}

    /**
     * Starts polygons of another colour. Overlapping polygons of a colour must have the same orientation.
     * @param detail  size in metres below which the polygons are not worth drawing when it is less than a pixel; 0 for
     * polygons that are always drawn
     */
    void color(const Color &color, double detail = 0.0, double opacity = 1.0);

    /** Starts polygons of a colour that no haze changes. */
    void pureColor(const Color &pure);

    /** Adds a polygon. */
    void add(const std::vector<Vec3> &points);
    void add(std::initializer_list<Vec3> points);

    /** Adds a polygon if the camera sees its front: its points are counterclockwise then. @return true if it does */
    bool face(std::initializer_list<Vec3> points);

    /** Adds a round bar as the camera sees it, with a brighter side towards the sun. */
    void bar(const Vec3 &from, const Vec3 &to, double fromRadius, double toRadius, const Color &color,
             double detail = 0.0);

    /** Adds an upright disc or a plate with many corners. @param right, up  unit vectors in its plane */
    void disc(const Vec3 &centre, const Vec3 &right, const Vec3 &up, double radius, int corners = 28);

    /** Adds a text in a colour. */
    void text(const std::string &text, const TextPlane &plane, const Color &color);

    /** Draws all polygons. @param haze  false where something else adds the haze */
    void draw(Brush &brush, bool haze = true) const;

    bool isEmpty() const {
        return batches_.empty();
    }
    const Vec3 &eye() const {
        return eye_;
    }
    const std::vector<Vec3> &points() const {
        return points_;
    }

private:
    struct Batch {
        Color color;
        double detail;
        double opacity;
        bool isPure;
        double distance; ///< of its nearest point
        std::size_t end; ///< of its polygons
    };

    void finish(std::size_t first);

    Vec3 eye_;
    std::vector<Vec3> points_;
    std::vector<std::size_t> polygonEnds_;
    std::vector<Batch> batches_;
};

Vec3 cross(const Vec3 &a, const Vec3 &b);
Vec3 unit(const Vec3 &vector);

/** Place of a thing: coordinates to its right, to its front and upwards. */
struct Placement {
    Placement(const Vec2 &origin, double bearing)
        : at(origin), forward(direction(bearing)), right(rightOf(direction(bearing))) {}

    Vec3 point(double x, double y, double z) const {
        return panel::at(at + right * x + forward * y, z);
    }
    Vec2 ground(double x, double y) const {
        return at + right * x + forward * y;
    }

    Vec2 at;
    Vec2 forward;
    Vec2 right;
};

/** Box between two corners in the coordinates of a placement. */
struct Box {
    Vec3 low;
    Vec3 high;
};

/** Adds the visible faces of a box, each lit as it stands to the sun. */
void addBox(Mesh &mesh, const Placement &place, const Box &box, const Color &color, double detail = 0.0);

} // namespace panel

#endif
