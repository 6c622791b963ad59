// SPDX-License-Identifier: Apache-2.0
// Pictures of the shipped scene, measured as a person would judge them.
#include <gmock/gmock.h>

#include "picture_measures.h"
#include "scene_file.h"

using namespace panel;
using testing::Gt;

namespace {

const PictureTime kTime{std::chrono::seconds(1790000000)};

Scene shippedScene() {
    return readScene(QUARNSNMP_SCENES "/intersection.json");
}

/** Pictures of the shipped scene; made once, because the preparation takes longer than a picture. */
class PictureTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        scene_ = new Scene(shippedScene());
        picture_ = new Picture(*scene_);
    }
    static void TearDownTestSuite() {
        delete picture_;
        delete scene_;
    }

    static Photograph take(const View &view) {
        FrameSettings settings;
        settings.stamp = false;
        return photograph(picture_->draw(view, settings, kTime));
    }

    static View towards(double bearing, double zoom = 1.0) {
        View view;
        view.bearing = bearing;
        view.zoom = zoom;
        return view;
    }

    static const Scene *scene_;
    static Picture *picture_;
};

const Scene *PictureTest::scene_ = nullptr;
Picture *PictureTest::picture_ = nullptr;

TEST_F(PictureTest, ABeaconMarksAtLeastEach30Degrees) {
    ASSERT_GE(scene_->beacons.size(), 12U);
    for (std::size_t i = 0; i < scene_->beacons.size(); ++i) {
        EXPECT_EQ(30.0 * static_cast<double>(i), scene_->beacons[i].bearing);
        EXPECT_EQ(scene_->camera.height, scene_->beacons[i].height);
    }
}

TEST_F(PictureTest, TheBeaconOfTheBearingIsInTheCentre) {
    for (const double zoom : {1.0, 20.0}) {
        for (const Beacon &beacon : scene_->beacons) {
            SCOPED_TRACE(beacon.label + " at " + std::to_string(zoom));
            const std::optional<Vec2> found = findBeacon(take(towards(beacon.bearing, zoom)), beacon.color);
            ASSERT_TRUE(found);
            EXPECT_NEAR(640.0, found->x, 2.0);
            EXPECT_NEAR(360.0, found->y, 2.0);
        }
    }
}

TEST_F(PictureTest, ABeaconToTheRightIsRightOfTheCentre) {
    const std::optional<Vec2> found = findBeacon(take(towards(80.0)), scene_->beacons[3].color);
    ASSERT_TRUE(found);
    EXPECT_NEAR(640.0 + 640.0 / std::tan(radians(30.0)) * std::tan(radians(10.0)), found->x, 2.0);
}

TEST_F(PictureTest, TwiceTheZoomDoublesTheDistanceBetweenBeacons) {
    const auto distance = [&](double zoom) {
        View view = towards(195.0, zoom);
        view.fieldOfView = 75.0;
        const Photograph picture = take(view);
        const std::optional<Vec2> left = findBeacon(picture, scene_->beacons[6].color);
        const std::optional<Vec2> right = findBeacon(picture, scene_->beacons[7].color);
        return left && right ? right->x - left->x : 0.0;
    };
    const double single = distance(1.0);
    EXPECT_GT(single, 300.0);
    EXPECT_NEAR(2.0 * single, distance(2.0), 4.0);
}

TEST_F(PictureTest, TiltMovesTheHorizon) {
    View view = towards(90.0);
    view.tilt = -10.0;
    const std::optional<Vec2> found = findBeacon(take(view), scene_->beacons[3].color);
    ASSERT_TRUE(found);
    EXPECT_NEAR(360.0 - 640.0 / std::tan(radians(30.0)) * std::tan(radians(10.0)), found->y, 2.0);
}

TEST_F(PictureTest, SharpnessFallsWithTheDefocus) {
    double before = 1e9;
    for (const double radius : {0.0, 0.6, 1.2, 2.0, 4.0, 8.0, 16.0, 40.0}) {
        View view = towards(8.0);
        view.tilt = -12.0;
        view.defocus = radius / 1280.0;
        const double sharpness = sharpnessOf(take(view));
        EXPECT_LT(sharpness, before) << radius;
        before = sharpness;
    }
}

TEST_F(PictureTest, BrightnessRisesWithTheExposure) {
    double before = -1.0;
    for (const double exposure : {0.0, 0.07, 0.2, 0.5, 1.0, 2.0, 4.0, 8.0}) {
        View view = towards(8.0);
        view.tilt = -12.0;
        view.exposure = exposure;
        const double brightness = brightnessOf(take(view));
        EXPECT_THAT(brightness, Gt(before)) << exposure;
        before = brightness;
    }
}

TEST_F(PictureTest, EveryDirectionCanBeDrawn) {
    for (const double zoom : {1.0, 30.0, 360.0}) {
        for (double tilt = -90.0; tilt <= 20.0; tilt += 22.0) {
            for (double bearing = 0.0; bearing < 360.0; bearing += 40.0) {
                View view = towards(bearing, zoom);
                view.tilt = tilt;
                EXPECT_THAT(brightnessOf(take(view)), testing::AllOf(Gt(20.0), testing::Lt(250.0)))
                    << bearing << " " << tilt << " " << zoom;
            }
        }
    }
}

