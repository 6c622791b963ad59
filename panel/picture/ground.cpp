// SPDX-License-Identifier: Apache-2.0
#include "ground.h"

#include <algorithm>

#include "light.h"

namespace panel {

namespace {

/** Details of the ground are made up to this distance from the camera. */
constexpr double kDetailed = 130.0;

std::vector<Vec3> onGround(const std::vector<Vec2> &points) {
    std::vector<Vec3> all;
    all.reserve(points.size());
    for (const Vec2 &point : points) {
        all.push_back(at(point, 0.0));
    }
    return all;
}

/** Returns an irregular patch. */
std::vector<Vec3> patch(const Vec2 &middle, double rx, double ry, double bearing, Dice &dice) {
    constexpr int kCorners = 11;
    const Placement place(middle, bearing);
    std::vector<Vec3> points;
    for (int i = 0; i < kCorners; ++i) {
        const double angle = 2.0 * kPi * i / kCorners;
        const double size = dice.between(0.75, 1.15);
        points.push_back(place.point(rx * size * std::cos(angle), ry * size * std::sin(angle), 0.0));
    }
    return points;
}

/** Returns a random point of an outline near the camera; nothing if none was found. */
std::optional<Vec2> randomPoint(const std::vector<Vec2> &outline, Dice &dice) {
    const Vec2 point = {dice.between(-kDetailed, kDetailed), dice.between(-kDetailed, kDetailed)};
    return isInside(point, outline) ? std::optional<Vec2>(point) : std::nullopt;
}

void addTufts(Mesh &mesh, const std::vector<Vec2> &outline, int tries, std::uint32_t seed) {
    Dice dice(seed);
    for (int i = 0; i < tries; ++i) {
        const std::optional<Vec2> point = randomPoint(outline, dice);
        if (!point) {
            continue;
        }
        const double size = dice.between(0.8, 4.5);
        mesh.color(dice.next() < 0.55 ? Color{74, 98, 50} : Color{150, 160, 92}, 0.5 * size, 0.22);
        mesh.add(patch(*point, size, size * dice.between(0.4, 0.9), dice.between(0.0, 180.0), dice));
    }
}

/** Adds what years leave on asphalt: mended patches and cracks. */
void addWear(Mesh &mesh, const std::vector<Vec2> &outline, std::uint32_t seed) {
    Dice dice(seed);
    for (int i = 0; i < 260; ++i) {
        const std::optional<Vec2> point = randomPoint(outline, dice);
        if (!point) {
            continue;
        }
        const double share = dice.next();
        if (share < 0.45) {
            const Placement place(*point, dice.next() < 0.5 ? 0.0 : 90.0);
            const double x = dice.between(0.5, 1.6);
            const double y = dice.between(0.8, 4.5);
            mesh.color(dice.next() < 0.7 ? Color{62, 64, 67} : Color{122, 123, 122}, 0.6, 0.35);
            mesh.add({place.point(-x, -y, 0), place.point(x, -y, 0), place.point(x, y, 0), place.point(-x, y, 0)});
        } else if (share < 0.8) {
            mesh.color({48, 50, 53}, 0.08, 0.6);
            Vec2 from = *point;
            double bearing = dice.between(0.0, 360.0);
            for (int part = 0; part < 5; ++part) {
                bearing += dice.between(-38.0, 38.0);
                const Vec2 to = from + direction(bearing) * dice.between(0.5, 1.6);
                const Vec2 side = rightOf(direction(bearing)) * 0.025;
                mesh.add({at(from - side, 0), at(to - side, 0), at(to + side, 0), at(from + side, 0)});
                from = to;
            }
        } else {
            mesh.color({44, 45, 47}, 0.3, 0.16);
            mesh.add(patch(*point, dice.between(0.3, 0.9), dice.between(0.3, 1.8), 0.0, dice));
        }
    }
}

/** Adds lines of a grid inside an outline. @param alongX  the lines run from west to east */
void addJoints(Mesh &mesh, const std::vector<Vec2> &outline, bool alongX, double step) {
    constexpr double kHalf = 0.02;
    constexpr double kFar = 90.0;
    mesh.color({132, 130, 124}, 0.06);
    const int lines = static_cast<int>(kFar / step);
    for (int i = -lines; i <= lines; ++i) {
        const double line = step * i;
        std::vector<double> crossings;
        for (std::size_t k = 0; k < outline.size(); ++k) {
            const Vec2 &a = outline[k];
            const Vec2 &b = outline[(k + 1) % outline.size()];
            const double from = alongX ? a.y : a.x;
            const double to = alongX ? b.y : b.x;
            if ((from <= line) != (to <= line)) {
                const double share = (line - from) / (to - from);
                crossings.push_back(alongX ? a.x + (b.x - a.x) * share : a.y + (b.y - a.y) * share);
            }
        }
        std::sort(crossings.begin(), crossings.end());
        for (std::size_t k = 0; k + 1 < crossings.size(); k += 2) {
            const double from = std::clamp(crossings[k], -kFar, kFar);
            const double to = std::clamp(crossings[k + 1], -kFar, kFar);
            if (from < to && alongX) {
                mesh.add(
                    {{from, line - kHalf, 0}, {to, line - kHalf, 0}, {to, line + kHalf, 0}, {from, line + kHalf, 0}});
            } else if (from < to) {
                mesh.add(
                    {{line - kHalf, from, 0}, {line + kHalf, from, 0}, {line + kHalf, to, 0}, {line - kHalf, to, 0}});
            }
        }
    }
}

/** Adds the stones around a raised surface. */
void addKerb(Mesh &mesh, const std::vector<Vec2> &outline) {
    double area = 0.0;
    for (std::size_t i = 0; i < outline.size(); ++i) {
        area += cross(outline[i], outline[(i + 1) % outline.size()]);
    }
    const auto band = [&](double inner, double outer) {
        for (std::size_t i = 0; i < outline.size(); ++i) {
            const Vec2 &from = outline[i];
            const Vec2 along = outline[(i + 1) % outline.size()] - from;
            const double size = length(along);
            if (size > 0.01) {
                const Vec2 out = rightOf(along * (1.0 / size)) * (area > 0.0 ? 1.0 : -1.0);
                mesh.add({at(from + out * inner, 0), at(from + out * outer, 0), at(from + along + out * outer, 0),
                          at(from + along + out * inner, 0)});
            }
        }
    };
    mesh.color({128, 126, 121}, 0.2);
    band(0.0, 0.14);
    mesh.color({206, 204, 197}, 0.25);
    band(-0.22, 0.0);
}

/** Adds the tracks of tyres and the drops of oil along a lane. */
void addTracks(Mesh &mesh, const std::vector<Vec2> &points) {
    for (std::size_t i = 1; i < points.size(); ++i) {
        const Vec2 along = points[i] - points[i - 1];
        const double size = length(along);
        if (size < 0.01) {
            continue;
        }
        const Vec2 side = rightOf(along * (1.0 / size));
        const auto band = [&](double middle, double half) {
            const Vec2 from = points[i - 1] + side * middle;
            mesh.add({at(from - side * half, 0), at(from + along - side * half, 0), at(from + along + side * half, 0),
                      at(from + side * half, 0)});
        };
        mesh.color({52, 53, 56}, 0.5, 0.20);
        band(-0.82, 0.28);
        band(0.82, 0.28);
        mesh.color({50, 50, 52}, 0.5, 0.13);
        band(0.0, 0.35);
    }
}

} // namespace

Color colorOf(SurfaceKind kind) {
    switch (kind) {
    case SurfaceKind::asphalt:
        return {92, 94, 97};
    case SurfaceKind::concrete:
        return {156, 154, 148};
    case SurfaceKind::sidewalk:
        return {176, 173, 165};
    case SurfaceKind::gravel:
        return {150, 142, 128};
    case SurfaceKind::earth:
        return {132, 110, 84};
    case SurfaceKind::water:
        return {84, 120, 142};
    case SurfaceKind::grass:
        break;
    }
    return {106, 130, 70};
}

bool isInside(const Vec2 &point, const std::vector<Vec2> &outline) {
    bool inside = false;
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const Vec2 &a = outline[i];
        const Vec2 &b = outline[(i + 1) % outline.size()];
        if ((a.y > point.y) != (b.y > point.y) && point.x < a.x + (b.x - a.x) * (point.y - a.y) / (b.y - a.y)) {
            inside = !inside;
        }
    }
    return inside;
}

