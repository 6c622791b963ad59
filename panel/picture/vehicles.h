// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Drawing of vehicles and pedestrians.
 */
#ifndef QUARNSNMP_PANEL_VEHICLES_H
#define QUARNSNMP_PANEL_VEHICLES_H

#include "thing.h"

namespace panel {

/** Lights of a vehicle that go on and off. */
inline constexpr unsigned kBrakeLight = 1;
inline constexpr unsigned kLeftLight = 2;
inline constexpr unsigned kRightLight = 4;

/** Returns the lights that are on. @param seconds  time of the picture, for blinking lights */
unsigned lightsOf(const VehiclePose &vehicle, double seconds);

/** Returns the outline of a vehicle on the ground. */
std::vector<Vec2> outlineOf(const VehiclePose &vehicle);

/** Returns the shadow of a vehicle on the ground. */
std::vector<Vec2> shadowOf(const VehiclePose &vehicle);

/** Returns a vehicle that does not move. */
Thing makeParked(const Parked &parked, const Vec3 &eye);

/** Draws a vehicle. @param seconds  time of the picture, for blinking lights */
void drawVehicle(Brush &brush, const VehiclePose &vehicle, double seconds);

/** Draws a pedestrian. */
void drawPedestrian(Brush &brush, const PedestrianPose &pedestrian);

} // namespace panel

#endif
