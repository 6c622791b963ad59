// SPDX-License-Identifier: Apache-2.0
#include <climits>
#include <string>

#include "positioning_model.h"
#include "positioning_test.h"
#include "unit_conversion.h"

using namespace positioning;

namespace {

using PositioningConversionTest = ConnectedPositioningTest;

/** Limits of the service, and those of them that apply to a zoom position. */
struct ZoomRange : Row {
    Limits soft;
    bool digital;
    int opticalMax;
    Limits counts;
};

const ZoomRange kZoomRanges[] = {
    {{"SoftLimits"}, {10, 300}, false, 200, {10, 300}},
    {{"SoftLimitsAndDigital"}, {10, 300}, true, 200, {10, 300}},
    {{"DigitalZoom"}, {10, 300, false}, true, 200, {10, 300}},
    {{"Optics"}, {10, 300, false}, false, 200, {10, 200}},
    {{"OpticsBeyondSoft"}, {10, 300, false}, false, 400, {10, 400}},
    {{"FinerThanNtcip"}, {1000, 1000000}, false, 1, {1000, 1000000}},
    {{"HugeLimits"}, {INT_MIN, INT_MAX}, false, 1, {INT_MIN, INT_MAX}},
    {{"BeyondSinglePrecision"}, {16777213, 16777300}, false, 1, {16777213, 16777300}},
    {{"NegativeLimits"}, {-300, -10}, false, 1, {-300, -10}},
    {{"InvertedLimits"}, {300, 10}, false, 1, {300, 10}},
    {{"EqualLimits"}, {77, 77}, false, 1, {77, 77}},
    {{"EqualToOptics"}, {77, 300, false}, false, 77, {77, 77}},
};

class PositioningZoomRangeTest : public PositioningConversionTest, public testing::WithParamInterface<ZoomRange> {
protected:
    void SetUp() override {
        PositioningConversionTest::SetUp();
        softZoom(GetParam().soft);
        digitalZoom(GetParam().digital);
        maxZoom(GetParam().opticalMax, 5, 2400);
    }
};

INSTANTIATE_TEST_SUITE_P(Ranges, PositioningZoomRangeTest, testing::ValuesIn(kZoomRanges), nameOf<ZoomRange>);

/** Clears the record now and then. It would otherwise grow to hundreds of megabytes. */
void forgetEvery(int period, int i) {
    if (i % period == 0) {
        scripted::core().clearRecord();
    }
}

} // namespace

TEST(PositioningPan, EveryAngleOfThreeCirclesIsAStepFromTheLast) {
    int expected = 0;
    for (int ntcip = -36000; ntcip < 72000; ++ntcip, expected = expected == 359990 ? 0 : expected + 10) {
        ASSERT_EQ(convertNTCIPToZorvaPan(ntcip), expected) << ntcip;
    }
    EXPECT_EQ(convertNTCIPToZorvaPan(-36001), -10) << "goes around the circle only once";
    EXPECT_EQ(convertNTCIPToZorvaPan(72000), 360000) << "goes around the circle only once";
}

TEST(PositioningPan, HasAResultForEveryInteger) {
    EXPECT_EQ(convertNTCIPToZorvaPan(INT_MAX / 10), 2147483640 - 360000);
    EXPECT_EQ(convertNTCIPToZorvaPan(INT_MIN / 10), -2147483640 + 360000);
    // The result beyond 32 bits is open. The undefined-behaviour sanitizer ends the test if there is none.
    for (const int ntcip : {INT_MAX / 10 + 1, INT_MIN / 10 - 1, INT_MAX, INT_MIN}) {
        const int result = convertNTCIPToZorvaPan(ntcip);
        EXPECT_LE(result, INT_MAX - 360000) << ntcip;
        EXPECT_GE(result, INT_MIN + 360000) << ntcip;
    }
}

TEST(PositioningPan, BackGoesToTheNearestHundredth) {
    EXPECT_EQ(convertZorvaToNTCIPPan(359994), 35999);
    EXPECT_EQ(convertZorvaToNTCIPPan(359995), 36000) << "not wrapped";
    int expected = 0;
    for (int zorva = 0; zorva <= 400000; ++zorva) {
        expected += zorva % 10 == 5 ? 1 : 0;
        ASSERT_EQ(convertZorvaToNTCIPPan(zorva), expected) << zorva;
    }
}

TEST(PositioningPan, BackCutsNegativeAnglesTowardsZero) {
    int expected = 0;
    for (int zorva = 4; zorva >= -400000; --zorva) {
        expected -= zorva < -5 && zorva % 10 == -5 ? 1 : 0;
        ASSERT_EQ(convertZorvaToNTCIPPan(zorva), expected) << zorva;
    }
    EXPECT_EQ(convertZorvaToNTCIPPan(INT_MIN), -214748364);
}

