// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Routes: ways of vehicles and pedestrians with rounded corners.
 */
#ifndef QUARNSNMP_PANEL_ROUTE_H
#define QUARNSNMP_PANEL_ROUTE_H

#include <cstddef>
#include <vector>

#include "geometry.h"

namespace panel {

/** Way with rounded corners and the speeds at which a vehicle takes them. */
class Route {
public:
    /** @param points  corners, at least two @param speed  on straight parts, in metres per second */
    Route(const std::vector<Vec2> &points, double speed);

    double length() const {
        return places_.back();
    }

    /** Returns the point at a distance from the start; before the start and beyond the end, on a straight line. */
    Vec2 at(double place) const;

    /** Returns the highest speed at a distance from the start, with room to brake for what follows. */
    double speedAt(double place) const;

private:
    std::size_t partAt(double place) const;

    std::vector<Vec2> points_;
    std::vector<double> places_; ///< distances of the points from the start
    std::vector<double> speeds_;
};

} // namespace panel

#endif
