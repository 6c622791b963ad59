// SPDX-License-Identifier: Apache-2.0
#include "stage.h"

#include <algorithm>
#include <utility>

#include "light.h"
#include "things.h"

namespace panel {

namespace {

Vec3 eyeOf(const Scene &scene) {
    return {0.0, 0.0, scene.camera.height};
}

std::vector<Thing> makeThings(const Scene &scene) {
    const Vec3 eye = eyeOf(scene);
    std::vector<Thing> things;
    const auto make = [&](const auto &sources, auto maker) {
        for (const auto &source : sources) {
            things.push_back(maker(source, eye));
        }
    };
    make(scene.buildings, makeBuilding);
    make(makeCity(scene), makeBuilding);
    make(scene.trees, makeTree);
    make(scene.streetLights, makeStreetLight);
    make(scene.signs, makeSign);
    make(scene.cabinets, makeCabinet);
    make(scene.lamps, makeLamp);
    make(scene.parked, makeParked);
    make(scene.beacons, makeBeacon);
    for (const SignalPole &pole : scene.signalPoles) {
        for (Thing &thing : makeSignalPole(pole, eye)) {
            things.push_back(std::move(thing));
        }
    }
    sortByDepth(things);
    return things;
}

/** Place where something can move: what the camera sees of a vehicle there. */
struct Place {
    Footprint footprint;
    double lowest;
    double highest;
};

std::vector<Place> placesOf(const Traffic &traffic, const Vec3 &eye) {
    constexpr double kHalfSide = 3.0;
    constexpr double kHighest = 3.4;
    std::vector<Place> places;
    for (const Vec2 &point : traffic.places()) {
        const double distance = length(point);
        places.push_back({squareAround(point, kHalfSide), slopeTo(eye, 0.0, std::max(distance - kHalfSide, 0.5)),
                          slopeTo(eye, kHighest, distance + kHalfSide)});
    }
    return places;
}

/** Returns the pixels of a polygon; empty outside the picture. */
PixelBox boxOf(Projection &projection, const std::vector<Vec3> &points) {
    constexpr double kMargin = 2.0;
    PixelBox box = {static_cast<int>(projection.width()), static_cast<int>(projection.height()), 0, 0};
    for (const Vec2 &pixel : projection.polygon(points.data(), points.size())) {
        const double x = std::clamp(pixel.x, 0.0, projection.width());
        const double y = std::clamp(pixel.y, 0.0, projection.height());
        box.include({static_cast<int>(std::max(x - kMargin, 0.0)), static_cast<int>(std::max(y - kMargin, 0.0)),
                     static_cast<int>(std::min(x + kMargin, projection.width())),
                     static_cast<int>(std::min(y + kMargin, projection.height()))});
    }
    return box;
}

std::vector<Vec3> raised(const std::vector<Vec2> &points, double height) {
    std::vector<Vec3> all;
    all.reserve(points.size());
    for (const Vec2 &point : points) {
        all.push_back(at(point, height));
    }
    return all;
}

void drawThing(const Thing &thing, Brush &brush, const Moment &moment) {
    if (!brush.canShow(thing.centre, thing.radius)) {
        return;
    }
    thing.mesh.draw(brush);
    if (thing.changing) {
        thing.changing(brush, moment);
    }
}

} // namespace

Stage::Stage(const Scene &scene) : traffic_(scene), sky_(scene, eyeOf(scene)) {
    std::vector<Thing> things = makeThings(scene);
    ground_.emplace(scene, eyeOf(scene), things);
    divide(std::move(things));
}

/** Finds the things of the foreground: those that can hide something that moves, and those that can hide them. */
void Stage::divide(std::vector<Thing> things) {
    const std::vector<Place> places =
        things.empty() ? std::vector<Place>() : placesOf(traffic_, things.front().mesh.eye());
    const auto hides = [](const Thing &thing, const auto &other) {
        return thing.highest > other.lowest && thing.lowest < other.highest &&
               compareDepth(thing.footprint, other.footprint) < 0;
    };
    for (Thing &thing : things) {
        const bool isInFront =
            thing.isTimed ||
            std::any_of(places.begin(), places.end(), [&](const Place &place) { return hides(thing, place); }) ||
            std::any_of(foreground_.begin(), foreground_.end(),
                        [&](const Thing &other) { return hides(thing, other); });
        (isInFront ? foreground_ : background_).push_back(std::move(thing));
    }
}

/** Returns how many things are drawn before a footprint: all up to the last one that it hides. */
std::size_t Stage::placeOf(const Footprint &footprint) const {
    for (std::size_t i = foreground_.size(); i-- > 0;) {
        if (compareDepth(footprint, foreground_[i].footprint) < 0) {
            return i + 1;
        }
    }
    return 0;
}

/** Keeps a mover if it is in the picture. @param height  of a prism around it */
void Stage::addMover(Brush &brush, const Footprint &footprint, double height, Mover mover) {
    Projection &projection = brush.projection();
    const std::vector<Vec2> &outline = footprint.points;
    mover.box = boxOf(projection, raised(outline, height));
    mover.box.include(boxOf(projection, raised(outline, 0.0)));
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const Vec2 &next = outline[(i + 1) % outline.size()];
        mover.box.include(
            boxOf(projection, {at(outline[i], 0.0), at(next, 0.0), at(next, height), at(outline[i], height)}));
    }
    if (mover.vehicle != nullptr) {
        mover.box.include(boxOf(projection, raised(shadowOf(*mover.vehicle), 0.0)));
    }
    if (!mover.box.isEmpty()) {
        mover.after = placeOf(footprint);
        mover.distance = footprint.distance;
        movers_.push_back(mover);
    }
}

