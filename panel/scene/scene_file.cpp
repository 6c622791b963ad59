// SPDX-License-Identifier: Apache-2.0
#include "scene_file.h"

#include <algorithm>

#include "json_text.h"
#include "scene_values.h"
#include "shipped_files.h"
#include "values.h"

namespace panel {

namespace {

using nlohmann::json;

template <typename Kind, std::size_t size>
using Names = std::array<std::pair<const char *, Kind>, size>;

constexpr Names<SurfaceKind, 7> kSurfaces = {{{"grass", SurfaceKind::grass},
                                              {"asphalt", SurfaceKind::asphalt},
                                              {"concrete", SurfaceKind::concrete},
                                              {"sidewalk", SurfaceKind::sidewalk},
                                              {"gravel", SurfaceKind::gravel},
                                              {"earth", SurfaceKind::earth},
                                              {"water", SurfaceKind::water}}};
constexpr Names<PaintColor, 3> kPaints = {
    {{"white", PaintColor::white}, {"yellow", PaintColor::yellow}, {"blue", PaintColor::blue}}};
constexpr Names<ArrowKind, 5> kArrows = {{{"through", ArrowKind::through},
                                          {"left", ArrowKind::left},
                                          {"right", ArrowKind::right},
                                          {"throughLeft", ArrowKind::throughLeft},
                                          {"throughRight", ArrowKind::throughRight}}};
constexpr Names<Windows, 4> kWindows = {
    {{"grid", Windows::grid}, {"ribbon", Windows::ribbon}, {"shop", Windows::shop}, {"none", Windows::none}}};
constexpr Names<Roof, 2> kRoofs = {{{"flat", Roof::flat}, {"gable", Roof::gable}}};
constexpr Names<TreeKind, 3> kTrees = {
    {{"round", TreeKind::round}, {"conifer", TreeKind::conifer}, {"bush", TreeKind::bush}}};
constexpr Names<SignKind, 6> kSigns = {{{"street", SignKind::street},
                                        {"guide", SignKind::guide},
                                        {"billboard", SignKind::billboard},
                                        {"speed", SignKind::speed},
                                        {"stop", SignKind::stop},
                                        {"parking", SignKind::parking}}};
constexpr Names<VehicleKind, 5> kVehicles = {{{"car", VehicleKind::car},
                                              {"suv", VehicleKind::suv},
                                              {"van", VehicleKind::van},
                                              {"truck", VehicleKind::truck},
                                              {"bus", VehicleKind::bus}}};

constexpr Range kFloors = {1.0, 100.0};
constexpr Range kFloorHeight = {2.0, 20.0};
constexpr Range kBuildingSide = {1.0, 500.0};
constexpr Range kTreeHeight = {0.3, 60.0};
constexpr Range kPoleHeight = {0.5, 60.0};
constexpr Range kArm = {0.0, 40.0};
constexpr Range kSpeed = {0.5, 50.0};
constexpr int kMostNumber = 32;

Surface readSurface(const SceneObject &object) {
    return {object.kind("kind", kSurfaces), object.points("points", 3)};
}

Line readLine(const SceneObject &object) {
    constexpr Range kLineWidth = {0.02, 5.0};
    Line line;
    line.points = object.points("points", 2);
    line.width = object.number("width", kLineWidth, line.width);
    line.dash = object.number("dash", kLength, 0.0);
    line.gap = object.number("gap", kLength, line.dash);
    line.color = object.kind("color", kPaints, std::optional(line.color));
    if (line.dash > 0.0 && line.dash + line.gap < 0.5) {
        object.reader().fail("dash", "dash and gap: expected at least 0.5 together");
    }
    return line;
}

Crosswalk readCrosswalk(const SceneObject &object) {
    constexpr Range kCrosswalkWidth = {0.5, 20.0};
    return {object.point("from"), object.point("to"), object.number("width", kCrosswalkWidth, 3.0)};
}

Arrow readArrow(const SceneObject &object) {
    return {object.point("at"), object.number("bearing", kDegrees), object.kind("kind", kArrows)};
}

PaintedText readPaintedText(const SceneObject &object) {
    constexpr Range kLetter = {0.2, 20.0};
    return {object.point("at"), object.number("bearing", kDegrees), object.number("height", kLetter, 2.5),
            object.text("text")};
}

Building readBuilding(const SceneObject &object) {
    Building building;
    building.at = object.point("at");
    building.width = object.number("width", kBuildingSide);
    building.depth = object.number("depth", kBuildingSide);
    building.bearing = object.number("bearing", kDegrees, 0.0);
    building.floors = object.number("floors", kFloors, building.floors);
    building.floorHeight = object.number("floorHeight", kFloorHeight, building.floorHeight);
    building.color = object.color("color");
    building.windows = object.kind("windows", kWindows, std::optional(building.windows));
    building.roof = object.kind("roof", kRoofs, std::optional(building.roof));
    building.sign = object.optionalText("sign");
    return building;
}

Tree readTree(const SceneObject &object) {
    Tree tree;
    tree.at = object.point("at");
    tree.height = object.number("height", kTreeHeight, tree.height);
    tree.kind = object.kind("kind", kTrees, std::optional(tree.kind));
    return tree;
}

StreetLight readStreetLight(const SceneObject &object) {
    StreetLight light;
    light.at = object.point("at");
    light.height = object.number("height", kPoleHeight, light.height);
    light.bearing = object.number("bearing", kDegrees, 0.0);
    light.arm = object.number("arm", kArm, light.arm);
    light.relay = object.integer("relay", 1, kMostNumber);
    return light;
}

SignalHead readSignalHead(const SceneObject &object) {
    return {object.number("offset", kArm, 0.0), object.number("bearing", kDegrees), object.text("group"),
            object.flag("arrow", false)};
}

/** Reads the list of a key. @param keys  the permitted keys of an element */
template <typename Element>
std::vector<Element> readList(const SceneObject &object, const std::string &key, const std::vector<std::string> &keys,
                              Element (*read)(const SceneObject &), std::size_t most = kMostElements) {
    std::vector<Element> elements;
    object.forEach(key, most, [&](const json &value, const std::string &path) {
        elements.push_back(read(SceneObject(value, path, keys)));
    });
    return elements;
}

SignalPole readSignalPole(const SceneObject &object) {
    SignalPole pole;
    pole.at = object.point("at");
    pole.height = object.number("height", kPoleHeight, pole.height);
    pole.bearing = object.number("bearing", kDegrees, 0.0);
    pole.arm = object.number("arm", kArm, 0.0);
    pole.heads =
        readList<SignalHead>(object, "heads", {"offset", "bearing", "group", "arrow"}, readSignalHead, kMostWays);
    pole.street = object.optionalText("street");
    return pole;
}

SignalStep readSignalStep(const SceneObject &object) {
    SignalStep step;
    step.green = object.texts("green");
    step.seconds = object.number("seconds", kSeconds, step.seconds);
    step.yellow = object.number("yellow", kSeconds, step.yellow);
    step.red = object.number("red", kSeconds, step.red);
    return step;
}

Sign readSign(const SceneObject &object) {
    Sign sign;
    sign.at = object.point("at");
    sign.height = object.number("height", kPoleHeight, sign.height);
    sign.bearing = object.number("bearing", kDegrees);
    sign.kind = object.kind("kind", kSigns);
    sign.text = object.optionalText("text");
    sign.width = object.number("width", kSize, sign.width);
    return sign;
}

Parked readParked(const SceneObject &object) {
    return {object.point("at"), object.number("bearing", kDegrees),
            object.kind("kind", kVehicles, std::optional(VehicleKind::car)), object.color("color")};
}

struct Way {
    std::vector<Vec2> points;
};

Way readWay(const SceneObject &object) {
    return {object.points("points", 1)};
}

Lane readLane(const SceneObject &object) {
    Lane lane;
    lane.points = object.points("points", 2);
    for (Way &way : readList<Way>(object, "ways", {"points"}, readWay, kMostWays)) {
        lane.ways.push_back(std::move(way.points));
    }
    lane.group = object.optionalText("group");
    lane.speed = object.number("speed", kSpeed, lane.speed);
    lane.every = object.number("every", kSeconds, lane.every);
    return lane;
}

Walk readWalk(const SceneObject &object) {
    return {object.points("points", 2), object.optionalText("group"), object.number("every", kSeconds, 20.0)};
}

Cabinet readCabinet(const SceneObject &object) {
    return {object.point("at"), object.number("bearing", kDegrees), object.integer("input", 1, kMostNumber)};
}

Lamp readLamp(const SceneObject &object) {
    return {object.point("at"), object.number("height", kPoleHeight, 3.0), object.integer("relay", 1, kMostNumber)};
}

Beacon readBeacon(const SceneObject &object) {
    Beacon beacon;
    beacon.bearing = object.number("bearing", kDegrees);
    beacon.distance = object.number("distance", kSize);
    beacon.height = object.number("height", kPoleHeight);
    beacon.size = object.number("size", kSize, beacon.size);
    beacon.color = object.color("color");
    beacon.label = object.optionalText("label");
    return beacon;
}

Mount readMount(const SceneObject &file) {
    const SceneObject object(file.reader().required("camera", "an object"), "camera", {"height", "bearing", "tilt"});
    constexpr Range kMountHeight = {2.0, 200.0};
    constexpr Range kTilt = {-90.0, 90.0};
    return {object.number("height", kMountHeight), object.number("bearing", kDegrees, 0.0),
            object.number("tilt", kTilt, 0.0)};
}

Skyline readSkyline(const SceneObject &file) {
    Skyline skyline;
    if (file.has("skyline")) {
        const SceneObject object(file.reader().required("skyline", "an object"), "skyline", {"seed", "density"});
        constexpr Range kDensity = {0.0, 3.0};
        skyline.seed = object.integer("seed", 0, 1000000).value_or(skyline.seed);
        skyline.density = object.number("density", kDensity, skyline.density);
    }
    return skyline;
}

void readGround(const SceneObject &file, Scene &scene) {
    scene.ground = file.kind("ground", kSurfaces, std::optional(SurfaceKind::grass));
    scene.surfaces = readList<Surface>(file, "surfaces", {"kind", "points"}, readSurface);
    scene.lines = readList<Line>(file, "lines", {"points", "width", "dash", "gap", "color"}, readLine);
    scene.crosswalks = readList<Crosswalk>(file, "crosswalks", {"from", "to", "width"}, readCrosswalk);
    scene.arrows = readList<Arrow>(file, "arrows", {"at", "bearing", "kind"}, readArrow);
    scene.paintedTexts =
        readList<PaintedText>(file, "paintedTexts", {"at", "bearing", "height", "text"}, readPaintedText);
}

void readObjects(const SceneObject &file, Scene &scene) {
    scene.buildings = readList<Building>(
        file, "buildings",
        {"at", "width", "depth", "bearing", "floors", "floorHeight", "color", "windows", "roof", "sign"}, readBuilding,
        kMostBuildings);
    scene.trees = readList<Tree>(file, "trees", {"at", "height", "kind"}, readTree);
    scene.streetLights =
        readList<StreetLight>(file, "streetLights", {"at", "height", "bearing", "arm", "relay"}, readStreetLight);
    scene.signalPoles = readList<SignalPole>(file, "signalPoles", {"at", "height", "bearing", "arm", "heads", "street"},
                                             readSignalPole);
    scene.signs = readList<Sign>(file, "signs", {"at", "height", "bearing", "kind", "text", "width"}, readSign);
    scene.parked = readList<Parked>(file, "parked", {"at", "bearing", "kind", "color"}, readParked);
    scene.cabinets = readList<Cabinet>(file, "cabinets", {"at", "bearing", "input"}, readCabinet);
    scene.lamps = readList<Lamp>(file, "lamps", {"at", "height", "relay"}, readLamp);
    scene.beacons =
        readList<Beacon>(file, "beacons", {"bearing", "distance", "height", "size", "color", "label"}, readBeacon);
}

bool isKnownGroup(const Scene &scene, const std::string &group) {
    return std::any_of(scene.signalCycle.begin(), scene.signalCycle.end(), [&](const SignalStep &step) {
        return std::find(step.green.begin(), step.green.end(), group) != step.green.end();
    });
}

void checkGroup(const Scene &scene, const std::string &path, const std::string &group) {
    if (!group.empty() && !isKnownGroup(scene, group)) {
        throw camera::JsonTextError(
            camera::toString({path, "no step of signalCycle has the group " + camera::shown(group)}));
    }
}

void readTraffic(const SceneObject &file, Scene &scene) {
    scene.signalCycle =
        readList<SignalStep>(file, "signalCycle", {"green", "seconds", "yellow", "red"}, readSignalStep);
    scene.lanes = readList<Lane>(file, "lanes", {"points", "ways", "group", "speed", "every"}, readLane, kMostWays);
    scene.walks = readList<Walk>(file, "walks", {"points", "group", "every"}, readWalk, kMostWays);
    for (std::size_t i = 0; i < scene.lanes.size(); ++i) {
        checkGroup(scene, "lanes[" + std::to_string(i) + "].group", scene.lanes[i].group);
    }
    for (std::size_t i = 0; i < scene.walks.size(); ++i) {
        checkGroup(scene, "walks[" + std::to_string(i) + "].group", scene.walks[i].group);
    }
    for (std::size_t i = 0; i < scene.signalPoles.size(); ++i) {
        for (const SignalHead &head : scene.signalPoles[i].heads) {
            checkGroup(scene, "signalPoles[" + std::to_string(i) + "].heads", head.group);
        }
    }
}

/** Checks the number of elements of all lists. */
void checkSize(const camera::ObjectReader &file, const json &values) {
    std::size_t count = 0;
    for (const auto &item : values.items()) {
        count += item.value().is_array() ? item.value().size() : 0;
    }
    if (count > kMostElements) {
        file.fail("", "expected at most " + std::to_string(kMostElements) + " elements in all lists, found " +
                          std::to_string(count));
    }
}

Scene readFile(const json &values) {
    const SceneObject file(values, "",
                           {"name",         "description", "camera",      "skyline",      "ground",    "surfaces",
                            "lines",        "crosswalks",  "arrows",      "paintedTexts", "buildings", "trees",
                            "streetLights", "signalPoles", "signalCycle", "signs",        "parked",    "lanes",
                            "walks",        "cabinets",    "lamps",       "beacons"});
    Scene scene;
    scene.name = file.text("name");
    scene.description = file.optionalText("description");
    scene.camera = readMount(file);
    scene.skyline = readSkyline(file);
    readGround(file, scene);
    readObjects(file, scene);
    readTraffic(file, scene);
    checkSize(file.reader(), values);
    return scene;
}

} // namespace

Scene parseScene(const std::string &text, const std::string &fileName) {
    try {
        return readFile(camera::parseJsonText(text));
    } catch (const camera::JsonTextError &error) {
        throw camera::FileError(fileName + ": " + error.what());
    }
}

Scene readScene(const std::string &nameOrPath) {
    const std::string path = camera::findNamedFile("scene", nameOrPath, camera::shippedDirectory("scenes"));
    return parseScene(camera::readTextFile(path), path);
}

} // namespace panel
