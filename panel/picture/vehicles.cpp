// SPDX-License-Identifier: Apache-2.0
#include "vehicles.h"

#include <algorithm>
#include <array>

#include "light.h"
#include "vehicle_shapes.h"

namespace panel {

namespace {

constexpr Color kGlass = {44, 54, 64};
constexpr Color kTyre = {28, 28, 30};
constexpr Color kHub = {150, 152, 156};
constexpr Color kDark = {38, 40, 43};

/** Vehicle while it is drawn. */
class Drawing {
public:
    Drawing(const VehiclePose &vehicle, const Vec3 &eye, bool isDetailed, double seconds)
        : vehicle_(vehicle), shape_(shapeOf(vehicle.kind)), place_(vehicle.at, vehicle.bearing), mesh_(eye),
          isDetailed_(isDetailed), lights_(lightsOf(vehicle, seconds)) {
        const Vec2 toEye = Vec2{eye.x, eye.y} - vehicle.at;
        side_ = dot(toEye, place_.right) > 0.0 ? 1.0 : -1.0;
        isFront_ = dot(toEye, place_.forward) > 0.0;
    }

    const Mesh &draw() {
        // The ground under the vehicle is dark: it sees neither the sun nor the sky.
        std::vector<Vec3> ground;
        for (const Vec2 &corner : outlineOf(vehicle_)) {
            ground.push_back(at(corner, 0.02));
        }
        mesh_.color({30, 31, 34}, 0.0, 0.75);
        mesh_.add(ground);
        if (vehicle_.kind == VehicleKind::truck && isFront_) {
            addCargo();
        }
        addBody();
        if (vehicle_.kind == VehicleKind::truck && !isFront_) {
            addCargo();
        }
        return mesh_;
    }

private:
    Vec3 point(const ProfilePoint &at, double side) const {
        const double low = shape_.profile[shape_.windscreenBase].z;
        const double high = shape_.profile[shape_.windscreenTop].z;
        const double share = std::clamp((at.z - low) / (high - low), 0.0, 1.0);
        const double width = shape_.width + (shape_.roofWidth - shape_.width) * share;
        return place_.point(side * width / 2.0, at.y, at.z);
    }

    void addBody() {
        if (isFront_) {
            for (std::size_t i = shape_.profile.size() - 1; i-- > 0;) {
                addStrip(i);
            }
        } else {
            for (std::size_t i = 0; i + 1 < shape_.profile.size(); ++i) {
                addStrip(i);
            }
        }
        addSide();
        addLights();
    }

    /** Adds a strip across the vehicle between two points of its outline. */
    void addStrip(std::size_t i) {
        const ProfilePoint &front = shape_.profile[i];
        const ProfilePoint &rear = shape_.profile[i + 1];
        const Vec3 normal = unit(at(place_.forward * (rear.z - front.z), front.y - rear.y));
        const bool isGlass = i == shape_.windscreenBase || (i == shape_.rearTop && shape_.rearGlass);
        const Vec3 corners[] = {point(front, 1.0), point(rear, 1.0), point(rear, -1.0), point(front, -1.0)};
        if (dot(normal, mesh_.eye() - corners[0]) <= 0.0) {
            return;
        }
        mesh_.color(lit(vehicle_.color, normal));
        mesh_.add({corners[0], corners[1], corners[2], corners[3]});
        if (isGlass) {
            const auto inset = [&](double x, double y) {
                const Vec3 left = corners[3] + (corners[2] - corners[3]) * y;
                const Vec3 right = corners[0] + (corners[1] - corners[0]) * y;
                return left + (right - left) * x;
            };
            const auto pane = [&](double left, double right, double low, double high) {
                mesh_.add({inset(left, low), inset(right, low), inset(right, high), inset(left, high)});
            };
            mesh_.color(lit(kGlass, normal));
            pane(0.05, 0.95, 0.05, 0.94);
            if (isDetailed_) {
                // The sky in the glass.
                mesh_.color({138, 160, 178}, 0.2, 0.5);
                mesh_.add({inset(0.12, 0.1), inset(0.42, 0.1), inset(0.66, 0.9), inset(0.36, 0.9)});
            }
        }
    }