TEST(PositioningPan, BackHasAResultForEveryInteger) {
    EXPECT_EQ(convertZorvaToNTCIPPan(INT_MAX - 5), 214748364);
    for (const int zorva : {INT_MAX - 4, INT_MAX}) {
        EXPECT_LE(std::abs(convertZorvaToNTCIPPan(zorva)), 214748365) << zorva;
    }
}

TEST(PositioningTilt, IsFoldedIntoAHalfCircle) {
    EXPECT_EQ(convertNTCIPToZorvaTilt(0), 0);
    EXPECT_EQ(convertNTCIPToZorvaTilt(9000), 90000);
    EXPECT_EQ(convertNTCIPToZorvaTilt(9001), 10);
    EXPECT_EQ(convertNTCIPToZorvaTilt(18000), 90000);
    EXPECT_EQ(convertNTCIPToZorvaTilt(18001), -10);
    EXPECT_EQ(convertNTCIPToZorvaTilt(27000), -90000);
    EXPECT_EQ(convertNTCIPToZorvaTilt(27001), -89990);
    EXPECT_EQ(convertNTCIPToZorvaTilt(35999), -10);
}

TEST(PositioningTilt, EveryAngleOfThreeCirclesLiesInItsBand) {
    for (int ntcip = 0; ntcip < 108000; ++ntcip) {
        ASSERT_EQ(convertNTCIPToZorvaTilt(ntcip), model::zorvaTilt(ntcip % 36000)) << ntcip;
    }
}

TEST(PositioningTilt, NegativeAnglesPassButForWholeCircles) {
    int expected = 0;
    for (int ntcip = 0; ntcip > -108000; --ntcip, expected = expected == -359990 ? 0 : expected - 10) {
        ASSERT_EQ(convertNTCIPToZorvaTilt(ntcip), expected) << ntcip;
    }
}

TEST(PositioningTilt, HasAResultForEveryInteger) {
    for (const int ntcip : {INT_MAX / 10, INT_MAX / 10 + 1, INT_MIN / 10, INT_MIN / 10 - 1, INT_MAX, INT_MIN}) {
        const int result = convertNTCIPToZorvaTilt(ntcip);
        EXPECT_LE(result, 90000) << ntcip;
        EXPECT_GT(result, -360000) << ntcip;
    }
}

TEST(PositioningTilt, BackGoesToTheNearestHundredthOfEveryAngle) {
    int upward = 0;
    int downward = 36000;
    for (int zorva = 0; zorva <= 360000; ++zorva) {
        upward += zorva % 10 == 5 ? 1 : 0;
        ASSERT_EQ(convertZorvaToNTCIPTilt(zorva), upward) << zorva;
        if (zorva != 0) {
            downward -= zorva % 10 == 6 ? 1 : 0;
            ASSERT_EQ(convertZorvaToNTCIPTilt(-zorva), downward) << -zorva;
        }
    }
}

TEST(PositioningTilt, BackHasAResultForEveryInteger) {
    EXPECT_EQ(convertZorvaToNTCIPTilt(INT_MAX), 214748365) << "the sum is unsigned";
    EXPECT_EQ(convertZorvaToNTCIPTilt(-360014), 0) << "cut towards zero";
    EXPECT_EQ(convertZorvaToNTCIPTilt(-360015), -1);
    EXPECT_EQ(convertZorvaToNTCIPTilt(INT_MIN), -214712364);
}

TEST_P(PositioningZoomRangeTest, MapsEveryPositionIntoTheRangeThatCounts) {
    // A step that is prime to everything else here; the range of an ordinary camera is walked in full.
    const int step = GetParam().name == "SoftLimits" ? 1 : 37;
    for (int ntcip = 0; ntcip <= 65535; ntcip += step) {
        ASSERT_EQ(convertNTCIPToZorvaZoom(ntcip), model::zorvaZoom(ntcip, GetParam().counts)) << ntcip;
        forgetEvery(512, ntcip);
    }
    for (const int ntcip : {0, 1, 2, 32767, 32768, 65533, 65534, 65535}) {
        EXPECT_EQ(convertNTCIPToZorvaZoom(ntcip), model::zorvaZoom(ntcip, GetParam().counts)) << ntcip;
    }
}

TEST_P(PositioningZoomRangeTest, EndsAtTheBounds) {
    EXPECT_EQ(convertNTCIPToZorvaZoom(-1), GetParam().counts.min);
    EXPECT_EQ(convertNTCIPToZorvaZoom(INT_MIN), GetParam().counts.min);
    EXPECT_EQ(convertNTCIPToZorvaZoom(65536), GetParam().counts.max);
    EXPECT_EQ(convertNTCIPToZorvaZoom(INT_MAX), GetParam().counts.max);
}

