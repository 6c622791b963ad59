// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The ranges of pan, tilt and zoom.
 */
#include <climits>

#include "positioning_call_texts.h"
#include "positioning_test.h"
#include "range_objects.h"

namespace {

/** A range, and its answer before the service has told any limit. */
struct RangeObject : Row {
    long atStart = 0;
    bool isQueried = true;

    std::string handler() const {
        return "handle_" + name;
    }
    const char *instance() const {
        return listedObject(name).instance;
    }
};

const RangeObject kPanLeft{{"rangePanLeftLimit"}};
const RangeObject kPanRight{{"rangePanRightLimit"}};
const RangeObject kTiltUp{{"rangeTiltUpLimit"}};
const RangeObject kTiltDown{{"rangeTiltDownLimit"}};
const RangeObject kReadOnly[] = {kPanLeft,
                                 kPanRight,
                                 kTiltUp,
                                 kTiltDown,
                                 {{"rangePanHomePosition"}, 65535, false},
                                 {{"rangeMinimumPanStepAngle"}, 1, false},
                                 {{"rangeMinimumTiltStepAngle"}, 1, false},
                                 {{"rangeZoomLimit"}, 0, false}};

class PositioningRangeTest : public ConnectedPositioningTest {
protected:
    /** Checks a GET, and the calls and lines that it makes. */
    static void expectRead(const RangeObject &object, long value, const Calls &calls,
                           const std::vector<LogLine> &lines) {
        core().clearRecord();
        EXPECT_THAT(get(object.instance()), isInteger(value)) << object.name;
        EXPECT_EQ(core().calls(), calls);
        EXPECT_EQ(core().logs(), logs::from(object.handler(), lines));
    }
    static long read(const RangeObject &object) {
        core().clearRecord();
        return get(object.instance()).integer;
    }
    /** The line with the limits of the fixture's service. */
    static LogLine softLimits(const RangeObject &object) {
        return logs::info(object.handler() +
                          ": get_soft_position_limits, 1000=pmin,350000=pmax,-80000=tmin,45000=tmax,10=zmin,10=zmax");
    }
    static LogLine tiltMaximum(int hundredths) {
        return logs::info("handle_rangeTiltUpLimit: tiltMaxLimit->" + std::to_string(hundredths));
    }

    /** A limit of the service, and its answer. */
    struct Value {
        int zorva;
        long answered;
    };
};

class PositioningReadOnlyRangeTest : public PositioningRangeTest, public testing::WithParamInterface<RangeObject> {};

INSTANTIATE_TEST_SUITE_P(Objects, PositioningReadOnlyRangeTest, testing::ValuesIn(kReadOnly), nameOf<RangeObject>);

} // namespace

TEST_P(PositioningReadOnlyRangeTest, WithoutAConnectionTheStoredValueIsAnswered) {
    positioning::gApiCookie = nullptr;
    expectRead(GetParam(), GetParam().atStart, {}, {});
}

TEST_P(PositioningReadOnlyRangeTest, OnlyLimitsAskTheService) {
    if (GetParam().isQueried) {
        read(GetParam());
        EXPECT_THAT(core().calls(), ElementsAre(calls::kGetSoftPositions));
    } else {
        expectRead(GetParam(), GetParam().atStart, {}, {});
    }
}

TEST_F(PositioningRangeTest, TheLastLimitIsAnsweredWhileTheServiceFails) {
    for (const RangeObject &object : {kPanLeft, kPanRight, kTiltUp, kTiltDown}) {
        core().once(service::kGetSoftPositions, {kRefused, {}});
        expectRead(object, 0, {calls::kGetSoftPositions}, {logs::failed(texts::kGetSoftPositions)});
    }
    for (const auto &[object, value] : {std::pair(kPanLeft, 100L), std::pair(kPanRight, 35000L),
                                        std::pair(kTiltUp, 4500L), std::pair(kTiltDown, 28000L)}) {
        softPositions({1000, 350000}, {-80000, 45000}, {10, 300});
        EXPECT_EQ(read(object), value);
        core().fail(service::kGetSoftPositions, kRefused);
        expectRead(object, value, {calls::kGetSoftPositions}, {logs::failed(texts::kGetSoftPositions)});
        void *const connection = positioning::gApiCookie;
        positioning::gApiCookie = nullptr;
        expectRead(object, value, {}, {});
        positioning::gApiCookie = connection;
    }
}

TEST_F(PositioningRangeTest, PanLimitsAreUnsignedAndCutTo16Bits) {
    const Value values[] = {{0, 0},          {9, 0},          {10, 1},          {359999, 35999},
                            {327680, 32768}, {655359, 65535}, {655360, 0},      {1000000, 34464},
                            {-1, 39321},     {-10, 39320},    {INT_MAX, 52428}, {INT_MIN, 52428}};
    for (const Value &each : values) {
        softPositions({each.zorva, 1}, {2, 3}, {4, 5});
        EXPECT_EQ(read(kPanLeft), each.answered) << each.zorva;
        softPositions({1, each.zorva}, {2, 3}, {4, 5});
        EXPECT_EQ(read(kPanRight), each.answered) << each.zorva;
    }
}