void Stage::findMovers(Brush &brush) {
    constexpr double kRadius = 12.0; ///< of a vehicle with its shadow
    constexpr double kVehicle = 3.5;
    constexpr double kPedestrian = 1.9;
    constexpr double kSmallest = 1.5; ///< in pixels
    const Projection &projection = brush.projection();
    const auto isVisible = [&](const Vec2 &at, double height, double radius) {
        return projection.pixelsPerMetre(length(at)) * height > kSmallest &&
               projection.canShow(panel::at(at, height / 2.0), radius);
    };
    movers_.clear();
    for (const VehiclePose &vehicle : vehicles_) {
        if (isVisible(vehicle.at, 1.5, kRadius)) {
            addMover(brush, Footprint(outlineOf(vehicle)), kVehicle, {0, 0.0, &vehicle, nullptr, {}});
        }
    }
    for (const PedestrianPose &pedestrian : pedestrians_) {
        if (isVisible(pedestrian.at, 1.8, 1.5)) {
            addMover(brush, squareAround(pedestrian.at, 0.6), kPedestrian, {0, 0.0, nullptr, &pedestrian, {}});
        }
    }
    std::sort(movers_.begin(), movers_.end(), [](const Mover &a, const Mover &b) {
        return a.after != b.after ? a.after < b.after : a.distance > b.distance;
    });
}

std::vector<PixelBox> Stage::movingParts() const {
    std::vector<PixelBox> boxes;
    for (const Mover &mover : movers_) {
        boxes.push_back(mover.box);
    }
    return boxes;
}

Stage::Look Stage::lookOf(const Mover &mover, double seconds) {
    constexpr unsigned kWalker = 1U << 31U;
    if (mover.pedestrian != nullptr) {
        const PedestrianPose &pose = *mover.pedestrian;
        return {pose.at, pose.bearing, pose.step, kWalker | (pose.walking ? 1U : 0U), mover.box};
    }
    const VehiclePose &pose = *mover.vehicle;
    return {pose.at, pose.bearing, 0.0, lightsOf(pose, seconds), mover.box};
}

/** Compares the movers with those of the previous moment. What has moved too little to be seen has not moved. */
void Stage::findChanges(const Projection &projection, double seconds) {
    constexpr double kVisible = 0.1; ///< in pixels
    constexpr double kReach = 6.0;   ///< from the middle of a mover to its end, in metres
    std::vector<Look> previous = std::exchange(looks_, {});
    changedParts_.clear();
    for (const Mover &mover : movers_) {
        const Look look = lookOf(mover, seconds);
        const double metres = kVisible / projection.pixelsPerMetre(length(look.at));
        const auto isSame = [&](const Look &other) {
            return other.lights == look.lights && other.box == look.box &&
                   length(other.at - look.at) + kReach * std::abs(radians(other.bearing - look.bearing)) +
                           std::abs(other.step - look.step) <
                       metres;
        };
        const auto same = std::find_if(previous.begin(), previous.end(), isSame);
        if (same == previous.end()) {
            changedParts_.push_back(look.box);
            looks_.push_back(look);
        } else {
            looks_.push_back(*same);
            previous.erase(same);
        }
    }
    for (const Look &gone : previous) {
        changedParts_.push_back(gone.box);
    }
}

void Stage::advance(Moment &moment, Brush &brush) {
    traffic_.advanceTo(moment.seconds);
    moment.signals = &traffic_.signals();
    vehicles_ = traffic_.vehicles();
    pedestrians_ = traffic_.pedestrians();
    findMovers(brush);
    findChanges(brush.projection(), moment.seconds);
}

void Stage::drawBackground(Brush &brush, const Moment &moment) const {
    sky_.draw(brush);
    ground_->draw(brush);
    Sky::drawHaze(brush);
    sky_.drawHorizon(brush);
    for (const Thing &thing : background_) {
        drawThing(thing, brush, moment);
    }
}

void Stage::drawForeground(Brush &brush, const Moment &moment, bool movers) const {
    std::vector<const Mover *> drawn;
    for (const Mover &mover : movers_) {
        if (movers && brush.isDrawn(mover.box)) {
            drawn.push_back(&mover);
        }
    }
    for (const Mover *mover : drawn) {
        if (mover->vehicle != nullptr) {
            brush.add(raised(shadowOf(*mover->vehicle), 0.0));
        }
    }
    brush.fill(kShadowColor, 0.0, kShadowOpacity);
    auto next = drawn.begin();
    for (std::size_t i = 0; i <= foreground_.size(); ++i) {
        for (; next != drawn.end() && (*next)->after == i; ++next) {
            if ((*next)->vehicle != nullptr) {
                drawVehicle(brush, *(*next)->vehicle, moment.seconds);
            } else {
                drawPedestrian(brush, *(*next)->pedestrian);
            }
        }
        if (i < foreground_.size()) {
            drawThing(foreground_[i], brush, moment);
        }
    }
}

} // namespace panel
