// SPDX-License-Identifier: Apache-2.0
// What SNMP does to the picture: commands through a real agent to a simulated camera, and snapshots of its panel.
#include <cmath>

#include <gmock/gmock.h>

#include "agent.h"
#include "camera_events.h"
#include "http_client.h"
#include "object_oids.h"
#include "picture_measures.h"
#include "position_commands.h"
#include "running_panel.h"
#include "scene_file.h"

namespace harness {
namespace {

using namespace position_commands;
using namespace std::string_literals;
using nlohmann::json;
using panel::Photograph;
using panel::Vec2;

constexpr double kPixels = 2.0; ///< tolerance of places
const Vec2 kCentre = {640.0, 360.0};

/** A drive: the object that commands it, and the event of its stop. */
struct Drive {
    const char *object;
    json stopped;
};

const Drive kPan = {oids::positionPan, {{"event", "move_stopped"}, {"target", "positioning/1"}, {"axis", "pan"}}};
const Drive kTilt = {oids::positionTilt, {{"event", "move_stopped"}, {"target", "positioning/1"}, {"axis", "tilt"}}};
const Drive kZoom = {oids::positionZoomLens,
                     {{"event", "move_stopped"}, {"target", "positioning/1"}, {"axis", "zoom"}}};
const Drive kZoomStepper = {oids::positionZoomLens, {{"event", "move_stopped"}, {"target", "zoom_stepper/1"}}};
const Drive kFocus = {oids::positionFocusLens, {{"event", "move_stopped"}, {"target", "lens_focus/1"}}};
const Drive kFocusStepper = {oids::positionFocusLens, {{"event", "move_stopped"}, {"target", "focus_stepper/1"}}};
const Drive kIris = {oids::positionIrisLens, {{"event", "move_stopped"}, {"target", "iris/1"}}};

struct Command {
    const Drive &drive;
    std::string octets;
};

/** A camera that can be moved over SNMP only, and its pictures over HTTP. */
class Sight {
public:
    /** @param scene  name or file of the scene */
    Sight(const std::string &camera, const std::string &scene)
        : camera_(camera), agent_(withModule(camera_.directory())), manager_(agent_.peer()), events_(camera_),
          panel_({"--camera", camera_.directory(), "--agent", agent_.peer(), "--scene", scene}) {}

    /** Sends commands in one request, and waits until each of their drives has come to rest. */
    void move(const std::vector<Command> &commands) {
        std::vector<Varbind> varbinds;
        std::vector<std::size_t> stops;
        for (const Command &command : commands) {
            varbinds.push_back(octetString(command.drive.object, command.octets));
            stops.push_back(events_.matching(command.drive.stopped).size());
        }
        const Result result = manager_.set(varbinds);
        ASSERT_TRUE(result.ok()) << result;
        for (std::size_t i = 0; i < commands.size(); ++i) {
            const json &stopped = commands[i].drive.stopped;
            ASSERT_TRUE(eventually([&] { return events_.matching(stopped).size() > stops[i]; })) << stopped;
        }
    }

    /** Switches focus and iris to manual. */
    void takeTheLens() {
        const Result result = manager_.set({octetString(oids::systemLensFeatureControl, "\xC0\x00"s)});
        ASSERT_TRUE(result.ok()) << result;
    }

    Photograph photograph() const {
        return panel::decodeJpeg(httpGet(panel_.port(), "/snapshot.jpg").body);
    }

private:
    Camera camera_;
    Agent agent_;
    Manager manager_;
    CameraEvents events_;
    RunningPanel panel_;
};

/** Position of an axis in a command: hundredths of a degree on the full circle. */
std::string toDegrees(double degrees) {
    constexpr int kCircle = 36000;
    return absolute(127, (static_cast<int>(std::lround(degrees * 100.0)) + kCircle) % kCircle);
}

/** Position of a drive of the lens in a command. @param share  of its range, from 0 to 1 */
std::string toShare(double share) {
    constexpr double kRange = 65535.0;
    return absolute(127, static_cast<int>(std::lround(share * kRange)));
}

/** Distance in pixels from the centre of the picture to a place. @param angle  to the axis of the lens, in degrees */
double offsetOf(double angle, double fieldOfView) {
    return kCentre.x / std::tan(panel::radians(fieldOfView / 2.0)) * std::tan(panel::radians(angle));
}

/** A scene without traffic: what changes in its picture comes from the camera. It has beacons around a fixed camera. */
constexpr const char *kRange = R"({
    "name": "range", "camera": {"height": 8, "bearing": 30, "tilt": 0},
    "surfaces": [{"kind": "asphalt", "points": [[-4, -200], [4, -200], [4, 200], [-4, 200]]}],
    "lines": [{"points": [[0, -200], [0, 200]], "dash": 3, "gap": 9}],
    "buildings": [{"at": [60, 60], "width": 20, "depth": 14, "floors": 4, "color": "#a8654f"}],
    "trees": [{"at": [9, 42]}, {"at": [44, 24], "height": 11}],
    "beacons": [{"bearing": 25, "distance": 50, "height": 8, "color": "#ff0048", "label": "025"},
                {"bearing": 30, "distance": 45, "height": 8, "color": "#f07a10", "label": "030"},
                {"bearing": 35, "distance": 50, "height": 8, "color": "#1068e0", "label": "035"}]})";

