// SPDX-License-Identifier: Apache-2.0
// The city around a scene: it fills the view between what the scene describes and the horizon.
#include <algorithm>
#include <array>

#include "ground.h"
#include "light.h"
#include "things.h"

namespace panel {

namespace {

bool isFree(const Scene &scene, const Building &building) {
    constexpr double kStreet = 4.0;
    const double x = building.width / 2.0 + kStreet;
    const double y = building.depth / 2.0 + kStreet;
    for (const Vec2 &offset : {Vec2{0, 0}, Vec2{-x, -y}, Vec2{x, -y}, Vec2{x, y}, Vec2{-x, y}, Vec2{0, y}, Vec2{0, -y},
                               Vec2{x, 0}, Vec2{-x, 0}}) {
        const Vec2 point = building.at + offset;
        const bool isPaved = std::any_of(scene.surfaces.begin(), scene.surfaces.end(),
                                         [&](const Surface &surface) { return isInside(point, surface.points); });
        if (isPaved) {
            return false;
        }
    }
    return std::none_of(scene.buildings.begin(), scene.buildings.end(), [&](const Building &other) {
        const double room = (building.width + building.depth + other.width + other.depth) / 4.0;
        return length(building.at - other.at) < room * 1.45;
    });
}

} // namespace

std::vector<Building> makeCity(const Scene &scene) {
    constexpr double kNearest = 125.0;
    constexpr double kFarthest = 470.0;
    constexpr double kBlock = 44.0;
    constexpr std::array<Color, 8> kColors = {{{164, 96, 78},
                                               {188, 170, 144},
                                               {150, 142, 134},
                                               {176, 120, 92},
                                               {204, 196, 180},
                                               {128, 110, 100},
                                               {144, 152, 160},
                                               {192, 182, 160}}};
    std::vector<Building> city;
    if (scene.skyline.density <= 0.0) {
        return city;
    }
    Dice dice(static_cast<std::uint32_t>(scene.skyline.seed) + 7U);
    const int blocks = static_cast<int>(kFarthest / kBlock);
    for (int east = -blocks; east <= blocks; ++east) {
        for (int north = -blocks; north <= blocks; ++north) {
            Building building;
            building.at = {kBlock * east + dice.between(-5.0, 5.0), kBlock * north + dice.between(-5.0, 5.0)};
            building.width = dice.between(18.0, 32.0);
            building.depth = dice.between(18.0, 32.0);
            building.bearing = 90.0 * static_cast<double>(dice.below(4));
            building.floors = std::floor(dice.between(2.0, 7.5));
            building.color = kColors.at(dice.below(kColors.size()));
            building.windows = dice.next() < 0.75 ? Windows::grid : Windows::ribbon;
            building.roof = building.floors < 3.0 && dice.next() < 0.5 ? Roof::gable : Roof::flat;
            const double distance = length(building.at);
            const bool isKept = dice.next() < 0.8 * std::min(1.0, scene.skyline.density);
            if (isKept && distance > kNearest && distance < kFarthest && isFree(scene, building)) {
                city.push_back(building);
            }
        }
    }
    return city;
}

} // namespace panel