    void addSide() {
        const Vec3 normal = at(place_.right * side_, 0.0);
        const std::vector<ProfilePoint> &profile = shape_.profile;
        const Color paint = lit(vehicle_.color, normal);
        std::vector<Vec3> lower;
        std::vector<Vec3> top;
        for (std::size_t i = 0; i < profile.size(); ++i) {
            if (i <= shape_.windscreenBase || i >= shape_.rearBase) {
                lower.push_back(point(profile[i], side_));
            }
            if (i >= shape_.windscreenTop && i <= shape_.rearTop) {
                top.push_back(point(profile[i], side_));
            }
        }
        mesh_.color(shade(paint, 0.95));
        mesh_.add(lower);
        mesh_.color(paint);
        const Vec3 frontLow = point(profile[shape_.windscreenBase], side_);
        const Vec3 frontHigh = point(profile[shape_.windscreenTop], side_);
        const Vec3 rearHigh = point(profile[shape_.rearTop], side_);
        const Vec3 rearLow = point(profile[shape_.rearBase], side_);
        mesh_.add({frontLow, frontHigh, rearHigh, rearLow});
        if (top.size() > 2) {
            mesh_.color(paint);
            mesh_.add(top);
        }
        const auto inBand = [&](double along, double up) {
            const Vec3 low = frontLow + (rearLow - frontLow) * along;
            const Vec3 high = frontHigh + (rearHigh - frontHigh) * along;
            return low + (high - low) * up;
        };
        mesh_.color(lit(kGlass, normal), 0.2);
        for (const auto &[from, to] : shape_.windows) {
            mesh_.add({inBand(from, 0.10), inBand(to, 0.10), inBand(to, 0.9), inBand(from, 0.9)});
        }
        addTrim(normal);
        addWheels();
    }

    /** Adds a dark sill, and the stripe and the door handles that are seen from nearby. */
    void addTrim(const Vec3 &normal) {
        const double front = shape_.profile.front().y;
        const double rear = shape_.profile.back().y;
        const double low = shape_.profile.front().z;
        const double x = side_ * (shape_.width / 2.0 + 0.004);
        const auto band = [&](double from, double to, double bottom, double top) {
            mesh_.add({place_.point(x, from, bottom), place_.point(x, to, bottom), place_.point(x, to, top),
                       place_.point(x, from, top)});
        };
        mesh_.color(lit(kDark, normal), 0.1);
        band(front, rear, low - 0.06, low + 0.07);
        if (vehicle_.kind == VehicleKind::bus) {
            mesh_.color(lit({238, 238, 232}, normal), 0.2);
            band(front, rear, 0.72, 0.92);
        }
        if (isDetailed_ && vehicle_.kind != VehicleKind::bus && vehicle_.kind != VehicleKind::truck) {
            mesh_.color(lit(shade(vehicle_.color, 0.55), normal), 0.03);
            const double belt = shape_.profile[shape_.windscreenBase].z;
            for (const double door : {0.30, -0.72}) {
                band(door, door + 0.02, low + 0.1, belt - 0.04);
                band(door + 0.12, door + 0.3, belt - 0.16, belt - 0.12);
            }
        }
    }

    void addWheels() {
        const Vec3 forward = at(place_.forward, 0.0);
        const Vec3 up = {0.0, 0.0, 1.0};
        for (const double axle : shape_.axles) {
            const Vec3 hub = place_.point(side_ * (shape_.width / 2.0 + 0.008), axle, shape_.wheelRadius);
            mesh_.color({18, 18, 20}, 0.2);
            mesh_.disc(hub + Vec3{0.0, 0.0, 0.04}, forward, up, shape_.wheelRadius * 1.16, 14);
            mesh_.color(kTyre);
            mesh_.disc(hub, forward, up, shape_.wheelRadius, 14);
            mesh_.color(kHub, 0.25);
            mesh_.disc(hub, forward, up, shape_.wheelRadius * 0.58, 12);
            if (isDetailed_) {
                mesh_.color({86, 88, 92}, 0.08);
                mesh_.disc(hub, forward, up, shape_.wheelRadius * 0.2, 8);
            }
        }
    }