/** A lens of a shipped camera. */
struct Lens {
    const char *camera;
    const Drive &zoom;
    double twice;     ///< share of the zoom's range for a magnification of 2
    double fourTimes; ///< of 4
    const Drive &focus;
    double sharp; ///< share of the focus's range
};

class LensSightSlowTest : public testing::TestWithParam<Lens> {
protected:
    LensSightSlowTest() : sight_(GetParam().camera, files_.write("range.json", kRange)) {
        if (&GetParam().zoom == &kZoom) {
            sight_.move({{kPan, toDegrees(30.0)}});
        }
    }

    TemporaryDirectory files_;
    Sight sight_;
};

} // namespace

TEST(SightTest, TheBeaconIsWhereTheCameraLooks) {
    constexpr double kFieldOfView = 60.0;
    const std::vector<panel::Beacon> beacons = panel::readScene(QUARNSNMP_SCENES "/intersection.json").beacons;
    Sight dome("dome", "intersection");
    for (const auto &[bearing, tilt] :
         std::initializer_list<std::pair<double, double>>{{90, -8}, {210, 0}, {330, -14.5}, {0, 3}, {60, 0}}) {
        SCOPED_TRACE(std::to_string(bearing) + " " + std::to_string(tilt));
        ASSERT_NO_FATAL_FAILURE(dome.move({{kPan, toDegrees(bearing)}, {kTilt, toDegrees(tilt)}}));
        const auto beacon = static_cast<std::size_t>(bearing / 30.0);
        const std::optional<Vec2> found = findBeacon(dome.photograph(), beacons.at(beacon).color);
        ASSERT_TRUE(found);
        EXPECT_NEAR(found->x, kCentre.x, kPixels);
        EXPECT_NEAR(found->y, kCentre.y + offsetOf(tilt, kFieldOfView), kPixels);
    }
}

TEST_P(LensSightSlowTest, TwiceTheZoomDoublesTheDistanceOfBeacons) {
    const auto distance = [&] {
        const Photograph picture = sight_.photograph();
        const std::optional<Vec2> left = findBeacon(picture, {0xFF, 0x00, 0x48});
        const std::optional<Vec2> centre = findBeacon(picture, {0xF0, 0x7A, 0x10});
        const std::optional<Vec2> right = findBeacon(picture, {0x10, 0x68, 0xE0});
        EXPECT_TRUE(left && centre && right);
        if (!left || !centre || !right) {
            return 0.0;
        }
        EXPECT_NEAR(centre->x, kCentre.x, kPixels);
        EXPECT_NEAR(centre->y, kCentre.y, kPixels);
        return right->x - left->x;
    };
    const double single = distance();
    EXPECT_GT(single, 100.0);
    for (const auto &[share, factor] : {std::pair(GetParam().twice, 2.0), std::pair(GetParam().fourTimes, 4.0)}) {
        ASSERT_NO_FATAL_FAILURE(sight_.move({{GetParam().zoom, toShare(share)}}));
        EXPECT_NEAR(distance(), factor * single, factor * kPixels);
    }
}

TEST_P(LensSightSlowTest, DefocusLowersTheSharpness) {
    ASSERT_NO_FATAL_FAILURE(sight_.takeTheLens());
    const double sharp = sharpnessOf(sight_.photograph());
    double before = sharp;
    for (const double defocus : {0.05, 0.15, 0.4}) {
        ASSERT_NO_FATAL_FAILURE(sight_.move({{GetParam().focus, toShare(GetParam().sharp + defocus)}}));
        const double sharpness = sharpnessOf(sight_.photograph());
        EXPECT_LT(sharpness, 0.95 * before) << defocus;
        before = sharpness;
    }
    ASSERT_NO_FATAL_FAILURE(sight_.move({{GetParam().focus, toShare(GetParam().sharp)}}));
    EXPECT_NEAR(sharpnessOf(sight_.photograph()), sharp, 0.02 * sharp);
}

TEST(SightSlowTest, AnOpenerIrisBrightensThePicture) {
    const TemporaryDirectory files;
    for (const char *camera : {"dome", "twinfocus"}) {
        SCOPED_TRACE(camera);
        Sight sight(camera, files.write("range.json", kRange));
        ASSERT_NO_FATAL_FAILURE(sight.takeTheLens());
        double before = -1.0;
        for (const double opening : {0.0, 0.15, 0.3, 0.6, 1.0}) {
            ASSERT_NO_FATAL_FAILURE(sight.move({{kIris, toShare(opening)}}));
            const double brightness = brightnessOf(sight.photograph());
            EXPECT_GT(brightness, before + 2.0) << opening;
            before = brightness;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Shipped, LensSightSlowTest,
                         testing::Values(Lens{"dome", kZoom, 10.0 / 290.0, 30.0 / 290.0, kFocus, 0.5},
                                         Lens{"stepper", kZoomStepper, 1.0 / 21.0, 3.0 / 21.0, kFocusStepper, 0.3},
                                         Lens{"twinfocus", kZoomStepper, 1.0 / 11.0, 3.0 / 11.0, kFocus, 0.25}),
                         [](const auto &instance) { return std::string(instance.param.camera); });

} // namespace harness
