// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>

#include "light.h"
#include "things.h"

namespace panel {

namespace {

constexpr Color kGalvanised = {136, 140, 142};
constexpr Color kHousing = {30, 31, 32};
constexpr Color kBorder = {226, 190, 50};
constexpr double kLens = 0.15;
constexpr double kPitch = 0.36;
constexpr double kLargestGlow = 9.0; ///< radius of a lens in pixels

/** Signal head in its place. */
struct Head {
    Vec3 centre;
    Vec3 right; ///< as seen from the front
    Vec3 facing;
    bool isFront; ///< the camera sees the lights
    SignalHead source;
};

void addRectangle(Mesh &mesh, const Head &head, double halfWidth, double halfHeight, double ahead) {
    const Vec3 x = head.right * halfWidth;
    const Vec3 z = {0.0, 0.0, halfHeight};
    const Vec3 middle = head.centre + head.facing * ahead;
    mesh.add({middle - x - z, middle + x - z, middle + x + z, middle - x + z});
}

void addHousing(Mesh &mesh, const Head &head) {
    constexpr Color kBack = {46, 48, 50};
    const Placement place({head.centre.x, head.centre.y}, bearingOf({head.facing.x, head.facing.y}));
    mesh.color(head.isFront ? kBorder : kBack);
    addRectangle(mesh, head, 0.36, 0.72, -0.02);
    if (head.isFront) {
        mesh.color(kHousing);
        addRectangle(mesh, head, 0.32, 0.68, -0.01);
    }
    addBox(mesh, place, {{-0.17, -0.1, head.centre.z - 0.55}, {0.17, 0.16, head.centre.z + 0.55}},
           head.isFront ? kHousing : Color{66, 68, 70});
}

/** Adds the outline of a lens: a disc, or an arrow to the left. */
void addLens(Mesh &mesh, const Head &head, const Vec3 &centre, double radius) {
    if (!head.source.arrow) {
        mesh.disc(centre, head.right, {0.0, 0.0, 1.0}, radius);
        return;
    }
    const auto point = [&](double x, double z) { return centre + head.right * (x * radius) + Vec3{0, 0, z * radius}; };
    mesh.add({point(-1.0, 0.0), point(-0.1, -0.8), point(-0.1, -0.3), point(0.9, -0.3), point(0.9, 0.3),
              point(-0.1, 0.3), point(-0.1, 0.8)});
}

void drawLenses(Brush &brush, const Head &head, Aspect aspect) {
    constexpr std::array<Color, 3> kOn = {{{255, 58, 40}, {255, 196, 40}, {60, 246, 160}}};
    constexpr std::array<Color, 3> kOff = {{{74, 22, 20}, {76, 60, 20}, {18, 62, 44}}};
    const std::size_t on = aspect == Aspect::red ? 0 : aspect == Aspect::yellow ? 1 : 2;
    for (std::size_t i = 0; i < kOn.size(); ++i) {
        const Vec3 centre = head.centre + head.facing * 0.17 + Vec3{0.0, 0.0, kPitch * (1.0 - static_cast<double>(i))};
        const bool isOn = i == on;
        // From nearby, a lens is large enough without a glow.
        if (isOn && kLens * brush.projection().pixelsPerMetre(brush.distanceOf(centre)) < kLargestGlow) {
            const Tint tint = brush.tone().of(kOn.at(i));
            brush.disc(centre, kLens * 2.2, tint, 0.22);
        }
        Mesh lens(brush.eye());
        lens.color({0, 0, 0});
        if (head.source.arrow && !isOn) {
            lens.disc(centre, head.right, {0.0, 0.0, 1.0}, kLens);
        } else {
            addLens(lens, head, centre, kLens);
        }
        brush.add(lens.points());
        brush.fillPure(isOn ? kOn.at(i) : kOff.at(i));
    }
}

void addStreetName(Mesh &mesh, const SignalPole &pole, const Vec3 &eye, const Vec2 &along) {
    if (pole.street.empty() || pole.arm < 3.0) {
        return;
    }
    // The name hangs across the arm, legible from the side of the lights.
    const Vec2 facing = pole.heads.empty() ? rightOf(along) : direction(pole.heads.front().bearing);
    const Vec3 right = at(rightOf(facing) * -1.0, 0.0);
    const Vec3 centre =
        at(pole.at + along * std::min(2.2, pole.arm * 0.3), pole.height - 0.45) + at(facing, 0.0) * 0.12;
    const bool isFront = dot(at(facing, 0.0), eye - centre) > 0.0;
    const double width = std::min(2.6, 0.24 * static_cast<double>(pole.street.size()) + 0.5);
    const auto plate = [&](double inset, const Color &color) {
        const Vec3 x = right * (width / 2.0 - inset);
        const Vec3 z = {0.0, 0.0, 0.24 - inset};
        mesh.color(color);
        mesh.add({centre - x - z, centre + x - z, centre + x + z, centre - x + z});
    };
    plate(0.0, isFront ? Color{240, 242, 238} : Color{124, 128, 130});
    if (isFront) {
        plate(0.03, {12, 98, 62});
        mesh.text(pole.street, {centre, right, {0.0, 0.0, 1.0}, 0.22, width - 0.2}, {244, 246, 242});
    }
}

Thing makeArm(const SignalPole &pole, const Vec3 &eye, const std::vector<Head> &heads, const Vec2 &along) {
    Thing arm(eye);
    const Vec3 start = at(pole.at, pole.height - 0.15);
    const Vec3 end = at(pole.at + along * pole.arm, pole.height + 0.12);
    const bool inFront = !heads.empty() && heads.front().isFront;
    const auto addBar = [&] { arm.mesh.bar(start, end, 0.11, 0.06, kGalvanised); };
    if (inFront) {
        addBar();
    }
    for (const Head &head : heads) {
        addHousing(arm.mesh, head);
    }
    if (!inFront) {
        addBar();
    }
    addStreetName(arm.mesh, pole, eye, along);
    const Vec2 side = rightOf(along) * 0.15;
    arm.footprint = Footprint(
        {pole.at - side, pole.at + along * pole.arm - side, pole.at + along * pole.arm + side, pole.at + side});
    arm.shadows.push_back(shadowOf({pole.at, pole.at + along * pole.arm, pole.at + along * pole.arm + side * 0.6},
                                   pole.height - 0.1, pole.height));
    arm.changing = [heads](Brush &brush, const Moment &moment) {
        for (const Head &head : heads) {
            if (head.isFront && moment.signals != nullptr) {
                drawLenses(brush, head, moment.signals->at(head.source.group, moment.seconds));
            }
        }
    };
    arm.isTimed = true;
    arm.enclose(0.4);
    return arm;
}

} // namespace

std::vector<Thing> makeSignalPole(const SignalPole &pole, const Vec3 &eye) {
    const Vec2 along = direction(pole.bearing);
    std::vector<Head> heads;
    for (const SignalHead &source : pole.heads) {
        const Vec3 facing = at(direction(source.bearing), 0.0);
        const double offset = std::min(source.offset, pole.arm);
        const double drop = pole.arm > 0.0 ? 0.1 : 0.45;
        const Vec3 centre = at(pole.at + along * offset, pole.height - drop) + facing * 0.2;
        const Vec3 right = at(rightOf(direction(source.bearing)) * -1.0, 0.0);
        heads.push_back({centre, right, facing, dot(facing, eye - centre) > 0.0, source});
    }
    std::vector<Thing> things;
    Thing post(eye);
    post.mesh.bar(at(pole.at, 0.0), at(pole.at, 0.35), 0.24, 0.22, kGalvanised);
    post.mesh.bar(at(pole.at, 0.35), at(pole.at, pole.height + (pole.arm > 0.0 ? 0.3 : 0.0)), 0.15, 0.11, kGalvanised);
    post.footprint = squareAround(pole.at, 0.2);
    post.shadows.push_back(shadowOfPole(pole.at, 0.13, pole.height));
    post.enclose();
    things.push_back(std::move(post));
    if (!heads.empty() || pole.arm > 0.0) {
        SignalPole visible = pole;
        visible.arm = std::max(pole.arm, 0.3);
        things.push_back(makeArm(visible, eye, heads, along));
    }
    return things;
}

} // namespace panel