TEST_F(PositioningRangeTest, WithoutPanLimitsTheCircleIsWhole) {
    softPositions({1000, 350000, false}, {-80000, 45000}, {10, 300});
    expectRead(kPanLeft, 0, {calls::kGetSoftPositions}, {softLimits(kPanLeft)});
    expectRead(kPanRight, 35999, {calls::kGetSoftPositions}, {softLimits(kPanRight)});
}

TEST_F(PositioningRangeTest, SoftTiltLimitsWrapDownwards) {
    const Value values[] = {
        {0, 0},          {9, 0},           {45000, 4500}, {90000, 9000},     {-9, 0},          {-1, 0},
        {-10, -29537},   {-19, -29537},    {-20, -29538}, {-45000, 31500},   {-90000, 27000},  {-32320, 32768 - 65536},
        {-32330, 32767}, {327680, -32768}, {655360, 0},   {INT_MAX, -13108}, {INT_MIN, -16428}};
    for (const Value &each : values) {
        softPositions({1, 1}, {each.zorva, 12345}, {4, 5});
        EXPECT_EQ(read(kTiltDown), each.answered) << each.zorva;
        softPositions({1, 1}, {12345, each.zorva}, {4, 5});
        EXPECT_EQ(read(kTiltUp), each.answered) << each.zorva;
    }
}

TEST_F(PositioningRangeTest, OnlyTheDownLimitOfTheCameraWraps) {
    softPositions({1000, 350000}, {-80000, 45000, false}, {10, 300});
    struct Case {
        int zorva;
        long up;
        long down;
    };
    const Case cases[] = {{0, 0, 0},
                          {30000, 3000, 3000},
                          {-9, 0, 0},
                          {-10, -1, -29537},
                          {-90000, -9000, 27000},
                          {-45009, -4500, 31500},
                          {327680, -32768, -32768},
                          {INT_MIN, 13108, -16428}};
    const Calls asked{calls::kGetSoftPositions, calls::kGetCameraPositions};
    for (const Case &each : cases) {
        SCOPED_TRACE(each.zorva);
        cameraPositions({1, 2}, {each.zorva, 12345}, {3, 4});
        expectRead(kTiltDown, each.down, asked, {softLimits(kTiltDown)});
        cameraPositions({1, 2}, {12345, each.zorva}, {3, 4});
        expectRead(kTiltUp, each.up, asked, {softLimits(kTiltUp)});
    }
}

TEST_F(PositioningRangeTest, TheSoftUpLimitIsLoggedBeforeItIsCut) {
    expectRead(kTiltUp, 4500, {calls::kGetSoftPositions}, {softLimits(kTiltUp), tiltMaximum(4500)});
    softPositions({1000, 350000}, {-80000, -10}, {10, 300});
    read(kTiltUp);
    EXPECT_THAT(core().logs(), Contains(tiltMaximum(35999)));
    softPositions({1000, 350000}, {-80000, 45000}, {10, 300});
    expectRead(kTiltDown, 28000, {calls::kGetSoftPositions}, {softLimits(kTiltDown)});
}

TEST_F(PositioningRangeTest, AnUnreadableCameraLimitDoesNotReplaceTheLast) {
    for (const auto &[object, value] : {std::pair(kTiltUp, 4500L), std::pair(kTiltDown, 28000L)}) {
        softPositions({1000, 350000}, {-80000, 45000}, {10, 300});
        EXPECT_EQ(read(object), value);
        softPositions({1000, 350000}, {-80000, 45000, false}, {10, 300});
        core().fail(service::kGetCameraPositions, kRefused);
        expectRead(object, value, {calls::kGetSoftPositions, calls::kGetCameraPositions},
                   {softLimits(object), logs::failed(texts::kGetCameraPositions)});
    }
}

TEST_F(PositioningRangeTest, AnotherTrueNorthIsRefused) {
    const std::string handler = "handle_rangeTrueNorthOffset";
    for (const long value : {1L, -1L, 65534L, 65536L, 2147483647L, -2147483648L, 0L, 65535L}) {
        const bool good = value == 0 || value == 65535;
        core().clearRecord();
        EXPECT_THAT(DirtyRequest(oids::rangeTrueNorthOffset, NewValue::integer(value)).runOwnHandler(MODE_SET_RESERVE2),
                    good ? isAccepted() : isRefused(SNMP_ERR_GENERR, SNMP_ERR_WRONGVALUE))
            << value;
        const LogLine error =
            logs::error(handler + ": true north offset(" + std::to_string(value) + ") can only be 0 or 65535");
        EXPECT_EQ(core().logs(), good ? logs::from(handler) : logs::from(handler, {error}));
    }
    EXPECT_EQ(get(oids::rangeTrueNorthOffset).integer, 65535);
}
