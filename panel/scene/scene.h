// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Scene: what stands and moves around the camera. The camera is above the origin.
 */
#ifndef QUARNSNMP_PANEL_SCENE_H
#define QUARNSNMP_PANEL_SCENE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "geometry.h"

namespace panel {

struct Color {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
};

/** Place and lens of the camera. */
struct Mount {
    double height = 10.0; ///< above the ground
    double bearing = 0.0; ///< of a camera without pan and tilt
    double tilt = 0.0;    ///< likewise
};

enum class SurfaceKind : std::uint8_t { grass, asphalt, concrete, sidewalk, gravel, earth, water };

/** Flat area on the ground; later ones cover earlier ones. */
struct Surface {
    SurfaceKind kind = SurfaceKind::grass;
    std::vector<Vec2> points;
};

enum class PaintColor : std::uint8_t { white, yellow, blue };

/** Painted line on the ground. */
struct Line {
    std::vector<Vec2> points;
    double width = 0.15;
    double dash = 0.0; ///< length of a dash; 0 for a solid line
    double gap = 0.0;
    PaintColor color = PaintColor::white;
};

/** Zebra crossing from kerb to kerb. */
struct Crosswalk {
    Vec2 from;
    Vec2 to;
    double width = 3.0;
};

enum class ArrowKind : std::uint8_t { through, left, right, throughLeft, throughRight };

/** Painted arrow for a direction of travel. */
struct Arrow {
    Vec2 at;
    double bearing = 0.0;
    ArrowKind kind = ArrowKind::through;
};

/** Painted word, legible in a direction of travel. */
struct PaintedText {
    Vec2 at;
    double bearing = 0.0;
    double height = 2.5; ///< of a letter along the road
    std::string text;
};

enum class Windows : std::uint8_t { grid, ribbon, shop, none };
enum class Roof : std::uint8_t { flat, gable };

/** Building with a rectangular floor plan. */
struct Building {
    Vec2 at; ///< centre
    double width = 10.0;
    double depth = 10.0;
    double bearing = 0.0; ///< direction of its front
    double floors = 2.0;
    double floorHeight = 3.3;
    Color color;
    Windows windows = Windows::grid;
    Roof roof = Roof::flat;
    std::string sign; ///< above the ground floor of the front
};

enum class TreeKind : std::uint8_t { round, conifer, bush };

struct Tree {
    Vec2 at;
    double height = 8.0;
    TreeKind kind = TreeKind::round;
};

/** Street light with an arm; `relay` switches it, otherwise it is off by day. */
struct StreetLight {
    Vec2 at;
    double height = 9.0;
    double bearing = 0.0; ///< direction of the arm
    double arm = 2.0;
    std::optional<int> relay;
};

/** Signal head on a pole or its arm. */
struct SignalHead {
    double offset = 0.0;  ///< along the arm from the pole
    double bearing = 0.0; ///< direction in which its lights shine
    std::string group;
    bool arrow = false; ///< left arrows
};

/** Pole with a mast arm and signal heads. */
struct SignalPole {
    Vec2 at;
    double height = 6.0;
    double bearing = 0.0; ///< direction of the arm
    double arm = 0.0;     ///< length; 0 for a post without an arm
    std::vector<SignalHead> heads;
    std::string street; ///< name on a sign on the arm
};

/** Step of the signal cycle: its groups are green, then yellow, then red. */
struct SignalStep {
    std::vector<std::string> green;
    double seconds = 20.0;
    double yellow = 3.5;
    double red = 1.5;
};

enum class SignKind : std::uint8_t { street, guide, billboard, speed, stop, parking };

struct Sign {
    Vec2 at;
    double height = 2.8;  ///< of its centre
    double bearing = 0.0; ///< direction that it faces
    SignKind kind = SignKind::street;
    std::string text;
    double width = 1.6;
};

enum class VehicleKind : std::uint8_t { car, suv, van, truck, bus };

/** Parked vehicle. */
struct Parked {
    Vec2 at;
    double bearing = 0.0;
    VehicleKind kind = VehicleKind::car;
    Color color;
};

/** Lane of moving vehicles up to a stop line, and the ways beyond it. */
struct Lane {
    std::vector<Vec2> points;
    std::vector<std::vector<Vec2>> ways; ///< each vehicle takes one of them
    std::string group;                   ///< signal at the end of `points`; empty without one
    double speed = 13.0;                 ///< in metres per second
    double every = 8.0;                  ///< mean time between vehicles in seconds
};

/** Way of pedestrians. */
struct Walk {
    std::vector<Vec2> points;
    std::string group; ///< they start while it is green; empty for any time
    double every = 20.0;
};

/** Cabinet whose door opens with an alarm input. */
struct Cabinet {
    Vec2 at;
    double bearing = 0.0; ///< direction of its door
    std::optional<int> input;
};

/** Lamp that shows the state of a relay. */
struct Lamp {
    Vec2 at;
    double height = 3.0;
    std::optional<int> relay;
};

/** Numbered coloured disc that tells the bearing. */
struct Beacon {
    double bearing = 0.0;
    double distance = 40.0;
    double height = 10.0; ///< of its centre
    double size = 1.2;    ///< diameter
    Color color;
    std::string label;
};

/** Distant buildings and hills on the horizon. */
struct Skyline {
    int seed = 1;
    double density = 1.0;
};

struct Scene {
    std::string name;
    std::string description;
    Mount camera;
    Skyline skyline;
    SurfaceKind ground = SurfaceKind::grass;
    std::vector<Surface> surfaces;
    std::vector<Line> lines;
    std::vector<Crosswalk> crosswalks;
    std::vector<Arrow> arrows;
    std::vector<PaintedText> paintedTexts;
    std::vector<Building> buildings;
    std::vector<Tree> trees;
    std::vector<StreetLight> streetLights;
    std::vector<SignalPole> signalPoles;
    std::vector<SignalStep> signalCycle;
    std::vector<Sign> signs;
    std::vector<Parked> parked;
    std::vector<Lane> lanes;
    std::vector<Walk> walks;
    std::vector<Cabinet> cabinets;
    std::vector<Lamp> lamps;
    std::vector<Beacon> beacons;
};

} // namespace panel

#endif
