// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Drawing of polygons of the scene.
 */
#ifndef QUARNSNMP_PANEL_BRUSH_H
#define QUARNSNMP_PANEL_BRUSH_H

#include <initializer_list>
#include <optional>

#include "canvas.h"
#include "projection.h"
#include "tone.h"

namespace panel {

/**
 * Draws polygons of a scene into a picture. Polygons are collected with add() and drawn together with fill(): a fill of
 * many polygons costs little more than that of one. Overlapping polygons of a fill must have the same orientation.
 */
class Brush {
public:
    /** All must outlive the brush. */
    Brush(cairo_t *context, Projection &projection, const Tone &tone);

    Projection &projection() {
        return projection_;
    }
    const Tone &tone() const {
        return tone_;
    }
    cairo_t *context() {
        return context_;
    }

    /** Limits all drawing to a part of the picture until unclip(). */
    void clip(const PixelBox &box);
    void unclip();

    /** Returns true if a part of the picture is drawn. */
    bool isDrawn(const PixelBox &box) const {
        return !clip_ || clip_->overlaps(box);
    }

    /** Returns true if a sphere can be in the picture, or in its part. */
    bool canShow(const Vec3 &centre, double radius) const;

    /** Adds a polygon. */
    void add(const Vec3 *points, std::size_t count);
    void add(const std::vector<Vec3> &points) {
        add(points.data(), points.size());
    }
    void add(std::initializer_list<Vec3> points) {
        add(points.begin(), points.size());
    }

    /** Fills the collected polygons. @param distance  in metres, for the haze */
    void fill(const Color &color, double distance, double opacity = 1.0);

    /** Fills the collected polygons with a colour that no haze changes: a light or a marker. */
    void fillPure(const Color &color);

    /** Draws a polygon at once. */
    void polygon(std::initializer_list<Vec3> points, const Color &color, double distance) {
        add(points.begin(), points.size());
        fill(color, distance);
    }

    /** Draws a line with a width in metres, at least a hairline. */
    void line(const Vec3 &from, const Vec3 &to, double width, const Color &color, double distance);

    /** Draws a circle that faces the camera, or a sphere. @param center  of it @param radius  in metres */
    void disc(const Vec3 &centre, double radius, const Tint &tint, double opacity = 1.0);

    /** Returns the place of the camera. */
    Vec3 eye() const {
        return {0.0, 0.0, projection_.cameraHeight()};
    }

    /** Returns the distance of a point from the camera in metres. */
    double distanceOf(const Vec3 &point) const;

private:
    bool isOutside(const std::vector<Vec2> &pixels) const;
    void fillTint(const Tint &tint, double opacity);

    cairo_t *context_;
    Projection &projection_;
    const Tone &tone_;
    std::optional<PixelBox> clip_;
    bool isEmpty_ = true;
};

} // namespace panel

#endif
