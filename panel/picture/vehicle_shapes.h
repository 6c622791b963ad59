// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Shapes of vehicles.
 */
#ifndef QUARNSNMP_PANEL_VEHICLE_SHAPES_H
#define QUARNSNMP_PANEL_VEHICLE_SHAPES_H

#include <utility>
#include <vector>

#include "scene.h"

namespace panel {

/** Point of a vehicle seen from its side: along the vehicle, positive in front, and upwards. */
struct ProfilePoint {
    double y;
    double z;
};

/** VehicleShape of a vehicle: its outline from the side, from the lower front over the roof to the lower rear. */
struct VehicleShape {
    std::vector<ProfilePoint> profile;
    std::size_t windscreenBase; ///< indices into the profile
    std::size_t windscreenTop;
    std::size_t rearTop;
    std::size_t rearBase;
    double width;
    double roofWidth;
    double wheelRadius;
    std::vector<double> axles;
    std::vector<std::pair<double, double>> windows; ///< parts of the side from front to rear, 0 to 1
    bool rearGlass;
};

/** Returns the shape of a kind of vehicle. */
const VehicleShape &shapeOf(VehicleKind kind);

} // namespace panel

#endif
