// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>

#include "light.h"
#include "things.h"

namespace panel {

namespace {

/** Crown of a tree as the camera sees it. */
class Crown {
public:
    Crown(Mesh &mesh, const Vec3 &centre, std::uint32_t seed) : mesh_(mesh), centre_(centre), dice_(seed) {
        const Vec3 view = unit(centre - mesh.eye());
        right_ = unit(Vec3{view.y, -view.x, 0.0});
        up_ = cross(right_, view);
    }

    /** Adds an irregular patch of leaves. @param x, y  of its middle in the plane of the picture */
    void patch(double x, double y, double radius) {
        const int corners = radius > 0.7 ? 17 : 9;
        std::vector<Vec3> points;
        for (int i = 0; i < corners; ++i) {
            const double angle = 2.0 * kPi * (i + 0.3 * dice_.next()) / corners;
            const double size = radius * dice_.between(0.82, 1.12);
            points.push_back(centre_ + right_ * (x + size * std::cos(angle)) + up_ * (y + size * std::sin(angle)));
        }
        mesh_.add(points);
    }

    /** Returns the direction of the sun in the plane of the picture. */
    Vec2 sun() const {
        return {dot(right_, sunDirection()), dot(up_, sunDirection())};
    }

    Dice &dice() {
        return dice_;
    }

private:
    Mesh &mesh_;
    Vec3 centre_;
    Vec3 right_;
    Vec3 up_;
    Dice dice_;
};

struct LeafColors {
    Color dark;
    Color middle;
    Color light;
    Color bright;
};

LeafColors leafColors(Dice &dice) {
    constexpr std::array<LeafColors, 4> kAll = {{{{38, 58, 34}, {62, 90, 46}, {88, 118, 58}, {118, 146, 76}},
                                                 {{42, 60, 30}, {72, 96, 44}, {100, 126, 58}, {132, 152, 76}},
                                                 {{34, 54, 40}, {54, 82, 56}, {78, 108, 68}, {104, 134, 84}},
                                                 {{58, 62, 28}, {92, 98, 42}, {126, 130, 54}, {156, 156, 74}}}};
    return kAll.at(dice.below(kAll.size()));
}

/** Adds patches of a colour, scattered in an ellipse whose middle is towards the sun. */
void scatter(Crown &crown, int count, double rx, double ry, double size, const Vec2 &middle) {
    for (int i = 0; i < count; ++i) {
        const double angle = crown.dice().between(0.0, 2.0 * kPi);
        const double place = std::sqrt(crown.dice().next());
        crown.patch(middle.x + rx * place * std::cos(angle), middle.y + ry * place * std::sin(angle),
                    size * crown.dice().between(0.75, 1.2));
    }
}

void addRoundCrown(Mesh &mesh, const Vec3 &centre, double rx, double ry, std::uint32_t seed) {
    Crown crown(mesh, centre, seed);
    const LeafColors colors = leafColors(crown.dice());
    const Vec2 sun = crown.sun();
    mesh.color(colors.dark);
    for (int i = 0; i < 9; ++i) {
        const double angle = 2.0 * kPi * i / 9.0 + crown.dice().between(-0.2, 0.2);
        crown.patch(0.62 * rx * std::cos(angle), 0.62 * ry * std::sin(angle), 0.44 * std::min(rx, ry));
    }
    crown.patch(0.0, 0.0, 0.66 * std::min(rx, ry));
    const double unitSize = std::min(rx, ry);
    mesh.color(colors.middle, 0.3 * unitSize);
    scatter(crown, 11, 0.62 * rx, 0.62 * ry, 0.30 * unitSize, {0.14 * rx * sun.x, 0.16 * ry * sun.y});
    mesh.color(colors.light, 0.25 * unitSize);
    scatter(crown, 13, 0.52 * rx, 0.50 * ry, 0.20 * unitSize, {0.26 * rx * sun.x, 0.30 * ry * sun.y});
    mesh.color(colors.bright, 0.10 * unitSize);
    scatter(crown, 16, 0.44 * rx, 0.40 * ry, 0.10 * unitSize, {0.36 * rx * sun.x, 0.42 * ry * sun.y});
    mesh.color(mix(colors.dark, colors.middle, 0.45), 0.04 * unitSize);
    scatter(crown, 14, 0.66 * rx, 0.62 * ry, 0.075 * unitSize, {-0.1 * rx * sun.x, -0.16 * ry * sun.y});
    mesh.color(colors.light, 0.025 * unitSize);
    scatter(crown, 30, 0.8 * rx, 0.8 * ry, 0.05 * unitSize, {0.05 * rx * sun.x, 0.05 * ry * sun.y});
}

void addConifer(Mesh &mesh, const Tree &tree, std::uint32_t seed) {
    constexpr Color kDark = {30, 50, 40};
    constexpr Color kLight = {58, 84, 60};
    Dice dice(seed);
    const Vec3 view = unit(at(tree.at, 0.0) - mesh.eye());
    const Vec3 right = unit(Vec3{view.y, -view.x, 0.0});
    const double sun = dot(right, sunDirection()) > 0.0 ? 1.0 : -1.0;
    constexpr int kTiers = 6;
    for (int tier = 0; tier < kTiers; ++tier) {
        const double low = tree.height * (0.10 + 0.14 * tier);
        const double high = std::min(tree.height, low + tree.height * 0.32);
        const double radius = tree.height * 0.22 * (1.0 - 0.145 * tier);
        const auto outline = [&](double from, double to) {
            std::vector<Vec3> points = {at(tree.at, high)};
            constexpr int kTeeth = 7;
            for (int i = 0; i <= kTeeth; ++i) {
                const double x = from + (to - from) * i / kTeeth;
                const double droop = 0.25 * tree.height * 0.1 * (i % 2 == 0 ? 1.0 : -0.4);
                points.push_back(at(tree.at, low - droop + dice.between(0.0, 0.1)) + right * x);
            }
            return points;
        };
        mesh.color(kDark);
        mesh.add(outline(radius, -radius));
        mesh.color(kLight, 0.4 * radius);
        mesh.add(outline(sun * radius * 0.9, sun * radius * 0.1));
    }
}

std::vector<Vec2> roundShadow(const Vec2 &at, double height, double radius, std::uint32_t seed) {
    Dice dice(seed);
    const Vec2 middle = at + shadowOffset(height);
    const Vec2 away = direction(kSunBearing) * -1.0;
    const Vec2 side = rightOf(away);
    std::vector<Vec2> points;
    constexpr int kCorners = 22;
    for (int i = 0; i < kCorners; ++i) {
        const double angle = 2.0 * kPi * i / kCorners;
        const double size = radius * dice.between(0.86, 1.1);
        points.push_back(middle + away * (1.35 * size * std::cos(angle)) + side * (size * std::sin(angle)));
    }
    return points;
}

} // namespace

Thing makeTree(const Tree &tree, const Vec3 &eye) {
    constexpr Color kBark = {92, 76, 62};
    Thing thing(eye);
    const auto seed = static_cast<std::uint32_t>(std::abs(tree.at.x * 31.0 + tree.at.y * 17.0) + 1.0);
    const double height = tree.height;
    if (tree.kind == TreeKind::conifer) {
        thing.mesh.bar(at(tree.at, 0.0), at(tree.at, 0.25 * height), 0.025 * height, 0.02 * height, kBark);
        addConifer(thing.mesh, tree, seed);
        thing.footprint = squareAround(tree.at, 0.15 * height);
        thing.shadows.push_back(shadowOf({tree.at + Vec2{-0.2 * height, 0.0}, tree.at + Vec2{0.2 * height, 0.0},
                                          tree.at + Vec2{0.0, 0.2 * height}, tree.at + shadowOffset(height * 0.95)},
                                         0.0, 0.1));
    } else if (tree.kind == TreeKind::bush) {
        addRoundCrown(thing.mesh, at(tree.at, 0.48 * height), 0.75 * height, 0.5 * height, seed);
        thing.footprint = squareAround(tree.at, 0.5 * height);
        thing.shadows.push_back(roundShadow(tree.at, 0.4 * height, 0.7 * height, seed));
    } else {
        Dice dice(seed);
        const double rx = height * dice.between(0.33, 0.41);
        const double ry = height * 0.36;
        const Vec3 fork = at(tree.at, 0.42 * height);
        thing.mesh.bar(at(tree.at, 0.0), fork, 0.026 * height, 0.018 * height, kBark);
        for (const double x : {-0.16, 0.14}) {
            thing.mesh.bar(fork, fork + Vec3{x * height, 0.5 * x * height, 0.22 * height}, 0.012 * height,
                           0.008 * height, kBark, 0.05 * height);
        }
        addRoundCrown(thing.mesh, at(tree.at, 0.63 * height), rx, ry, seed);
        thing.footprint = squareAround(tree.at, 0.22 * height);
        thing.shadows.push_back(roundShadow(tree.at, 0.63 * height, 0.9 * rx, seed));
        thing.shadows.push_back(
            shadowOf({tree.at + Vec2{-0.02 * height, 0.01}, tree.at + Vec2{0.02 * height, -0.01}}, 0.0, 0.6 * height));
    }
    thing.enclose();
    return thing;
}

} // namespace panel
