// SPDX-License-Identifier: Apache-2.0
#include <climits>
#include <cmath>
#include <string>

#include "positioning_model.h"
#include "positioning_test.h"
#include "unit_conversion.h"

using namespace positioning;

namespace {

/** Velocity ranges of the three axes. */
struct Velocities : Row {
    Limits pan;
    Limits tilt;
    Limits zoom;
};

const Velocities kVelocities[] = {
    {{"FromZero"}, {0, 160000}, {0, 80000}, {0, 20}},    {{"FromSlow"}, {100, 160000}, {50, 80000}, {2, 20}},
    {{"SlowCamera"}, {1, 100}, {2, 50}, {1, 2}},         {{"Huge"}, {0, INT_MAX}, {INT_MIN, INT_MAX}, {1000, 16777259}},
    {{"Negative"}, {-5000, -100}, {-100, 0}, {-20, -2}}, {{"Inverted"}, {160000, 100}, {80000, 50}, {20, 2}},
    {{"Equal"}, {3000, 3000}, {0, 0}, {-7, -7}},
};

constexpr unsigned int kCeilingsToTry[] = {160000, 80000, 127, 1, 0, 0x7FFFFFFF};

using PositioningSpeedTest = ConnectedPositioningTest;

class PositioningVelocityRangeTest : public PositioningSpeedTest, public testing::WithParamInterface<Velocities> {};

INSTANTIATE_TEST_SUITE_P(Ranges, PositioningVelocityRangeTest, testing::ValuesIn(kVelocities), nameOf<Velocities>);

signed char code(int speed) {
    return static_cast<signed char>(speed);
}

std::string setLimits(const Limits &pan, const Limits &tilt, const Limits &zoom) {
    std::string arguments;
    for (const Limits &axis : {pan, tilt, zoom}) {
        arguments += arguments.empty() ? "1, " : ", 1, ";
        arguments += std::to_string(axis.min) + ", " + std::to_string(axis.max);
    }
    return calls::of(service::kSetSoftVelocities, arguments);
}

} // namespace

TEST_P(PositioningVelocityRangeTest, VelocityEndsAtTheCeiling) {
    const Velocities &held = GetParam();
    softVelocities(held.pan, held.tilt, held.zoom);
    for (const unsigned int ceiling : kCeilingsToTry) {
        const auto top = static_cast<int>(ceiling);
        core().clearRecord();
        for (int speed = -128; speed <= 127; ++speed) {
            SCOPED_TRACE(testing::Message() << "speed " << speed << ", ceiling " << ceiling);
            ASSERT_EQ(speedNTCIPToZorva(kPanAxis, code(speed), ceiling), model::velocity(speed, {held.pan.min, top}));
            ASSERT_EQ(speedNTCIPToZorva(kTiltAxis, code(speed), ceiling),
                      model::velocity(speed, {held.tilt.min, top / 2}));
            ASSERT_EQ(speedNTCIPToZorva(kZoomAxis, code(speed), ceiling), speed == 0 ? 0 : held.zoom.max);
            ASSERT_EQ(speedNTCIPToZorva(kNoAxis, code(speed), ceiling), 0);
        }
    }
}

TEST_P(PositioningVelocityRangeTest, SetsTheLimitsUnlessBothMaximaAreThere) {
    const Velocities &held = GetParam();
    softVelocities(held.pan, held.tilt, held.zoom);
    for (const unsigned int ceiling : kCeilingsToTry) {
        const auto top = static_cast<int>(ceiling);
        core().clearRecord();
        speedNTCIPToZorva(kPanAxis, 5, ceiling);
        std::vector<std::string> expected{calls::kGetSoftVelocities};
        if (held.pan.max != top || held.tilt.max != top / 2) {
            expected.push_back(setLimits({held.pan.min, top}, {held.tilt.min, top / 2}, held.zoom));
        }
        EXPECT_EQ(core().calls(), expected) << ceiling;
        EXPECT_THAT(core().logs(), IsEmpty()) << ceiling;
    }
}