void addSurfaces(Mesh &mesh, const Scene &scene) {
    std::uint32_t seed = 1;
    if (scene.ground == SurfaceKind::grass) {
        addTufts(mesh, {{-400, -400}, {400, -400}, {400, 400}, {-400, 400}}, 160, seed);
    }
    for (const Surface &surface : scene.surfaces) {
        mesh.color(colorOf(surface.kind));
        mesh.add(onGround(surface.points));
        ++seed;
        switch (surface.kind) {
        case SurfaceKind::grass:
            addTufts(mesh, surface.points, 700, seed);
            addKerb(mesh, surface.points);
            break;
        case SurfaceKind::sidewalk:
            addJoints(mesh, surface.points, true, 1.5);
            addJoints(mesh, surface.points, false, 1.5);
            addKerb(mesh, surface.points);
            break;
        case SurfaceKind::concrete:
            addJoints(mesh, surface.points, true, 4.0);
            addJoints(mesh, surface.points, false, 4.0);
            break;
        case SurfaceKind::asphalt:
            addWear(mesh, surface.points, seed);
            break;
        default:
            break;
        }
    }
    for (const Lane &lane : scene.lanes) {
        addTracks(mesh, lane.points);
        for (const std::vector<Vec2> &way : lane.ways) {
            if (way.size() == 1) {
                std::vector<Vec2> whole = way;
                whole.insert(whole.begin(), lane.points.back());
                addTracks(mesh, whole);
            }
        }
    }
}

Ground::Ground(const Scene &scene, const Vec3 &eye, const std::vector<Thing> &things) : mesh_(eye), shadows_(eye) {
    addSurfaces(mesh_, scene);
    addPaint(mesh_, scene);
    shadows_.color(kShadowColor, 0.0, kShadowOpacity);
    for (const Thing &thing : things) {
        for (const std::vector<Vec2> &shadow : thing.shadows) {
            if (length(shadow.front()) < 300.0) {
                shadows_.add(onGround(shadow));
            }
        }
    }
}

void Ground::draw(Brush &brush) const {
    mesh_.draw(brush, false);
    shadows_.draw(brush, false);
}

} // namespace panel
