// SPDX-License-Identifier: Apache-2.0
#include "route.h"

#include <algorithm>

namespace panel {

namespace {

double length(const Vec2 &from, const Vec2 &to) {
    return panel::length(to - from);
}

bool isCorner(const std::vector<Vec2> &points, std::size_t i) {
    constexpr double kStraight = 0.02;
    if (i == 0 || i + 1 >= points.size()) {
        return false;
    }
    const Vec2 before = points[i] - points[i - 1];
    const Vec2 after = points[i + 1] - points[i];
    const double size = panel::length(before) * panel::length(after);
    return size > 0.0 && (std::abs(cross(before, after)) > kStraight * size || dot(before, after) < 0.0);
}

/** Returns the length that a corner may take of the part between two points. */
double share(const std::vector<Vec2> &points, std::size_t corner, std::size_t neighbour) {
    constexpr double kLongest = 16.0;
    const double whole = length(points[corner], points[neighbour]);
    return std::min(kLongest, whole * (isCorner(points, neighbour) ? 0.5 : 0.98));
}

std::vector<Vec2> rounded(const std::vector<Vec2> &points) {
    constexpr int kSteps = 10;
    std::vector<Vec2> all = {points.front()};
    for (std::size_t i = 1; i + 1 < points.size(); ++i) {
        if (!isCorner(points, i)) {
            all.push_back(points[i]);
            continue;
        }
        const double cut = std::min(share(points, i, i - 1), share(points, i, i + 1));
        const Vec2 start = points[i] + (points[i - 1] - points[i]) * (cut / length(points[i], points[i - 1]));
        const Vec2 end = points[i] + (points[i + 1] - points[i]) * (cut / length(points[i], points[i + 1]));
        for (int step = 0; step <= kSteps; ++step) {
            const double part = static_cast<double>(step) / kSteps;
            const Vec2 first = start + (points[i] - start) * part;
            const Vec2 second = points[i] + (end - points[i]) * part;
            all.push_back(first + (second - first) * part);
        }
    }
    all.push_back(points.back());
    return all;
}

} // namespace

Route::Route(const std::vector<Vec2> &points, double speed) {
    for (const Vec2 &point : rounded(points)) {
        const double step = points_.empty() ? 0.0 : panel::length(point - points_.back());
        if (points_.empty() || step > 1e-6) {
            places_.push_back(places_.empty() ? 0.0 : places_.back() + step);
            points_.push_back(point);
        }
    }
    if (points_.size() == 1) {
        points_.push_back(points_.front() + Vec2{0.0, 0.01});
        places_.push_back(0.01);
    }
    speeds_.assign(points_.size(), speed);
    for (std::size_t i = 1; i + 1 < points_.size(); ++i) {
        constexpr double kSideways = 2.4;
        const Vec2 before = points_[i] - points_[i - 1];
        const Vec2 after = points_[i + 1] - points_[i];
        const double angle = std::abs(std::atan2(cross(before, after), dot(before, after)));
        const double radius = (panel::length(before) + panel::length(after)) / 2.0 / std::max(angle, 1e-6);
        speeds_[i] = std::clamp(std::sqrt(kSideways * radius), 1.0, speed);
    }
    for (std::size_t i = points_.size() - 1; i-- > 0;) {
        constexpr double kBraking = 1.8;
        const double later = speeds_[i + 1];
        speeds_[i] = std::min(speeds_[i], std::sqrt(later * later + 2.0 * kBraking * (places_[i + 1] - places_[i])));
    }
}

std::size_t Route::partAt(double place) const {
    const auto after = std::upper_bound(places_.begin() + 1, places_.end() - 1, place);
    return static_cast<std::size_t>(after - places_.begin()) - 1;
}

Vec2 Route::at(double place) const {
    const std::size_t part = partAt(place);
    const double size = places_[part + 1] - places_[part];
    return points_[part] + (points_[part + 1] - points_[part]) * ((place - places_[part]) / size);
}

double Route::speedAt(double place) const {
    const std::size_t part = partAt(place);
    const double size = places_[part + 1] - places_[part];
    const double share = std::clamp((place - places_[part]) / size, 0.0, 1.0);
    // Speeds fall with the square root of the distance.
    const double square = speeds_[part] * speeds_[part] * (1.0 - share) + speeds_[part + 1] * speeds_[part + 1] * share;
    return std::sqrt(square);
}

} // namespace panel