TEST_P(PositioningVelocityRangeTest, FractionIsTheVelocityOverTheRange) {
    const Velocities &camera = GetParam();
    cameraVelocities(camera.pan, camera.tilt, camera.zoom);
    for (int speed = -128; speed <= 127; ++speed) {
        SCOPED_TRACE(speed);
        ASSERT_EQ(speedPercentage(kPanAxis, code(speed)), model::fraction(speed, camera.pan));
        ASSERT_EQ(speedPercentage(kTiltAxis, code(speed)), model::fraction(speed, camera.tilt));
        ASSERT_EQ(speedPercentage(kZoomAxis, code(speed)), model::fraction(speed, camera.zoom));
        ASSERT_EQ(speedPercentage(kNoAxis, code(speed)), 0.0F);
    }
}

TEST_F(PositioningSpeedTest, EitherMaximumOnItsOwnIsNotEnough) {
    struct Case {
        int panMax;
        int tiltMax;
        bool set;
    };
    const Case cases[] = {{160000, 80000, false}, {160000, 79999, true}, {159999, 80000, true}, {160000, 160000, true},
                          {80000, 40000, true},   {0, 0, true},          {-1, -1, true}};
    for (const Case &each : cases) {
        softVelocities(Ceilings{each.panMax, each.tiltMax});
        core().clearRecord();
        speedNTCIPToZorva(kPanAxis, 5, 160000);
        EXPECT_EQ(core().calls().size(), each.set ? 2U : 1U) << each.panMax << " " << each.tiltMax;
    }
}

TEST_F(PositioningSpeedTest, AnOddCeilingIsHalvedDownwards) {
    softVelocities(Ceilings{81, 40});
    speedNTCIPToZorva(kTiltAxis, 5, 81);
    EXPECT_THAT(core().calls(), ElementsAre(calls::kGetSoftVelocities));
    core().clearRecord();
    speedNTCIPToZorva(kTiltAxis, 5, 83);
    EXPECT_THAT(core().calls(), ElementsAre(calls::kGetSoftVelocities, calls::setSoftVelocities(83, 41)));
}

TEST_F(PositioningSpeedTest, SpeedZeroSetsTheLimitsAllTheSame) {
    for (const Axis axis : {kPanAxis, kTiltAxis, kZoomAxis, kNoAxis}) {
        core().clearRecord();
        EXPECT_EQ(speedNTCIPToZorva(axis, 0, 160000), 0) << axis;
        EXPECT_THAT(core().calls(), ElementsAre(calls::kGetSoftVelocities, calls::setSoftVelocities(160000, 80000)))
            << axis;
    }
}

TEST_F(PositioningSpeedTest, FlagsOfTheVelocityLimitsDoNotMatter) {
    softVelocities({100, 160000, false}, {50, 80000, false}, {2, 20, false});
    EXPECT_EQ(speedNTCIPToZorva(kPanAxis, 127, 160000), 160000);
    EXPECT_THAT(core().calls(), ElementsAre(calls::kGetSoftVelocities));
}

TEST_F(PositioningSpeedTest, FractionAsksOnceAndShowsTheZoomMinimumTwice) {
    for (const Axis axis : {kPanAxis, kTiltAxis, kZoomAxis, kNoAxis}) {
        core().clearRecord();
        speedPercentage(axis, 5);
        EXPECT_THAT(core().calls(), ElementsAre(calls::kGetCameraVelocities)) << axis;
        EXPECT_THAT(core().logs(),
                    ElementsAre(logs::notice("speedPercentage: get_implementation_velocity_limits, "
                                             "1024=pvmin,132096=pvmax,512=tvmin,66048=tvmax,4=zvmin,4=zvmax")))
            << axis;
    }
}

TEST_F(PositioningSpeedTest, FractionsHaveADefinedValueForAnyLimits) {
    for (const int min : {INT_MIN, -1, 0, INT_MAX}) {
        for (const int max : {INT_MIN, -1, 0, INT_MAX}) {
            const Limits limits{min, max};
            cameraVelocities(limits, limits, limits);
            for (const int speed : {-128, 0, 1, 127}) {
                EXPECT_EQ(speedPercentage(kTiltAxis, code(speed)), model::fraction(speed, limits))
                    << speed << " in " << min << " to " << max;
            }
        }
    }
}