TEST_P(PositioningZoomRangeTest, BackUsesTheSoftLimitsWhateverIsEnabled) {
    const Limits &soft = GetParam().soft;
    for (const int zorva : {soft.min, soft.max, 0, 10, 11, 77, 155, 200, 300, 301, 1000000, -1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(convertZorvaToNTCIPZoom(zorva), model::ntcipZoom(zorva, soft)) << zorva;
    }
    for (int i = 0; i <= 1000; ++i) {
        const auto zorva = static_cast<int>(soft.min + (std::int64_t{soft.max} - soft.min) * i / 1000);
        ASSERT_EQ(convertZorvaToNTCIPZoom(zorva), model::ntcipZoom(zorva, soft)) << zorva;
    }
}

TEST_P(PositioningZoomRangeTest, AsksForNoMoreThanItNeeds) {
    convertNTCIPToZorvaZoom(1);
    std::vector<std::string> expected{calls::kGetSoftPositions};
    if (!GetParam().soft.enabled) {
        expected.push_back(calls::kGetDigitalZoom);
    }
    if (!GetParam().soft.enabled && !GetParam().digital) {
        expected.push_back(calls::kGetMaxZoom);
    }
    EXPECT_EQ(core().calls(), expected);

    core().clearRecord();
    convertZorvaToNTCIPZoom(1);
    EXPECT_THAT(core().calls(), ElementsAre(calls::kGetSoftPositions));
    EXPECT_THAT(core().logs(), IsEmpty());
}

TEST_F(PositioningConversionTest, WithoutAServiceOrATargetResultsAreZeroWithoutACall) {
    void *const connection = positioning::gApiCookie;
    for (const bool hasTarget : {true, false}) {
        positioning::gApiCookie = hasTarget ? nullptr : connection;
        if (!hasTarget) {
            positioning::gPositionings.clear();
        }
        EXPECT_EQ(convertNTCIPToZorvaZoom(65535), 0);
        EXPECT_EQ(convertZorvaToNTCIPZoom(300), 0);
        EXPECT_EQ(speedNTCIPToZorva(kPanAxis, 127, 160000), 0);
        EXPECT_EQ(speedPercentage(kPanAxis, 127), 0.0F);
    }
    EXPECT_THAT(core().calls(), IsEmpty());
    EXPECT_THAT(core().logs(), IsEmpty());
}

TEST_F(PositioningConversionTest, ZoomShowsTheLimitsThatItWorksWith) {
    convertNTCIPToZorvaZoom(1);
    EXPECT_THAT(core().logs(),
                ElementsAre(logs::notice("convertNTCIPToZorvaZoom: get_soft_limits (min,max) pan(T)(1000,350000), "
                                         "tilt(T)(-80000,45000), zoom(T)(10,300)")));
}

TEST_F(PositioningConversionTest, ZoomShowsItsSoftMinimumInPlaceOfTheOptics) {
    softPositions({1000, 350000, false}, {-80000, 45000, false}, {10, 300, false});
    convertNTCIPToZorvaZoom(1);
    EXPECT_THAT(core().logs(),
                ElementsAre(logs::notice("convertNTCIPToZorvaZoom: get_soft_limits (min,max) pan(F)(1000,350000), "
                                         "tilt(F)(-80000,45000), zoom(F)(10,300)"),
                            logs::notice(
                                "convertNTCIPToZorvaZoom: get_max_optical_and_digital_zoom optical/digital=(10,120)")));
}

TEST_F(PositioningConversionTest, EachFlagIsShownInItsPlace) {
    digitalZoom(true);
    const char *const expected[] = {"pan(T)(1,2), tilt(F)(3,4), zoom(F)(5,6)",
                                    "pan(F)(1,2), tilt(T)(3,4), zoom(F)(5,6)",
                                    "pan(F)(1,2), tilt(F)(3,4), zoom(T)(5,6)"};
    for (int axis = 0; axis < 3; ++axis) {
        softPositions({1, 2, axis == 0}, {3, 4, axis == 1}, {5, 6, axis == 2});
        core().clearRecord();
        convertNTCIPToZorvaZoom(1);
        EXPECT_THAT(core().logs(), ElementsAre(logs::notice(std::string("convertNTCIPToZorvaZoom: get_soft_limits "
                                                                        "(min,max) ") +
                                                            expected[axis])));
    }
}

TEST_F(PositioningConversionTest, AFlagIsAnyNumberButZero) {
    core().answer(service::kGetSoftPositions,
                  {std::int64_t{0}, std::int64_t{1}, std::int64_t{2}, std::int64_t{0}, std::int64_t{3}, std::int64_t{4},
                   std::int64_t{0x80}, std::int64_t{5}, std::int64_t{6}});
    EXPECT_EQ(convertNTCIPToZorvaZoom(65535), 6);
    EXPECT_THAT(core().calls(), SizeIs(1));
}

TEST_F(PositioningConversionTest, LimitsThatChangeElsewhereCountAtOnce) {
    EXPECT_EQ(convertNTCIPToZorvaZoom(65535), 300);
    EXPECT_EQ(convertZorvaToNTCIPZoom(300), 65535);
    softZoom({10, 590});
    EXPECT_EQ(convertNTCIPToZorvaZoom(65535), 590);
    EXPECT_EQ(convertZorvaToNTCIPZoom(300), 32768);
}
