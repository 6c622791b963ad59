// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>

#include "light.h"
#include "things.h"

namespace panel {

namespace {

constexpr Color kGlass = {92, 108, 124};
constexpr Color kDarkGlass = {58, 68, 80};
constexpr Color kSkyGlass = {150, 176, 198};
constexpr Color kFrame = {224, 222, 214};
constexpr int kMostWindows = 40; ///< in a row or a column

/** Wall as seen from outside: coordinates to the right from its lower left corner, and upwards. */
struct Wall {
    Vec3 corner;
    Vec3 along;
    Vec3 normal;
    double width = 0.0;
    double height = 0.0;

    Vec3 at(double x, double z) const {
        return corner + along * x + Vec3{0.0, 0.0, z};
    }
};

void addRectangle(Mesh &mesh, const Wall &wall, double left, double low, double right, double high) {
    mesh.add({wall.at(left, low), wall.at(right, low), wall.at(right, high), wall.at(left, high)});
}

/** Windows of a wall: rectangles in columns and rows. */
struct WindowGrid {
    double left;
    double low;
    double columnWidth;
    double rowHeight;
    double width;  ///< of a window
    double height; ///< of a window
    int columns;
    int rows;
};

/** Adds the windows whose glass has one of three colours. */
void addGlass(Mesh &mesh, const Wall &wall, const WindowGrid &grid, std::uint32_t seed) {
    constexpr std::array<Color, 3> kColors = {kGlass, kDarkGlass, kSkyGlass};
    for (std::size_t wanted = 0; wanted < kColors.size(); ++wanted) {
        Dice dice(seed);
        mesh.color(lit(kColors.at(wanted), wall.normal), wanted == 0 ? 0.35 * grid.width : 0.45 * grid.width);
        for (int row = 0; row < grid.rows; ++row) {
            for (int column = 0; column < grid.columns; ++column) {
                const double share = dice.next();
                const std::size_t kind = share < 0.55 ? 0 : share < 0.8 ? 1 : 2;
                if (kind == wanted) {
                    const double x = grid.left + grid.columnWidth * column;
                    const double z = grid.low + grid.rowHeight * row;
                    addRectangle(mesh, wall, x, z, x + grid.width, z + grid.height);
                }
            }
        }
    }
}

/** Adds lintels, sills and bars of windows. */
void addWindowDetails(Mesh &mesh, const Wall &wall, const WindowGrid &grid, const Color &color) {
    mesh.color(lit(shade(color, 1.25), wall.normal), 0.1);
    for (int row = 0; row < grid.rows; ++row) {
        for (int column = 0; column < grid.columns; ++column) {
            const double x = grid.left + grid.columnWidth * column;
            const double z = grid.low + grid.rowHeight * row;
            addRectangle(mesh, wall, x - 0.1, z - 0.16, x + grid.width + 0.1, z);
        }
    }
    mesh.color(lit(kFrame, wall.normal), 0.07);
    for (int row = 0; row < grid.rows; ++row) {
        for (int column = 0; column < grid.columns; ++column) {
            const double x = grid.left + grid.columnWidth * column + grid.width / 2.0;
            const double z = grid.low + grid.rowHeight * row;
            addRectangle(mesh, wall, x - 0.035, z, x + 0.035, z + grid.height);
        }
    }
    mesh.color(lit(shade(color, 0.55), wall.normal), 0.14);
    for (int row = 0; row < grid.rows; ++row) {
        for (int column = 0; column < grid.columns; ++column) {
            const double x = grid.left + grid.columnWidth * column;
            const double z = grid.low + grid.rowHeight * row + grid.height;
            addRectangle(mesh, wall, x, z - 0.14, x + grid.width, z);
        }
    }
}

/** Adds a shop: wide panes, doors, an awning or a fascia. */
void addShopFront(Mesh &mesh, const Wall &wall, double height, std::uint32_t seed) {
    constexpr std::array<Color, 5> kAwnings = {
        {{150, 46, 42}, {38, 92, 72}, {44, 66, 108}, {176, 128, 56}, {86, 82, 78}}};
    Dice dice(seed);
    const int bays = std::max(1, static_cast<int>(wall.width / 4.2));
    const double bay = wall.width / bays;
    const double top = height * 0.78;
    mesh.color(lit(kDarkGlass, wall.normal), 0.8);
    for (int i = 0; i < bays; ++i) {
        addRectangle(mesh, wall, bay * i + 0.35, 0.5, bay * (i + 1) - 0.35, top);
    }
    mesh.color(lit(kSkyGlass, wall.normal), 0.5, 0.55);
    for (int i = 0; i < bays; ++i) {
        const double x = bay * i + 0.35;
        mesh.add({wall.at(x + 0.2, 0.5), wall.at(x + bay * 0.3, 0.5), wall.at(x + bay * 0.5, top),
                  wall.at(x + bay * 0.3, top)});
    }
    for (int i = 0; i < bays; ++i) {
        const bool isDoor = dice.next() < 0.35;
        if (isDoor) {
            mesh.color(lit({74, 58, 46}, wall.normal), 0.4);
            addRectangle(mesh, wall, bay * (i + 0.5) - 0.55, 0.0, bay * (i + 0.5) + 0.55, top * 0.86);
            mesh.color(lit(kGlass, wall.normal), 0.2);
            addRectangle(mesh, wall, bay * (i + 0.5) - 0.38, 0.5, bay * (i + 0.5) + 0.38, top * 0.8);
        }
        const Color awning = kAwnings.at(dice.below(kAwnings.size()));
        if (dice.next() < 0.7) {
            const Vec3 out = wall.normal * 1.2;
            mesh.color(lit(awning, unit(wall.normal + Vec3{0.0, 0.0, 1.0})), 0.5);
            mesh.add({wall.at(bay * i + 0.25, top - 0.55) + out, wall.at(bay * (i + 1) - 0.25, top - 0.55) + out,
                      wall.at(bay * (i + 1) - 0.25, top + 0.15), wall.at(bay * i + 0.25, top + 0.15)});
            mesh.color(lit(shade(awning, 0.8), wall.normal), 0.25);
            mesh.add({wall.at(bay * i + 0.25, top - 0.85) + out, wall.at(bay * (i + 1) - 0.25, top - 0.85) + out,
                      wall.at(bay * (i + 1) - 0.25, top - 0.55) + out, wall.at(bay * i + 0.25, top - 0.55) + out});
        }
    }
}

void addRibbons(Mesh &mesh, const Wall &wall, const Building &building, double bottom) {
    const int rows = static_cast<int>(building.floors) - (bottom > 0.0 ? 1 : 0);
    const int panes = std::clamp(static_cast<int>(wall.width / 1.6), 1, kMostWindows);
    const double height = building.floorHeight * 0.52;
    mesh.color(lit(kGlass, wall.normal), 0.5 * height);
    for (int row = 0; row < rows; ++row) {
        const double z = bottom + building.floorHeight * (row + 0.3);
        addRectangle(mesh, wall, 0.5, z, wall.width - 0.5, z + height);
    }
    Dice dice(static_cast<std::uint32_t>(wall.width * 100.0 + building.floors));
    mesh.color(lit(kSkyGlass, wall.normal), 0.8);
    for (int row = 0; row < rows; ++row) {
        const double z = bottom + building.floorHeight * (row + 0.3);
        for (int pane = 0; pane < panes; ++pane) {
            if (dice.next() < 0.22) {
                const double step = (wall.width - 1.0) / panes;
                addRectangle(mesh, wall, 0.5 + step * pane, z, 0.5 + step * (pane + 1), z + height);
            }
        }
    }
    mesh.color(lit(shade(building.color, 0.8), wall.normal), 0.16);
    for (int pane = 1; pane < panes; ++pane) {
        const double x = 0.5 + (wall.width - 1.0) * pane / panes;
        for (int row = 0; row < rows; ++row) {
            const double z = bottom + building.floorHeight * (row + 0.3);
            addRectangle(mesh, wall, x - 0.06, z, x + 0.06, z + height);
        }
    }
}

void addWall(Mesh &mesh, const Wall &wall, const Building &building, bool isFront, std::uint32_t seed) {
    mesh.color(lit(building.color, wall.normal));
    addRectangle(mesh, wall, 0.0, 0.0, wall.width, wall.height);
    if (building.windows == Windows::none) {
        return;
    }
    const bool hasShops = building.windows == Windows::shop;
    const double bottom = hasShops ? building.floorHeight * 1.25 : 0.0;
    if (building.windows == Windows::ribbon) {
        addRibbons(mesh, wall, building, 0.0);
    } else {
        const double pitch = 2.9;
        WindowGrid grid{};
        grid.columns = std::clamp(static_cast<int>((wall.width - 0.8) / pitch), 1, kMostWindows);
        grid.columnWidth = wall.width / grid.columns;
        grid.width = std::min(1.35, grid.columnWidth * 0.55);
        grid.left = (grid.columnWidth - grid.width) / 2.0;
        grid.rowHeight = building.floorHeight;
        grid.height = building.floorHeight * 0.5;
        grid.low = bottom + building.floorHeight * 0.28;
        grid.rows = std::min(kMostWindows, static_cast<int>((wall.height - bottom) / building.floorHeight + 0.01));
        addGlass(mesh, wall, grid, seed);
        addWindowDetails(mesh, wall, grid, building.color);
    }
    if (hasShops && isFront) {
        addShopFront(mesh, wall, bottom, seed);
    }
    if (hasShops) {
        mesh.color(lit(shade(building.color, 1.15), wall.normal), 0.3);
        addRectangle(mesh, wall, 0.0, bottom - 0.25, wall.width, bottom + 0.1);
    }
    // Cornice.
    mesh.color(lit(shade(building.color, 1.2), wall.normal), 0.4);
    addRectangle(mesh, wall, 0.0, wall.height - 0.55, wall.width, wall.height - 0.1);
    mesh.color(lit(shade(building.color, 0.7), wall.normal), 0.2);
    addRectangle(mesh, wall, 0.0, wall.height - 0.72, wall.width, wall.height - 0.55);
}

void addSign(Mesh &mesh, const Wall &wall, const Building &building) {
    constexpr std::array<Color, 4> kBoards = {{{34, 52, 84}, {122, 34, 36}, {36, 74, 56}, {42, 42, 46}}};
    const double z = std::min(building.floorHeight * 1.12, wall.height - 0.7);
    const double width = std::min(wall.width * 0.7, 0.85 * static_cast<double>(building.sign.size()) + 1.2);
    const double middle = wall.width / 2.0;
    const Color board = kBoards.at(building.sign.size() % kBoards.size());
    mesh.color(lit(board, wall.normal), 0.5);
    addRectangle(mesh, wall, middle - width / 2.0, z - 0.6, middle + width / 2.0, z + 0.6);
    mesh.text(building.sign, {wall.at(middle, z), wall.along, {0.0, 0.0, 1.0}, 0.7, width - 0.5}, {250, 246, 232});
}

void addFlatRoof(Mesh &mesh, const Placement &place, const Building &building, double height, std::uint32_t seed) {
    if (mesh.eye().z <= height) {
        return;
    }
    const double x = building.width / 2.0;
    const double y = building.depth / 2.0;
    const Vec3 up = {0.0, 0.0, 1.0};
    const auto flat = [&](double inset, double z) {
        mesh.add({place.point(-x + inset, -y + inset, z), place.point(x - inset, -y + inset, z),
                  place.point(x - inset, y - inset, z), place.point(-x + inset, y - inset, z)});
    };
    mesh.color(lit(shade(building.color, 1.1), up));
    flat(0.0, height);
    mesh.color(lit({112, 112, 112}, up), 0.4);
    flat(0.35, height);
    mesh.color(lit({142, 140, 136}, up), 0.8);
    flat(0.75, height);
    Dice dice(seed);
    for (int i = 0; i < 3 && building.width > 9.0; ++i) {
        const double left = dice.between(-x + 1.5, x - 4.0);
        const double front = dice.between(-y + 1.5, std::max(-y + 1.6, y - 4.0));
        addBox(mesh, place, {{left, front, height}, {left + dice.between(1.2, 2.6), front + 1.4, height + 1.1}},
               {178, 180, 182}, 0.8);
    }
}

void addGable(Mesh &mesh, const Placement &place, const Building &building, double height) {
    constexpr Color kTiles = {112, 74, 62};
    const double x = building.width / 2.0;
    const double y = building.depth / 2.0;
    const double top = height + std::min(building.depth * 0.38, 6.0);
    const double over = 0.4;
    for (const double side : {-1.0, 1.0}) {
        const Vec3 slope = at(place.right * side, 0.0);
        mesh.color(lit(shade(building.color, 0.95), slope));
        if (side > 0.0) {
            mesh.face({place.point(x, -y, height), place.point(x, y, height), place.point(x, 0.0, top)});
        } else {
            mesh.face({place.point(-x, y, height), place.point(-x, -y, height), place.point(-x, 0.0, top)});
        }
    }
    for (const double side : {-1.0, 1.0}) {
        const Vec3 normal = unit(at(place.forward * (side * (top - height)), y));
        mesh.color(lit(kTiles, normal));
        const double eaves = height - over * 0.5;
        const Vec3 left = place.point(-x - over, side * (y + over), eaves);
        const Vec3 right = place.point(x + over, side * (y + over), eaves);
        const Vec3 ridgeLeft = place.point(-x - over, 0.0, top);
        const Vec3 ridgeRight = place.point(x + over, 0.0, top);
        if (side > 0.0) {
            mesh.face({right, left, ridgeLeft, ridgeRight});
        } else {
            mesh.face({left, right, ridgeRight, ridgeLeft});
        }
    }
}

} // namespace

Thing makeBuilding(const Building &building, const Vec3 &eye) {
    Thing thing(eye);
    const Placement place(building.at, building.bearing);
    const double height = building.floors * building.floorHeight + (building.roof == Roof::flat ? 0.9 : 0.0);
    const double x = building.width / 2.0;
    const double y = building.depth / 2.0;
    const auto seed = static_cast<std::uint32_t>(std::abs(building.at.x * 13.0 + building.at.y * 7.0) + 3.0);
    const std::vector<Vec2> outline = {place.ground(-x, -y), place.ground(x, -y), place.ground(x, y),
                                       place.ground(-x, y)};
    thing.footprint = Footprint(outline);
    struct Side {
        Vec2 left;
        Vec2 right;
        bool isFront;
    };
    const std::array<Side, 4> sides = {{{place.ground(x, y), place.ground(-x, y), true},
                                        {place.ground(-x, y), place.ground(-x, -y), false},
                                        {place.ground(-x, -y), place.ground(x, -y), false},
                                        {place.ground(x, -y), place.ground(x, y), false}}};
    for (std::size_t i = 0; i < sides.size(); ++i) {
        const Side &side = sides.at(i);
        const Vec2 along = side.right - side.left;
        const double width = length(along);
        const Vec2 normal = rightOf(along * (1.0 / width));
        if (dot(normal, Vec2{eye.x, eye.y} - side.left) <= 0.0) {
            continue;
        }
        const Wall wall = {at(side.left, 0.0), at(along * (1.0 / width), 0.0), at(normal, 0.0), width, height};
        addWall(thing.mesh, wall, building, side.isFront, seed + static_cast<std::uint32_t>(i));
        if (side.isFront && !building.sign.empty()) {
            addSign(thing.mesh, wall, building);
        }
    }
    if (building.roof == Roof::gable) {
        addGable(thing.mesh, place, building, height);
    } else {
        addFlatRoof(thing.mesh, place, building, height, seed);
    }
    thing.shadows.push_back(shadowOf(outline, 0.0, height));
    thing.enclose();
    return thing;
}

} // namespace panel