    /** Adds lights, grille and number plate at the end that the camera sees. */
    void addLights() {
        const ProfilePoint &corner = isFront_ ? shape_.profile[1] : shape_.profile[shape_.profile.size() - 2];
        const double y = corner.y + (isFront_ ? 0.012 : -0.012);
        const double half = shape_.width / 2.0;
        const double z = std::max(0.52, corner.z - 0.08);
        const Vec3 normal = at(place_.forward * (isFront_ ? 1.0 : -1.0), 0.0);
        const auto pair = [&](double inner, double outer, double low, double high) {
            for (const double side : {-1.0, 1.0}) {
                mesh_.add({place_.point(side * inner, y, low), place_.point(side * outer, y, low),
                           place_.point(side * outer, y, high), place_.point(side * inner, y, high)});
            }
        };
        mesh_.color(lit(kDark, normal), 0.2);
        mesh_.add({place_.point(-half * 0.96, y, 0.3), place_.point(half * 0.96, y, 0.3),
                   place_.point(half * 0.96, y, 0.44), place_.point(-half * 0.96, y, 0.44)});
        if (isFront_ && isDetailed_) {
            mesh_.color({40, 42, 46}, 0.1);
            mesh_.add({place_.point(-half * 0.5, y, z - 0.14), place_.point(half * 0.5, y, z - 0.14),
                       place_.point(half * 0.5, y, z + 0.02), place_.point(-half * 0.5, y, z + 0.02)});
        }
        const Color rearLight = (lights_ & kBrakeLight) != 0 ? Color{255, 44, 30} : Color{138, 24, 24};
        mesh_.color(isFront_ ? Color{250, 250, 240} : rearLight);
        pair(half * 0.58, half * 0.97, z - 0.06, z + (isFront_ ? 0.07 : 0.12));
        addIndicator(y, half, z);
        if (isDetailed_) {
            mesh_.color({236, 236, 224}, 0.12);
            const double bottom = isFront_ ? 0.34 : z - 0.1;
            mesh_.add({place_.point(-0.17, y, bottom), place_.point(0.17, y, bottom),
                       place_.point(0.17, y, bottom + 0.13), place_.point(-0.17, y, bottom + 0.13)});
        }
    }

    void addIndicator(double y, double half, double z) {
        if ((lights_ & (kLeftLight | kRightLight)) == 0) {
            return;
        }
        const double side = (lights_ & kRightLight) != 0 ? 1.0 : -1.0;
        mesh_.color({255, 168, 40});
        mesh_.add({place_.point(side * half * 0.8, y, z - 0.08), place_.point(side * half, y, z - 0.08),
                   place_.point(side * half, y, z + 0.08), place_.point(side * half * 0.8, y, z + 0.08)});
    }

    void addCargo() {
        const Box box = {{-1.22, -4.15, 0.85}, {1.22, 2.25, 3.25}};
        addBox(mesh_, place_, {{-1.0, -4.1, 0.5}, {1.0, 2.3, 0.86}}, kDark);
        addBox(mesh_, place_, box, {232, 232, 228});
        mesh_.color(lit(vehicle_.color, at(place_.right * side_, 0.0)), 0.3);
        const double x = side_ * 1.225;
        mesh_.add({place_.point(x, -4.1, 1.2), place_.point(x, 2.2, 1.2), place_.point(x, 2.2, 1.55),
                   place_.point(x, -4.1, 1.55)});
    }

    const VehiclePose &vehicle_;
    const VehicleShape &shape_;
    Placement place_;
    Mesh mesh_;
    bool isDetailed_;
    unsigned lights_;
    double side_ = 1.0; ///< of the visible side: 1 right, -1 left
    bool isFront_ = false;
};

} // namespace

unsigned lightsOf(const VehiclePose &vehicle, double seconds) {
    constexpr double kPeriod = 0.8;
    const bool blinks = vehicle.turningLeft != vehicle.turningRight && std::fmod(seconds, kPeriod) < kPeriod / 2.0;
    return (vehicle.braking ? kBrakeLight : 0U) | (blinks && vehicle.turningLeft ? kLeftLight : 0U) |
           (blinks && vehicle.turningRight ? kRightLight : 0U);
}

std::vector<Vec2> outlineOf(const VehiclePose &vehicle) {
    const Placement place(vehicle.at, vehicle.bearing);
    const double x = shapeOf(vehicle.kind).width / 2.0;
    const double y = lengthOf(vehicle.kind) / 2.0;
    return {place.ground(-x, -y), place.ground(x, -y), place.ground(x, y), place.ground(-x, y)};
}

std::vector<Vec2> shadowOf(const VehiclePose &vehicle) {
    const VehicleShape &shape = shapeOf(vehicle.kind);
    const double height = vehicle.kind == VehicleKind::truck ? 3.2 : shape.profile[shape.windscreenTop].z * 0.9;
    return shadowOf(outlineOf(vehicle), 0.15, height);
}

Thing makeParked(const Parked &parked, const Vec3 &eye) {
    VehiclePose pose;
    pose.at = parked.at;
    pose.bearing = parked.bearing;
    pose.kind = parked.kind;
    pose.color = parked.color;
    Thing thing(eye);
    thing.mesh = Drawing(pose, eye, true, 0.0).draw();
    thing.footprint = Footprint(outlineOf(pose));
    thing.shadows.push_back(shadowOf(pose));
    thing.enclose();
    return thing;
}

void drawVehicle(Brush &brush, const VehiclePose &vehicle, double seconds) {
    const double distance = brush.distanceOf(at(vehicle.at, 0.7));
    const bool isDetailed = brush.projection().pixelsPerMetre(distance) > 28.0;
    Drawing(vehicle, brush.eye(), isDetailed, seconds).draw().draw(brush);
}

} // namespace panel
