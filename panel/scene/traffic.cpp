// SPDX-License-Identifier: Apache-2.0
#include "traffic.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>

namespace panel {

namespace {

constexpr double kStep = 0.1;
constexpr double kLongestPause = 20.0;
constexpr double kWarmUp = 110.0;
constexpr std::size_t kMostInStream = 40;

/** Returns a number from 0 to below 1 that depends on nothing but its arguments. */
double chance(std::uint32_t a, std::uint32_t b, std::uint32_t c) {
    std::uint32_t mixed = a * 2654435761U ^ (b + 77U) * 2246822519U ^ (c + 5U) * 3266489917U;
    mixed ^= mixed >> 16U;
    mixed *= 2146121005U;
    mixed ^= mixed >> 15U;
    mixed *= 2221713035U;
    mixed ^= mixed >> 16U;
    return mixed / 4294967296.0;
}

template <typename Element, std::size_t size>
Element pick(const std::array<Element, size> &elements, double share) {
    return elements.at(std::min(size - 1, static_cast<std::size_t>(share * static_cast<double>(size))));
}

Color paintOf(VehicleKind kind, double share) {
    constexpr std::array<Color, 16> kCars = {{{236, 238, 240},
                                              {228, 230, 232},
                                              {244, 244, 240},
                                              {34, 36, 40},
                                              {48, 50, 54},
                                              {22, 24, 28},
                                              {128, 132, 138},
                                              {158, 162, 166},
                                              {176, 180, 184},
                                              {96, 102, 110},
                                              {150, 28, 32},
                                              {36, 66, 120},
                                              {58, 92, 148},
                                              {70, 84, 64},
                                              {168, 148, 116},
                                              {188, 64, 36}}};
    constexpr std::array<Color, 6> kVans = {
        {{240, 240, 238}, {236, 236, 232}, {230, 230, 228}, {210, 160, 40}, {60, 90, 140}, {120, 122, 126}}};
    constexpr std::array<Color, 4> kBuses = {{{30, 98, 150}, {196, 54, 42}, {38, 122, 84}, {30, 98, 150}}};
    if (kind == VehicleKind::bus) {
        return pick(kBuses, share);
    }
    return kind == VehicleKind::van || kind == VehicleKind::truck ? pick(kVans, share) : pick(kCars, share);
}

VehicleKind kindFor(double share) {
    constexpr double kTrucks = 0.05;
    constexpr double kBuses = 0.08;
    constexpr double kVans = 0.19;
    constexpr double kSuvs = 0.50;
    if (share < kTrucks) {
        return VehicleKind::truck;
    }
    if (share < kBuses) {
        return VehicleKind::bus;
    }
    return share < kVans ? VehicleKind::van : share < kSuvs ? VehicleKind::suv : VehicleKind::car;
}

/** Returns the direction of the turn from one way to another: -1 left, 0 through, 1 right. */
int turnOf(const std::vector<Vec2> &points) {
    const Vec2 first = points[1] - points[0];
    const Vec2 last = points.back() - points[points.size() - 2];
    const double sine = cross(first, last) / std::max(1e-9, length(first) * length(last));
    return sine > 0.5 ? -1 : sine < -0.5 ? 1 : 0;
}

} // namespace

SignalCycle::SignalCycle(std::vector<SignalStep> steps) : steps_(std::move(steps)) {
    for (const SignalStep &step : steps_) {
        length_ += step.seconds + step.yellow + step.red;
    }
}

SignalCycle::Stage SignalCycle::stageOf(double seconds) const {
    double place = std::fmod(seconds, length_);
    place += place < 0.0 ? length_ : 0.0;
    for (std::size_t i = 0; i < steps_.size(); ++i) {
        const SignalStep &step = steps_[i];
        if (place < step.seconds) {
            return {i, Aspect::green};
        }
        if (place < step.seconds + step.yellow) {
            return {i, Aspect::yellow};
        }
        place -= step.seconds + step.yellow + step.red;
        if (place < 0.0) {
            return {i, Aspect::red};
        }
    }
    return {};
}

int SignalCycle::stageAt(double seconds) const {
    if (steps_.empty()) {
        return 0;
    }
    const Stage stage = stageOf(seconds);
    return static_cast<int>(stage.step) * 3 + static_cast<int>(stage.aspect);
}

Aspect SignalCycle::at(const std::string &group, double seconds) const {
    if (steps_.empty()) {
        return Aspect::green;
    }
    const auto has = [&](const SignalStep &step) {
        return std::find(step.green.begin(), step.green.end(), group) != step.green.end();
    };
    const Stage stage = stageOf(seconds);
    if (!has(steps_[stage.step])) {
        return Aspect::red;
    }
    // A group that stays green in the next step has no yellow between.
    return has(steps_[(stage.step + 1) % steps_.size()]) ? Aspect::green : stage.aspect;
}

double lengthOf(VehicleKind kind) {
    switch (kind) {
    case VehicleKind::suv:
        return 4.7;
    case VehicleKind::van:
        return 5.6;
    case VehicleKind::truck:
        return 8.4;
    case VehicleKind::bus:
        return 12.0;
    case VehicleKind::car:
        break;
    }
    return 4.5;
}

Traffic::Traffic(const Scene &scene) : signals_(scene.signalCycle) {
    for (const Lane &lane : scene.lanes) {
        Stream stream;
        for (const std::vector<Vec2> &way : lane.ways) {
            std::vector<Vec2> points = lane.points;
            points.insert(points.end(), way.begin(), way.end());
            stream.routes.emplace_back(points, lane.speed);
            stream.turns.push_back(turnOf(points));
        }
        if (lane.ways.empty()) {
            stream.routes.emplace_back(lane.points, lane.speed);
            stream.turns.push_back(0);
        }
        stream.stop = Route(lane.points, lane.speed).length();
        stream.group = lane.group;
        stream.speed = lane.speed;
        stream.every = lane.every;
        streams_.push_back(std::move(stream));
    }
    for (const Walk &way : scene.walks) {
        paths_.push_back({Route(way.points, 1.4), way.group, way.every, 0, 0.0, {}});
    }
}

void Traffic::restart(double seconds) {
    now_ = std::floor(seconds - kWarmUp);
    for (std::size_t i = 0; i < streams_.size(); ++i) {
        streams_[i].vehicles.clear();
        streams_[i].number = static_cast<std::uint32_t>(std::fmod(std::abs(now_), 100000.0));
        streams_[i].next = now_ + streams_[i].every * chance(static_cast<std::uint32_t>(i), 1, 2);
    }
    for (std::size_t i = 0; i < paths_.size(); ++i) {
        paths_[i].pedestrians.clear();
        paths_[i].number = static_cast<std::uint32_t>(std::fmod(std::abs(now_), 100000.0));
        paths_[i].next = now_ + paths_[i].every * chance(static_cast<std::uint32_t>(i), 3, 4);
    }
    started_ = true;
}

void Traffic::advanceTo(double seconds) {
    if (!started_ || seconds < now_ || seconds - now_ > kLongestPause) {
        restart(seconds);
    }
    while (now_ + kStep <= seconds) {
        step(now_ + kStep);
    }
    remainder_ = seconds - now_;
}

void Traffic::step(double seconds) {
    now_ = seconds;
    for (std::size_t i = 0; i < streams_.size(); ++i) {
        arrive(streams_[i], static_cast<std::uint32_t>(i));
        drive(streams_[i]);
    }
    for (std::size_t i = 0; i < paths_.size(); ++i) {
        walk(paths_[i], static_cast<std::uint32_t>(i) + 1000U);
    }
}

void Traffic::arrive(Stream &stream, std::uint32_t seed) {
    constexpr double kRoom = 9.0;
    if (now_ < stream.next) {
        return;
    }
    stream.next = now_ + stream.every * (0.35 + 1.3 * chance(seed, stream.number, 1));
    Vehicle vehicle;
    vehicle.kind = kindFor(chance(seed, stream.number, 2));
    const std::deque<Vehicle> &others = stream.vehicles;
    if (others.size() >= kMostInStream ||
        (!others.empty() && others.back().place - lengthOf(others.back().kind) < kRoom)) {
        return;
    }
    vehicle.color = paintOf(vehicle.kind, chance(seed, stream.number, 3));
    vehicle.route =
        std::min(stream.routes.size() - 1,
                 static_cast<std::size_t>(chance(seed, stream.number, 4) * static_cast<double>(stream.routes.size())));
    vehicle.speed = stream.speed * 0.9;
    if (!others.empty()) {
        vehicle.speed = std::min(vehicle.speed, others.back().speed + 2.0);
    }
    ++stream.number;
    stream.vehicles.push_back(vehicle);
}

double Traffic::accelerationOf(const Stream &stream, std::size_t index, Aspect light) const {
    constexpr double kComfortable = 1.7;
    constexpr double kBraking = 2.2;
    constexpr double kHardest = -7.0;
    constexpr double kHeadway = 1.2;
    constexpr double kGap = 1.9;
    constexpr double kApart = 12.0;
    const Vehicle &own = stream.vehicles[index];
    const double wanted = std::max(0.5, stream.routes[own.route].speedAt(own.place));
    const auto toward = [&](double gap, double speed) {
        const double closing =
            kGap + std::max(0.0, own.speed * kHeadway +
                                     own.speed * (own.speed - speed) / (2.0 * std::sqrt(kComfortable * kBraking)));
        const double ratio = closing / std::max(gap, 0.2);
        return -kComfortable * ratio * ratio;
    };
    double brake = 0.0;
    for (std::size_t i = index; i-- > 0;) {
        const Vehicle &other = stream.vehicles[i];
        // Vehicles on other ways do not matter once they have turned off.
        if (other.route == own.route || other.place < stream.stop + kApart) {
            brake = toward(other.place - lengthOf(other.kind) - own.place, other.speed);
            break;
        }
    }
    const double toStop = stream.stop - own.place;
    if (light != Aspect::green && toStop > -0.5) {
        const bool canStop = own.speed * own.speed / (2.0 * std::max(toStop, 0.1)) < 3.2;
        if (light == Aspect::red ? toStop > 0.0 || own.speed < 2.0 : canStop) {
            brake = std::min(brake, toward(toStop + kGap, 0.0));
        }
    }
    const double ratio = own.speed / wanted;
    const double free =
        ratio <= 1.0 ? kComfortable * (1.0 - ratio * ratio * ratio * ratio) : -kBraking * (ratio - 1.0) * 4.0;
    return std::max(kHardest, free + brake);
}

void Traffic::drive(Stream &stream) {
    const Aspect light = stream.group.empty() ? Aspect::green : signals_.at(stream.group, now_);
    for (std::size_t i = 0; i < stream.vehicles.size(); ++i) {
        Vehicle &vehicle = stream.vehicles[i];
        vehicle.acceleration = accelerationOf(stream, i, light);
        const double before = vehicle.speed;
        vehicle.speed = std::max(0.0, vehicle.speed + vehicle.acceleration * kStep);
        vehicle.place += (before + vehicle.speed) / 2.0 * kStep;
    }
    stream.vehicles.erase(std::remove_if(stream.vehicles.begin(), stream.vehicles.end(),
                                         [&](const Vehicle &vehicle) {
                                             return vehicle.place >
                                                    stream.routes[vehicle.route].length() + lengthOf(vehicle.kind);
                                         }),
                          stream.vehicles.end());
}

void Traffic::walk(Path &path, std::uint32_t seed) {
    constexpr std::array<Color, 8> kClothes = {{{58, 74, 112},
                                                {150, 52, 48},
                                                {64, 66, 70},
                                                {196, 180, 150},
                                                {72, 108, 84},
                                                {206, 196, 84},
                                                {120, 86, 120},
                                                {228, 228, 224}}};
    const Aspect light = path.group.empty() ? Aspect::green : signals_.at(path.group, now_);
    if (now_ >= path.next) {
        path.next = now_ + path.every * (0.3 + 1.4 * chance(seed, path.number, 1));
        if (path.pedestrians.size() < kMostInStream / 4) {
            path.pedestrians.push_back({0.0, 1.6 * chance(seed, path.number, 2) - 0.8,
                                        1.15 + 0.45 * chance(seed, path.number, 3),
                                        pick(kClothes, chance(seed, path.number, 4)), false});
        }
        ++path.number;
    }
    for (Pedestrian &pedestrian : path.pedestrians) {
        pedestrian.walking = pedestrian.place > 0.0 || light == Aspect::green;
        pedestrian.place += pedestrian.walking ? pedestrian.speed * kStep : 0.0;
    }
    path.pedestrians.erase(
        std::remove_if(path.pedestrians.begin(), path.pedestrians.end(),
                       [&](const Pedestrian &pedestrian) { return pedestrian.place > path.route.length(); }),
        path.pedestrians.end());
}

std::vector<Vec2> Traffic::places() const {
    constexpr double kMost = 4000.0;
    constexpr double kApart = 3.0;
    double whole = 0.0;
    std::vector<const Route *> routes;
    for (const Stream &stream : streams_) {
        for (const Route &route : stream.routes) {
            routes.push_back(&route);
            whole += route.length();
        }
    }
    for (const Path &path : paths_) {
        routes.push_back(&path.route);
        whole += path.route.length();
    }
    const double step = std::max(kApart, whole / kMost);
    std::vector<Vec2> places;
    for (const Route *route : routes) {
        const auto steps = static_cast<std::size_t>(route->length() / step) + 1;
        for (std::size_t i = 0; i < steps; ++i) {
            places.push_back(route->at(step * static_cast<double>(i)));
        }
    }
    return places;
}

std::vector<VehiclePose> Traffic::vehicles() const {
    constexpr double kBrakes = -0.6;
    std::vector<VehiclePose> poses;
    for (const Stream &stream : streams_) {
        for (const Vehicle &vehicle : stream.vehicles) {
            const Route &route = stream.routes[vehicle.route];
            const double size = lengthOf(vehicle.kind);
            const double front = vehicle.place + vehicle.speed * remainder_;
            const Vec2 head = route.at(front - 0.2 * size);
            const Vec2 tail = route.at(front - 0.8 * size);
            const int turn = stream.turns[vehicle.route];
            const bool signals = front > stream.stop - 45.0 && front < stream.stop + 22.0;
            poses.push_back({(head + tail) * 0.5, bearingOf(head - tail), vehicle.kind, vehicle.color,
                             vehicle.acceleration < kBrakes || vehicle.speed < 0.1, turn < 0 && signals,
                             turn > 0 && signals});
        }
    }
    return poses;
}

std::vector<PedestrianPose> Traffic::pedestrians() const {
    std::vector<PedestrianPose> poses;
    for (const Path &path : paths_) {
        for (const Pedestrian &pedestrian : path.pedestrians) {
            const double place = pedestrian.place + (pedestrian.walking ? pedestrian.speed * remainder_ : 0.0);
            const Vec2 at = path.route.at(place);
            const Vec2 ahead = path.route.at(place + 0.4) - at;
            const Vec2 side = rightOf(ahead * (1.0 / std::max(length(ahead), 1e-6)));
            poses.push_back({at + side * pedestrian.aside, bearingOf(ahead), pedestrian.color, place * 2.0 * kPi / 1.4,
                             pedestrian.walking});
        }
    }
    return poses;
}

} // namespace panel
