// SPDX-License-Identifier: Apache-2.0
#include "thing.h"

#include <algorithm>
#include <limits>
#include <queue>

namespace panel {

namespace {

constexpr double kHalfTurn = 180.0;

double difference(double a, double b) {
    double turn = std::fmod(a - b, 2.0 * kHalfTurn);
    turn += turn < -kHalfTurn ? 2.0 * kHalfTurn : 0.0;
    return turn - (turn > kHalfTurn ? 2.0 * kHalfTurn : 0.0);
}

/** Part of a ray from the camera inside an outline. */
struct Interval {
    double near = std::numeric_limits<double>::max();
    double far = 0.0;
};

Interval along(const Vec2 &ray, const Footprint &footprint) {
    Interval interval;
    const std::vector<Vec2> &points = footprint.points;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Vec2 &from = points[i];
        const Vec2 edge = points[(i + 1) % points.size()] - from;
        const double slope = cross(ray, edge);
        const double place = std::abs(slope) < 1e-9 ? -1.0 : cross(from, ray) / slope;
        if (place >= 0.0 && place <= 1.0) {
            const double distance = dot(from + edge * place, ray);
            interval.near = std::min(interval.near, std::max(distance, 0.0));
            interval.far = std::max(interval.far, distance);
        }
    }
    if (interval.near > interval.far) {
        interval.near = interval.far = footprint.distance;
    }
    return interval;
}

} // namespace

Footprint::Footprint(std::vector<Vec2> outline) : points(std::move(outline)) {
    Vec2 middle;
    for (const Vec2 &point : points) {
        middle = middle + point * (1.0 / static_cast<double>(points.size()));
    }
    distance = length(middle);
    bearing = bearingOf(middle);
    double left = 0.0;
    double right = 0.0;
    for (const Vec2 &point : points) {
        const double turn = difference(bearingOf(point), bearing);
        left = std::min(left, turn);
        right = std::max(right, turn);
    }
    // An outline around the camera seems to be on all sides.
    halfAngle = right - left >= kHalfTurn ? kHalfTurn : std::max(-left, right);
}

Footprint squareAround(const Vec2 &point, double halfSide) {
    return Footprint({point + Vec2{-halfSide, -halfSide}, point + Vec2{halfSide, -halfSide},
                      point + Vec2{halfSide, halfSide}, point + Vec2{-halfSide, halfSide}});
}

int compareDepth(const Footprint &a, const Footprint &b) {
    const double turn = difference(b.bearing, a.bearing);
    if (std::abs(turn) >= a.halfAngle + b.halfAngle) {
        return 0;
    }
    // The middle of the bearings that they have in common, relative to a.
    const double low = std::max(-a.halfAngle, turn - b.halfAngle);
    const double high = std::min(a.halfAngle, turn + b.halfAngle);
    const Vec2 ray = direction(a.bearing + (low + high) / 2.0);
    const Interval inA = along(ray, a);
    const Interval inB = along(ray, b);
    return inA.near + inA.far <= inB.near + inB.far ? -1 : 1;
}

double slopeTo(const Vec3 &eye, double height, double distance) {
    return (height - eye.z) / std::max(distance, 0.1);
}

void Thing::enclose(double margin) {
    Vec3 low = {1e9, 1e9, 1e9};
    Vec3 high = {-1e9, -1e9, -1e9};
    for (const Vec3 &point : mesh.points()) {
        low = {std::min(low.x, point.x), std::min(low.y, point.y), std::min(low.z, point.z)};
        high = {std::max(high.x, point.x), std::max(high.y, point.y), std::max(high.z, point.z)};
    }
    lowest = mesh.points().empty() ? 0.0 : 1e9;
    highest = -lowest;
    for (const Vec3 &point : mesh.points()) {
        const double slope = slopeTo(mesh.eye(), point.z, length(Vec2{point.x, point.y}));
        lowest = std::min(lowest, slope);
        highest = std::max(highest, slope);
    }
    centre = mesh.points().empty() ? Vec3{} : (low + high) * 0.5;
    radius = margin + (mesh.points().empty() ? 0.0 : length(high - low) / 2.0);
}

void sortByDepth(std::vector<Thing> &things) {
    const std::size_t count = things.size();
    std::vector<std::vector<std::size_t>> inFront(count);
    std::vector<std::size_t> behind(count, 0);
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t k = i + 1; k < count; ++k) {
            const int order = compareDepth(things[i].footprint, things[k].footprint);
            if (order != 0) {
                const std::size_t front = order < 0 ? i : k;
                inFront[front == i ? k : i].push_back(front);
                ++behind[front];
            }
        }
    }
    // Among those that hide nothing that is left, the farthest comes first. A circle is broken there as well.
    std::vector<bool> isPlaced(count, false);
    std::priority_queue<std::pair<double, std::size_t>> ready;
    std::priority_queue<std::pair<double, std::size_t>> all;
    for (std::size_t i = 0; i < count; ++i) {
        all.emplace(things[i].footprint.distance, i);
        if (behind[i] == 0) {
            ready.emplace(things[i].footprint.distance, i);
        }
    }
    std::vector<Thing> sorted;
    sorted.reserve(count);
    while (!all.empty()) {
        std::priority_queue<std::pair<double, std::size_t>> &source = ready.empty() ? all : ready;
        const std::size_t next = source.top().second;
        source.pop();
        if (isPlaced[next]) {
            continue;
        }
        isPlaced[next] = true;
        for (const std::size_t front : inFront[next]) {
            if (--behind[front] == 0) {
                ready.emplace(things[front].footprint.distance, front);
            }
        }
        sorted.push_back(std::move(things[next]));
    }
    things = std::move(sorted);
}

} // namespace panel
