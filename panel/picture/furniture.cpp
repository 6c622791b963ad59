// SPDX-License-Identifier: Apache-2.0
// Street lights, signs, cabinets and lamps.
#include <algorithm>

#include "light.h"
#include "things.h"

namespace panel {

namespace {

constexpr Color kSteel = {128, 132, 134};
constexpr Color kDarkSteel = {70, 74, 78};
constexpr Color kLampOn = {255, 244, 196};
constexpr Color kLampOff = {148, 148, 138};

/** Plate of a sign: its front is legible, its back is grey. */
struct Plate {
    Vec3 centre;
    Vec3 right; ///< as seen from the front
    double width;
    double height;
    bool isFront; ///< the camera sees the front
};

Plate plateOf(const Sign &sign, double height, const Vec3 &eye) {
    const Vec2 facing = direction(sign.bearing);
    const Vec3 centre = at(sign.at, sign.height);
    const bool isFront = dot(at(facing, 0.0), eye - centre) > 0.0;
    // From its front, the right side of a plate is to the left of the direction that it faces.
    return {centre, at(rightOf(facing) * -1.0, 0.0), sign.width, height, isFront};
}

void addPlate(Mesh &mesh, const Plate &plate, const Color &color, double inset = 0.0) {
    const Vec3 x = plate.right * (plate.width / 2.0 - inset);
    const Vec3 z = {0.0, 0.0, plate.height / 2.0 - inset};
    mesh.color(plate.isFront ? color : Color{120, 124, 126});
    mesh.add({plate.centre - x - z, plate.centre + x - z, plate.centre + x + z, plate.centre - x + z});
}

void addPolygonPlate(Mesh &mesh, const Plate &plate, int corners, double size, const Color &color) {
    std::vector<Vec3> points;
    for (int i = 0; i < corners; ++i) {
        const double angle = 2.0 * kPi * (i + 0.5) / corners;
        points.push_back(plate.centre + plate.right * (size * std::cos(angle)) + Vec3{0, 0, size * std::sin(angle)});
    }
    mesh.color(plate.isFront ? color : Color{120, 124, 126});
    mesh.add(points);
}

void addText(Mesh &mesh, const Plate &plate, const std::string &text, double size, const Color &color,
             double above = 0.0) {
    if (plate.isFront && !text.empty()) {
        mesh.text(text, {plate.centre + Vec3{0.0, 0.0, above}, plate.right, {0, 0, 1}, size, plate.width * 0.86},
                  color);
    }
}

void addBoard(Mesh &mesh, const Sign &sign, const Plate &plate) {
    constexpr Color kWhite = {244, 244, 240};
    switch (sign.kind) {
    case SignKind::street:
        addPlate(mesh, plate, kWhite);
        addPlate(mesh, plate, {12, 98, 62}, 0.025);
        addText(mesh, plate, sign.text, plate.height * 0.5, kWhite);
        break;
    case SignKind::guide:
        addPlate(mesh, plate, kWhite);
        addPlate(mesh, plate, {18, 96, 66}, 0.06);
        addText(mesh, plate, sign.text, plate.height * 0.34, kWhite);
        break;
    case SignKind::billboard:
        addPlate(mesh, plate, {54, 56, 60});
        addPlate(mesh, plate, {238, 232, 214}, 0.18);
        addText(mesh, plate, sign.text, plate.height * 0.3, {150, 44, 34});
        break;
    case SignKind::parking:
        addPlate(mesh, plate, kWhite);
        addPlate(mesh, plate, {30, 84, 160}, 0.03);
        addText(mesh, plate, sign.text.empty() ? "P" : sign.text, plate.height * 0.6, kWhite);
        break;
    case SignKind::speed:
        addPlate(mesh, plate, {40, 40, 42});
        addPlate(mesh, plate, kWhite, 0.03);
        addText(mesh, plate, "SPEED LIMIT", plate.height * 0.13, {24, 24, 26}, plate.height * 0.3);
        addText(mesh, plate, sign.text, plate.height * 0.38, {24, 24, 26}, -plate.height * 0.14);
        break;
    case SignKind::stop:
        addPolygonPlate(mesh, plate, 8, plate.width * 0.54, kWhite);
        addPolygonPlate(mesh, plate, 8, plate.width * 0.49, {178, 30, 34});
        addText(mesh, plate, "STOP", plate.width * 0.26, kWhite);
        break;
    }
}

double boardHeight(const Sign &sign) {
    switch (sign.kind) {
    case SignKind::guide:
        return sign.width * 0.42;
    case SignKind::billboard:
        return sign.width * 0.45;
    case SignKind::speed:
        return sign.width * 1.25;
    case SignKind::stop:
    case SignKind::parking:
        return sign.width;
    case SignKind::street:
        break;
    }
    return std::min(0.4, sign.width * 0.3);
}

} // namespace

void drawGlow(Brush &brush, const Vec3 &centre, double radius, const Color &color) {
    const Tint tint = brush.tone().of(color);
    brush.disc(centre, radius * 2.6, tint, 0.13);
    brush.disc(centre, radius * 1.7, tint, 0.22);
    brush.disc(centre, radius, tint);
}

std::vector<Vec2> shadowOfPole(const Vec2 &foot, double radius, double height) {
    const Vec2 side = rightOf(direction(kSunBearing)) * radius;
    return convexHull(
        {foot - side, foot + side, foot + shadowOffset(height) - side, foot + shadowOffset(height) + side});
}

Thing makeStreetLight(const StreetLight &light, const Vec3 &eye) {
    Thing thing(eye);
    const Vec3 top = at(light.at, light.height - 0.3);
    const Vec3 end = at(light.at + direction(light.bearing) * light.arm, light.height);
    thing.mesh.bar(at(light.at, 0.0), at(light.at, 0.7), 0.16, 0.13, kSteel);
    thing.mesh.bar(at(light.at, 0.7), top, 0.10, 0.06, kSteel);
    thing.mesh.bar(top, end, 0.05, 0.04, kSteel);
    const Placement head(Vec2{end.x, end.y}, light.bearing);
    addBox(thing.mesh, head, {{-0.17, -0.15, light.height - 0.06}, {0.17, 0.75, light.height + 0.09}}, kDarkSteel);
    thing.footprint = squareAround(light.at, 0.2);
    thing.shadows.push_back(shadowOfPole(light.at, 0.08, light.height));
    if (light.relay) {
        thing.changing = [light, head](Brush &brush, const Moment &moment) {
            if (Moment::isOn(moment.relays, light.relay)) {
                drawGlow(brush, head.point(0.0, 0.35, light.height - 0.1), 0.22, kLampOn);
            }
        };
    }
    thing.enclose(1.0);
    return thing;
}

Thing makeSign(const Sign &sign, const Vec3 &eye) {
    Thing thing(eye);
    const Plate plate = plateOf(sign, boardHeight(sign), eye);
    const bool isLarge = sign.kind == SignKind::billboard || sign.kind == SignKind::guide;
    const double half = isLarge ? sign.width * 0.35 : 0.0;
    const double radius = isLarge ? 0.14 : 0.035;
    for (const double x : {-half, half}) {
        const Vec2 foot = sign.at + Vec2{plate.right.x, plate.right.y} * x;
        thing.mesh.bar(at(foot, 0.0), at(foot, sign.height + (isLarge ? 0.0 : plate.height / 2.0)), radius, radius,
                       kSteel);
        thing.shadows.push_back(shadowOfPole(foot, radius, sign.height));
        if (half == 0.0) {
            break;
        }
    }
    addBoard(thing.mesh, sign, plate);
    const Vec2 reach = Vec2{plate.right.x, plate.right.y} * std::max(0.1, sign.width * 0.45);
    const Vec2 deep = direction(sign.bearing) * 0.1;
    thing.footprint =
        Footprint({sign.at - reach - deep, sign.at + reach - deep, sign.at + reach + deep, sign.at - reach + deep});
    thing.enclose();
    return thing;
}

Thing makeCabinet(const Cabinet &cabinet, const Vec3 &eye) {
    constexpr Color kBody = {176, 180, 178};
    constexpr double kHalf = 0.55;
    constexpr double kDepth = 0.4;
    constexpr double kTop = 1.65;
    Thing thing(eye);
    const Placement place(cabinet.at, cabinet.bearing);
    addBox(thing.mesh, place, {{-0.7, -0.55, 0.0}, {0.7, 0.55, 0.12}}, {168, 166, 160});
    addBox(thing.mesh, place, {{-kHalf, -kDepth, 0.12}, {kHalf, kDepth, kTop}}, kBody);
    addBox(thing.mesh, place, {{-kHalf - 0.05, -kDepth - 0.05, kTop}, {kHalf + 0.05, kDepth + 0.08, kTop + 0.07}},
           {196, 198, 196});
    thing.footprint = Footprint(
        {place.ground(-0.7, -0.55), place.ground(0.7, -0.55), place.ground(0.7, 0.55), place.ground(-0.7, 0.55)});
    thing.shadows.push_back(shadowOf(thing.footprint.points, 0.0, kTop));
    const bool isDoorVisible = dot(at(place.forward, 0.0), eye - at(place.ground(0.0, kDepth), 1.0)) > 0.0;
    thing.changing = [=](Brush &brush, const Moment &moment) {
        const bool isOpen = Moment::isOn(moment.inputs, cabinet.input);
        Mesh mesh(brush.eye());
        const auto panel = [&](double left, double right, double low, double high, double y) {
            mesh.add({place.point(right, y, low), place.point(left, y, low), place.point(left, y, high),
                      place.point(right, y, high)});
        };
        if (isDoorVisible) {
            mesh.color(isOpen ? Color{34, 38, 42} : lit(shade(kBody, 0.94), at(place.forward, 0.0)));
            panel(-0.49, 0.49, 0.2, kTop - 0.06, kDepth + 0.005);
            if (isOpen) {
                // Equipment with lights, lit by the cabinet's own lamp.
                for (int shelf = 0; shelf < 4; ++shelf) {
                    const double z = 0.32 + 0.32 * shelf;
                    mesh.color({152, 154, 150}, 0.05);
                    panel(-0.42, 0.42, z, z + 0.2, kDepth + 0.01);
                    mesh.color({70, 220, 110}, 0.03);
                    panel(0.3, 0.34, z + 0.08, z + 0.12, kDepth + 0.015);
                    mesh.color({240, 170, 60}, 0.03);
                    panel(0.22, 0.26, z + 0.08, z + 0.12, kDepth + 0.015);
                }
                mesh.color({255, 250, 224}, 0.03);
                panel(-0.4, 0.4, kTop - 0.13, kTop - 0.09, kDepth + 0.015);
            } else {
                mesh.color({92, 96, 98}, 0.02);
                panel(0.34, 0.38, 0.8, 1.0, kDepth + 0.01);
                for (int slot = 0; slot < 5; ++slot) {
                    panel(-0.25, 0.25, 0.3 + 0.06 * slot, 0.325 + 0.06 * slot, kDepth + 0.01);
                }
            }
        }
        if (isOpen) {
            // The door stands open at a right angle, hinged at its left side.
            const Placement door(place.ground(-kHalf, kDepth), cabinet.bearing);
            addBox(mesh, door, {{-0.04, 0.0, 0.2}, {0.0, 0.98, kTop - 0.06}}, shade(kBody, 0.96));
        }
        mesh.draw(brush);
    };
    thing.enclose(1.0);
    return thing;
}

Thing makeLamp(const Lamp &lamp, const Vec3 &eye) {
    Thing thing(eye);
    thing.mesh.bar(at(lamp.at, 0.0), at(lamp.at, lamp.height - 0.2), 0.05, 0.04, kDarkSteel);
    const Placement place(lamp.at, 0.0);
    addBox(thing.mesh, place, {{-0.12, -0.12, lamp.height - 0.28}, {0.12, 0.12, lamp.height - 0.16}}, kDarkSteel);
    thing.footprint = squareAround(lamp.at, 0.15);
    thing.shadows.push_back(shadowOfPole(lamp.at, 0.05, lamp.height));
    thing.changing = [lamp](Brush &brush, const Moment &moment) {
        const Vec3 centre = at(lamp.at, lamp.height);
        if (Moment::isOn(moment.relays, lamp.relay)) {
            drawGlow(brush, centre, 0.2, kLampOn);
        } else {
            brush.disc(centre, 0.2, brush.tone().of(kLampOff));
        }
    };
    thing.enclose(1.0);
    return thing;
}

} // namespace panel
