// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Perspective of the camera: points of the scene to pixels of the picture.
 */
#ifndef QUARNSNMP_PANEL_PROJECTION_H
#define QUARNSNMP_PANEL_PROJECTION_H

#include <cstddef>
#include <vector>

#include "geometry.h"

namespace panel {

/** Direction and lens of a projection, and the size of its picture. */
struct ProjectionSettings {
    double height = 10.0;      ///< of the camera above the ground, in metres
    double bearing = 0.0;      ///< in degrees, clockwise from north
    double tilt = 0.0;         ///< in degrees, upwards
    double zoom = 1.0;         ///< magnification
    double fieldOfView = 60.0; ///< horizontal, at a magnification of 1, in degrees
    int width = 1280;          ///< in pixels
    int heightPixels = 720;
};

/**
 * Perspective projection. The camera is above the origin of the scene. Polygons are clipped to the picture and a
 * margin, so that coordinates stay small at any zoom.
 */
class Projection {
public:
    explicit Projection(const ProjectionSettings &settings);

    /** Returns a point relative to the camera: x to the right, y upwards, z forwards, in metres. */
    Vec3 toCamera(const Vec3 &point) const;

    /** Returns the pixel of a point relative to the camera. Its z must be positive. */
    Vec2 toPixel(const Vec3 &point) const {
        return {centreX_ + focalLength_ * point.x / point.z, centreY_ - focalLength_ * point.y / point.z};
    }

    /** Projects a polygon. @return its clipped outline; less than three points when it is not in the picture */
    const std::vector<Vec2> &polygon(const Vec3 *points, std::size_t count);

    /** Returns true if a sphere can be in the picture. */
    bool canShow(const Vec3 &centre, double radius) const;

    /** Returns the size in pixels of a metre at a distance. */
    double pixelsPerMetre(double distance) const {
        return focalLength_ / (distance > kNearest ? distance : kNearest);
    }

    /** Returns the focal length in pixels. */
    double focalLength() const {
        return focalLength_;
    }

    /** Returns the row of the horizon in the middle of the picture; far outside it for steep views. */
    double horizon() const;

    double width() const {
        return 2.0 * centreX_;
    }
    double height() const {
        return 2.0 * centreY_;
    }
    double cameraHeight() const {
        return cameraHeight_;
    }
    const Vec3 &forward() const {
        return forward_;
    }

    /** Distance of the near plane in metres. */
    static constexpr double kNearest = 0.3;

private:
    /** Returns the distance of a point inside one of the five planes; negative outside. */
    double inside(int plane, const Vec3 &point) const;
    unsigned outsideOf(const Vec3 &point) const;
    void clip(unsigned planes);

    double cameraHeight_;
    double focalLength_;
    double centreX_;
    double centreY_;
    double slopeX_; ///< of the planes through the sides, margin included
    double slopeY_;
    double lengthX_; ///< of their normals
    double lengthY_;
    Vec3 right_;
    Vec3 up_;
    Vec3 forward_;
    std::vector<Vec3> points_;
    std::vector<Vec3> clipped_;
    std::vector<Vec2> pixels_;
};

} // namespace panel

#endif
