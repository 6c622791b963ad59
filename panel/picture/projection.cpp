// SPDX-License-Identifier: Apache-2.0
#include "projection.h"

#include <algorithm>

namespace panel {

namespace {

constexpr int kPlanes = 5;
constexpr double kMarginPixels = 8.0;

} // namespace

Projection::Projection(const ProjectionSettings &settings)
    : cameraHeight_(settings.height), centreX_(settings.width / 2.0), centreY_(settings.heightPixels / 2.0) {
    focalLength_ = centreX_ / std::tan(radians(settings.fieldOfView) / 2.0) * settings.zoom;
    slopeX_ = (centreX_ + kMarginPixels) / focalLength_;
    slopeY_ = (centreY_ + kMarginPixels) / focalLength_;
    lengthX_ = std::sqrt(1.0 + slopeX_ * slopeX_);
    lengthY_ = std::sqrt(1.0 + slopeY_ * slopeY_);
    const Vec2 ahead = direction(settings.bearing);
    const double sine = std::sin(radians(settings.tilt));
    const double cosine = std::cos(radians(settings.tilt));
    right_ = at(rightOf(ahead), 0.0);
    up_ = {-ahead.x * sine, -ahead.y * sine, cosine};
    forward_ = {ahead.x * cosine, ahead.y * cosine, sine};
}

Vec3 Projection::toCamera(const Vec3 &point) const {
    const Vec3 relative = {point.x, point.y, point.z - cameraHeight_};
    return {dot(relative, right_), dot(relative, up_), dot(relative, forward_)};
}

double Projection::inside(int plane, const Vec3 &point) const {
    switch (plane) {
    case 0:
        return point.z - kNearest;
    case 1:
        return slopeX_ * point.z - point.x;
    case 2:
        return slopeX_ * point.z + point.x;
    case 3:
        return slopeY_ * point.z - point.y;
    default:
        return slopeY_ * point.z + point.y;
    }
}

unsigned Projection::outsideOf(const Vec3 &point) const {
    unsigned outside = 0;
    for (int plane = 0; plane < kPlanes; ++plane) {
        outside |= inside(plane, point) < 0.0 ? 1U << static_cast<unsigned>(plane) : 0U;
    }
    return outside;
}

/** Cuts points_ along planes one after the other. */
void Projection::clip(unsigned planes) {
    for (int plane = 0; plane < kPlanes && !points_.empty(); ++plane) {
        if ((planes & 1U << static_cast<unsigned>(plane)) == 0) {
            continue;
        }
        clipped_.clear();
        Vec3 previous = points_.back();
        double before = inside(plane, previous);
        for (const Vec3 &point : points_) {
            const double now = inside(plane, point);
            if ((before < 0.0) != (now < 0.0)) {
                clipped_.push_back(previous + (point - previous) * (before / (before - now)));
            }
            if (now >= 0.0) {
                clipped_.push_back(point);
            }
            previous = point;
            before = now;
        }
        points_.swap(clipped_);
    }
}

const std::vector<Vec2> &Projection::polygon(const Vec3 *points, std::size_t count) {
    points_.clear();
    pixels_.clear();
    unsigned any = 0;
    unsigned all = ~0U;
    for (std::size_t i = 0; i < count; ++i) {
        points_.push_back(toCamera(points[i]));
        const unsigned outside = outsideOf(points_.back());
        any |= outside;
        all &= outside;
    }
    if (count < 3 || all != 0) {
        return pixels_;
    }
    if (any != 0) {
        clip(any);
    }
    for (const Vec3 &point : points_) {
        pixels_.push_back(toPixel(point));
    }
    return pixels_;
}

bool Projection::canShow(const Vec3 &centre, double radius) const {
    const Vec3 point = toCamera(centre);
    return point.z - kNearest > -radius && slopeX_ * point.z - std::abs(point.x) > -radius * lengthX_ &&
           slopeY_ * point.z - std::abs(point.y) > -radius * lengthY_;
}

double Projection::horizon() const {
    const double cosine = std::sqrt(std::max(0.0, 1.0 - forward_.z * forward_.z));
    return centreY_ + focalLength_ * forward_.z / std::max(cosine, 1e-6);
}

} // namespace panel
