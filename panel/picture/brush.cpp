// SPDX-License-Identifier: Apache-2.0
#include "brush.h"

#include <algorithm>

namespace panel {

Brush::Brush(cairo_t *context, Projection &projection, const Tone &tone)
    : context_(context), projection_(projection), tone_(tone) {
    cairo_new_path(context);
    // A quarter of the time of the usual smoothing, and in a picture full of edges nobody sees the difference.
    cairo_set_antialias(context, CAIRO_ANTIALIAS_FAST);
}

void Brush::clip(const PixelBox &box) {
    cairo_save(context_);
    cairo_rectangle(context_, box.left, box.top, box.right - box.left, box.bottom - box.top);
    cairo_clip(context_);
    clip_ = box;
}

void Brush::unclip() {
    cairo_restore(context_);
    clip_.reset();
}

bool Brush::canShow(const Vec3 &centre, double radius) const {
    if (!projection_.canShow(centre, radius)) {
        return false;
    }
    const Vec3 point = projection_.toCamera(centre);
    const double nearest = point.z - radius;
    if (!clip_ || nearest < Projection::kNearest) {
        return true;
    }
    // The sphere stays inside a square around its middle, with the size of its nearest point.
    const Vec2 pixel = projection_.toPixel(point);
    const double reach = radius * projection_.focalLength() / nearest * std::max(1.0, length(point) / point.z) + 2.0;
    return pixel.x + reach > clip_->left && pixel.x - reach < clip_->right && pixel.y + reach > clip_->top &&
           pixel.y - reach < clip_->bottom;
}

/** Returns true if a polygon does not touch the part of the picture that is drawn. */
bool Brush::isOutside(const std::vector<Vec2> &pixels) const {
    if (!clip_) {
        return false;
    }
    const auto all = [&](auto isBeyond) { return std::all_of(pixels.begin(), pixels.end(), isBeyond); };
    return all([&](const Vec2 &pixel) { return pixel.x < clip_->left; }) ||
           all([&](const Vec2 &pixel) { return pixel.x > clip_->right; }) ||
           all([&](const Vec2 &pixel) { return pixel.y < clip_->top; }) ||
           all([&](const Vec2 &pixel) { return pixel.y > clip_->bottom; });
}

void Brush::add(const Vec3 *points, std::size_t count) {
    const std::vector<Vec2> &pixels = projection_.polygon(points, count);
    if (pixels.size() < 3 || isOutside(pixels)) {
        return;
    }
    isEmpty_ = false;
    cairo_move_to(context_, pixels.front().x, pixels.front().y);
    for (std::size_t i = 1; i < pixels.size(); ++i) {
        cairo_line_to(context_, pixels[i].x, pixels[i].y);
    }
    cairo_close_path(context_);
}

void Brush::fillTint(const Tint &tint, double opacity) {
    if (isEmpty_) {
        return;
    }
    cairo_set_source_rgba(context_, tint.red, tint.green, tint.blue, opacity);
    cairo_fill(context_);
    isEmpty_ = true;
}

void Brush::fill(const Color &color, double distance, double opacity) {
    fillTint(tone_.at(color, distance), opacity);
}

void Brush::fillPure(const Color &color) {
    fillTint(tone_.of(color), 1.0);
}

void Brush::line(const Vec3 &from, const Vec3 &to, double width, const Color &color, double distance) {
    Vec3 start = projection_.toCamera(from);
    Vec3 end = projection_.toCamera(to);
    if (start.z > end.z) {
        std::swap(start, end);
    }
    if (end.z <= Projection::kNearest) {
        return;
    }
    if (start.z < Projection::kNearest) {
        start = end + (start - end) * ((end.z - Projection::kNearest) / (end.z - start.z));
    }
    const Vec2 first = projection_.toPixel(start);
    const Vec2 second = projection_.toPixel(end);
    const Vec2 along = second - first;
    const double pixels = length(along);
    if (pixels < 1e-6) {
        return;
    }
    const Vec2 across = Vec2{-along.y, along.x} * (0.5 / pixels);
    const auto widthAt = [&](const Vec3 &point) {
        constexpr double kHairline = 0.6;
        return std::max(width * projection_.focalLength() / point.z, kHairline);
    };
    const Vec2 atFirst = across * widthAt(start);
    const Vec2 atSecond = across * widthAt(end);
    // Cairo clips; a line is never so close to the camera that its coordinates overflow.
    cairo_new_path(context_);
    for (const Vec2 &corner : {first + atFirst, second + atSecond, second - atSecond, first - atFirst}) {
        constexpr double kFarOutside = 100000.0;
        cairo_line_to(context_, std::clamp(corner.x, -kFarOutside, kFarOutside),
                      std::clamp(corner.y, -kFarOutside, kFarOutside));
    }
    cairo_close_path(context_);
    isEmpty_ = false;
    fill(color, distance);
}

void Brush::disc(const Vec3 &centre, double radius, const Tint &tint, double opacity) {
    const Vec3 point = projection_.toCamera(centre);
    if (point.z <= Projection::kNearest || !canShow(centre, radius)) {
        return;
    }
    const Vec2 pixel = projection_.toPixel(point);
    cairo_new_path(context_);
    cairo_arc(context_, pixel.x, pixel.y, std::max(radius * projection_.focalLength() / point.z, 0.5), 0.0, 2.0 * kPi);
    isEmpty_ = false;
    fillTint(tint, opacity);
}

double Brush::distanceOf(const Vec3 &point) const {
    return length(point - Vec3{0.0, 0.0, projection_.cameraHeight()});
}

} // namespace panel
