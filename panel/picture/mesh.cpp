// SPDX-License-Identifier: Apache-2.0
#include "mesh.h"

#include <algorithm>
#include <limits>

#include "light.h"

namespace panel {

Vec3 cross(const Vec3 &a, const Vec3 &b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

Vec3 unit(const Vec3 &vector) {
    const double size = length(vector);
    return size > 0.0 ? vector * (1.0 / size) : vector;
}

void Mesh::color(const Color &color, double detail, double opacity) {
    batches_.push_back({color, detail, opacity, false, std::numeric_limits<double>::max(), polygonEnds_.size()});
}

void Mesh::pureColor(const Color &pure) {
    color(pure);
    batches_.back().isPure = true;
}

void Mesh::finish(std::size_t first) {
    polygonEnds_.push_back(points_.size());
    Batch &batch = batches_.back();
    batch.end = polygonEnds_.size();
    Vec3 from = points_.back();
    for (std::size_t i = first; i < points_.size(); ++i) {
        // A long edge can be near in its middle.
        const Vec3 edge = points_[i] - from;
        const double square = dot(edge, edge);
        const double place = square > 0.0 ? std::clamp(dot(eye_ - from, edge) / square, 0.0, 1.0) : 0.0;
        batch.distance = std::min(batch.distance, length(from + edge * place - eye_));
        from = points_[i];
    }
}

void Mesh::add(const std::vector<Vec3> &points) {
    const std::size_t first = points_.size();
    points_.insert(points_.end(), points.begin(), points.end());
    finish(first);
}

void Mesh::add(std::initializer_list<Vec3> points) {
    const std::size_t first = points_.size();
    points_.insert(points_.end(), points.begin(), points.end());
    finish(first);
}

bool Mesh::face(std::initializer_list<Vec3> points) {
    const Vec3 *corner = points.begin();
    if (dot(cross(corner[1] - corner[0], corner[2] - corner[0]), eye_ - corner[0]) <= 0.0) {
        return false;
    }
    add(points);
    return true;
}

void Mesh::bar(const Vec3 &from, const Vec3 &to, double fromRadius, double toRadius, const Color &barColor,
               double detail) {
    const Vec3 side = unit(cross(to - from, eye_ - (from + to) * 0.5));
    color(lit(barColor, {0.0, 0.0, 1.0}), detail);
    add({from - side * fromRadius, to - side * toRadius, to + side * toRadius, from + side * fromRadius});
    const double sun = dot(side, sunDirection()) > 0.0 ? 1.0 : -1.0;
    const double thickness = 2.0 * std::max(fromRadius, toRadius);
    color(shade(barColor, 0.62), thickness * 0.4);
    add({from - side * (sun * fromRadius), to - side * (sun * toRadius), to - side * (sun * 0.3 * toRadius),
         from - side * (sun * 0.3 * fromRadius)});
}

void Mesh::disc(const Vec3 &centre, const Vec3 &right, const Vec3 &up, double radius, int corners) {
    std::vector<Vec3> points;
    for (int i = 0; i < corners; ++i) {
        const double angle = 2.0 * kPi * i / corners;
        points.push_back(centre + right * (radius * std::cos(angle)) + up * (radius * std::sin(angle)));
    }
    add(points);
}

void Mesh::text(const std::string &text, const TextPlane &plane, const Color &textColor) {
    const Lettering lettering = letteringOf(text);
    if (lettering.outlines.empty()) {
        return;
    }
    const double size = std::min(plane.size, plane.width / std::max(lettering.width, 0.01));
    color(textColor, size * 0.4);
    const Vec3 origin = plane.centre - plane.right * (0.5 * lettering.width * size) - plane.up * (0.5 * size);
    std::vector<Vec3> points;
    for (const std::vector<Vec2> &outline : lettering.outlines) {
        points.clear();
        for (const Vec2 &point : outline) {
            points.push_back(origin + plane.right * (point.x * size) + plane.up * (point.y * size));
        }
        add(points);
    }
}

void Mesh::draw(Brush &brush, bool haze) const {
    constexpr double kWorthwhile = 1.1;
    std::size_t polygon = 0;
    for (const Batch &batch : batches_) {
        const double pixels = batch.detail * brush.projection().pixelsPerMetre(batch.distance);
        if (batch.detail > 0.0 && pixels < kWorthwhile) {
            polygon = batch.end;
            continue;
        }
        for (; polygon < batch.end; ++polygon) {
            const std::size_t first = polygon == 0 ? 0 : polygonEnds_[polygon - 1];
            brush.add(points_.data() + first, polygonEnds_[polygon] - first);
        }
        brush.fill(batch.color, haze && !batch.isPure ? batch.distance : 0.0, batch.opacity);
    }
}

void addBox(Mesh &mesh, const Placement &place, const Box &box, const Color &color, double detail) {
    const auto corner = [&](bool x, bool y, bool z) {
        return place.point(x ? box.high.x : box.low.x, y ? box.high.y : box.low.y, z ? box.high.z : box.low.z);
    };
    const auto side = [&](const Vec3 &normal, std::initializer_list<Vec3> points) {
        const Vec3 outward = at(place.right * normal.x + place.forward * normal.y, normal.z);
        if (dot(outward, mesh.eye() - *points.begin()) > 0.0) {
            mesh.color(lit(color, outward), detail);
            mesh.add(points);
        }
    };
    side({0, 0, -1}, {corner(0, 0, 0), corner(0, 1, 0), corner(1, 1, 0), corner(1, 0, 0)});
    side({0, -1, 0}, {corner(0, 0, 0), corner(1, 0, 0), corner(1, 0, 1), corner(0, 0, 1)});
    side({0, 1, 0}, {corner(1, 1, 0), corner(0, 1, 0), corner(0, 1, 1), corner(1, 1, 1)});
    side({-1, 0, 0}, {corner(0, 1, 0), corner(0, 0, 0), corner(0, 0, 1), corner(0, 1, 1)});
    side({1, 0, 0}, {corner(1, 0, 0), corner(1, 1, 0), corner(1, 1, 1), corner(1, 0, 1)});
    side({0, 0, 1}, {corner(0, 0, 1), corner(1, 0, 1), corner(1, 1, 1), corner(0, 1, 1)});
}

} // namespace panel
