// SPDX-License-Identifier: Apache-2.0
// Paint on the ground: lines, crosswalks, arrows, words.
#include <algorithm>
#include <cmath>

#include "ground.h"

namespace panel {

namespace {

constexpr double kWorn = 0.9; ///< opacity of used paint

Color colorOf(PaintColor color) {
    switch (color) {
    case PaintColor::yellow:
        return {224, 178, 58};
    case PaintColor::blue:
        return {52, 104, 176};
    case PaintColor::white:
        break;
    }
    return {228, 229, 225};
}

void addStripe(Mesh &mesh, const Vec2 &from, const Vec2 &to, double width) {
    const Vec2 along = to - from;
    const double size = length(along);
    if (size < 1e-6) {
        return;
    }
    const Vec2 side = rightOf(along * (1.0 / size)) * (width / 2.0);
    mesh.add({at(from - side, 0), at(to - side, 0), at(to + side, 0), at(from + side, 0)});
}

/** Adds a part of a line, in pieces: each is left out where it would be too thin. */
void addPart(Mesh &mesh, const Line &line, const Vec2 &from, const Vec2 &to) {
    constexpr double kPiece = 30.0;
    const Vec2 along = to - from;
    const double size = length(along);
    const double period = line.dash > 0.0 ? line.dash + line.gap : kPiece;
    const double painted = line.dash > 0.0 ? line.dash : kPiece;
    double lastPiece = -kPiece;
    const auto pieces = static_cast<std::size_t>(std::ceil(size / period));
    for (std::size_t i = 0; i < pieces; ++i) {
        const double place = period * static_cast<double>(i);
        if (place - lastPiece >= kPiece) {
            mesh.color(colorOf(line.color), line.width * 3.0, kWorn);
            lastPiece = place;
        }
        const double end = std::min(size, place + painted);
        addStripe(mesh, from + along * (place / size), from + along * (end / size), line.width);
    }
}

void addCrosswalk(Mesh &mesh, const Crosswalk &crosswalk) {
    constexpr double kBar = 0.5;
    constexpr double kPeriod = 1.15;
    const Vec2 along = crosswalk.to - crosswalk.from;
    const double size = length(along);
    if (size < kPeriod) {
        return;
    }
    const Vec2 forward = along * (1.0 / size);
    const Vec2 side = rightOf(forward) * (crosswalk.width / 2.0);
    const auto count = static_cast<int>(size / kPeriod);
    const double margin = (size - kPeriod * (count - 1)) / 2.0;
    mesh.color(colorOf(PaintColor::white), 0.6, kWorn);
    for (int i = 0; i < count; ++i) {
        const Vec2 middle = crosswalk.from + forward * (margin + kPeriod * i);
        addStripe(mesh, middle - side, middle + side, kBar);
    }
}

/** Adds an arrow of a length of some 3.5 m, from its tail. */
void addArrow(Mesh &mesh, const Arrow &arrow) {
    const Placement place(arrow.at, arrow.bearing);
    const auto polygon = [&](const std::vector<Vec2> &points) {
        std::vector<Vec3> all;
        all.reserve(points.size());
        for (const Vec2 &point : points) {
            all.push_back(place.point(point.x, point.y - 1.7, 0.0));
        }
        mesh.color(colorOf(PaintColor::white), 0.35, kWorn);
        mesh.add(all);
    };
    const bool isThrough = arrow.kind != ArrowKind::left && arrow.kind != ArrowKind::right;
    const bool isLeft = arrow.kind == ArrowKind::left || arrow.kind == ArrowKind::throughLeft;
    const bool isRight = arrow.kind == ArrowKind::right || arrow.kind == ArrowKind::throughRight;
    if (isThrough) {
        polygon({{-0.09, 0.0}, {0.09, 0.0}, {0.09, 2.2}, {0.38, 2.2}, {0.0, 3.5}, {-0.38, 2.2}, {-0.09, 2.2}});
    }
    for (const double side : {isLeft ? -1.0 : 0.0, isRight ? 1.0 : 0.0}) {
        if (side != 0.0) {
            const double bend = isThrough ? 0.7 : 1.5;
            polygon({{-0.09 * side, 0.0},
                     {0.09 * side, 0.0},
                     {0.09 * side, bend},
                     {0.55 * side, bend + 0.55},
                     {0.55 * side, bend + 0.2},
                     {1.25 * side, bend + 0.8},
                     {0.55 * side, bend + 1.5},
                     {0.55 * side, bend + 1.05},
                     {-0.09 * side, bend + 0.35}});
        }
    }
}

} // namespace

void addPaint(Mesh &mesh, const Scene &scene) {
    for (const Line &line : scene.lines) {
        for (std::size_t i = 1; i < line.points.size(); ++i) {
            addPart(mesh, line, line.points[i - 1], line.points[i]);
        }
    }
    for (const Crosswalk &crosswalk : scene.crosswalks) {
        addCrosswalk(mesh, crosswalk);
    }
    for (const Arrow &arrow : scene.arrows) {
        addArrow(mesh, arrow);
    }
    for (const PaintedText &text : scene.paintedTexts) {
        const Placement place(text.at, text.bearing);
        // Letters on a road are long and narrow, for eyes near the ground.
        mesh.text(text.text,
                  {at(text.at, 0.0), at(place.right, 0.0) * 0.34, at(place.forward, 0.0), text.height, 1000.0},
                  colorOf(PaintColor::white));
    }
}

} // namespace panel