TEST_F(PictureTest, APictureOfACameraAtRestIsTheSameAsAnyOther) {
    const std::tuple<double, double, double> directions[] = {
        {8.0, -12.0, 1.0}, {180.0, -10.0, 1.0}, {60.0, -30.0, 2.0}, {10.0, -5.0, 9.0}, {0.0, -90.0, 1.0}};
    for (const auto &[bearing, tilt, zoom] : directions) {
        View view = towards(bearing, zoom);
        view.tilt = tilt;
        const Photograph turning = take(view);
        for (int picture = 0; picture < 2; ++picture) {
            const Photograph resting = take(view);
            std::size_t differences = 0;
            for (std::size_t i = 0; i < turning.pixels.size(); ++i) {
                differences += std::abs(turning.pixels[i] - resting.pixels[i]) > 2 ? 1U : 0U;
            }
            // Cairo rounds differently where a part cuts an edge.
            EXPECT_LT(differences, turning.pixels.size() / 10000) << bearing << " " << tilt << " " << zoom;
        }
    }
}

TEST_F(PictureTest, WhatAStreamKeepsFromThePictureBeforeIsUpToDate) {
    const auto different = [](const Photograph &a, const Photograph &b) {
        constexpr int kVisible = 40;
        std::size_t count = 0;
        for (std::size_t i = 0; i < a.pixels.size(); ++i) {
            count += std::abs(a.pixels[i] - b.pixels[i]) > kVisible ? 1U : 0U;
        }
        return count;
    };
    View view = towards(8.0);
    view.tilt = -12.0;
    view.name = "dome";
    const FrameSettings settings;
    // Vehicles drive, turn and stop behind the line of the direction, lights blink, and the clock goes on.
    PictureTime time = kTime;
    for (int picture = 1; picture <= 120; ++picture) {
        time += std::chrono::milliseconds(133);
        const std::string jpeg = picture_->drawJpeg(view, settings, time);
        if (picture % 24 == 0) {
            picture_->draw(towards(200.0), settings, time);
            EXPECT_LT(different(decodeJpeg(jpeg), decodeJpeg(picture_->drawJpeg(view, settings, time))), 200U)
                << picture;
        }
    }
    const std::string sharp = picture_->drawJpeg(view, settings, time);
    picture_->drawNoSignal("dome", "the camera restarts", settings, time);
    EXPECT_EQ(0U, different(decodeJpeg(sharp), decodeJpeg(picture_->drawJpeg(view, settings, time))));
    view.defocus = 0.01;
    picture_->drawJpeg(view, settings, time);
    view.defocus = 0.0;
    EXPECT_EQ(0U, different(decodeJpeg(sharp), decodeJpeg(picture_->drawJpeg(view, settings, time))));
}

TEST_F(PictureTest, AnInputOpensTheCabinetAndARelayLightsTheLamp) {
    const auto changedPixels = [&](const Vec2 &place, double height, const View &changed) {
        View view = changed;
        view.bearing = bearingOf(place);
        view.tilt = -std::atan2(scene_->camera.height - height, length(place)) * 180.0 / kPi;
        view.zoom = 4.0;
        const Photograph with = take(view);
        view.inputs.clear();
        view.relays.clear();
        const Photograph without = take(view);
        std::size_t changes = 0;
        for (std::size_t i = 0; i < with.pixels.size(); ++i) {
            changes += with.pixels[i] != without.pixels[i] ? 1U : 0U;
        }
        return changes;
    };
    View open;
    open.inputs = {true};
    EXPECT_GT(changedPixels(scene_->cabinets.at(0).at, 1.0, open), 5000U);
    View on;
    on.relays = {true};
    EXPECT_GT(changedPixels(scene_->lamps.at(0).at, scene_->lamps.at(0).height, on), 1000U);
}

TEST_F(PictureTest, AJpegShowsThePictureWithItsStamp) {
    View view = towards(90.0);
    view.name = "dome";
    const FrameSettings settings;
    const Photograph jpeg = decodeJpeg(picture_->drawJpeg(view, settings, kTime));
    EXPECT_EQ(1280, jpeg.width);
    EXPECT_EQ(720, jpeg.height);
    EXPECT_TRUE(findBeacon(jpeg, scene_->beacons[3].color));
    const Photograph plain = take(view);
    int differences = 0;
    for (int x = 0; x < 200; ++x) {
        differences += std::abs(jpeg.at(x, 30).green - plain.at(x, 30).green) > 60 ? 1 : 0;
    }
    EXPECT_GT(differences, 5);
}

TEST_F(PictureTest, SizesAreChecked) {
    for (const auto &[width, height] : {std::pair(63, 720), std::pair(1280, 5000), std::pair(0, -1)}) {
        FrameSettings settings;
        settings.width = width;
        settings.height = height;
        EXPECT_THROW(picture_->draw({}, settings, kTime), std::runtime_error);
    }
}

TEST_F(PictureTest, NoSignalIsAPictureToo) {
    const Photograph picture = decodeJpeg(picture_->drawNoSignal("dome", "the camera restarts", {}, kTime));
    EXPECT_EQ(1280, picture.width);
    EXPECT_FALSE(findBeacon(picture, scene_->beacons[0].color));
}

} // namespace
