// SPDX-License-Identifier: Apache-2.0
#include <climits>
#include <ostream>
#include <string>

#include "positioning_call_texts.h"
#include "positioning_test.h"
#include "range_objects.h"

namespace {

struct RangeObject {
    const char *name; ///< of the handler
    Netsnmp_Node_Handler *handler;
    const char *instance;
    long atStart;
    bool queried;
};

void PrintTo(const RangeObject &object, std::ostream *stream) {
    *stream << object.name;
}

const RangeObject kPanLeft{"handle_rangePanLeftLimit", positioning::handle_rangePanLeftLimit, oids::rangePanLeftLimit,
                           0, true};
const RangeObject kPanRight{"handle_rangePanRightLimit", positioning::handle_rangePanRightLimit,
                            oids::rangePanRightLimit, 0, true};
const RangeObject kTiltUp{"handle_rangeTiltUpLimit", positioning::handle_rangeTiltUpLimit, oids::rangeTiltUpLimit, 0,
                          true};
const RangeObject kTiltDown{"handle_rangeTiltDownLimit", positioning::handle_rangeTiltDownLimit,
                            oids::rangeTiltDownLimit, 0, true};
const RangeObject kReadOnly[] = {
    kPanLeft,
    kPanRight,
    kTiltUp,
    kTiltDown,
    {"handle_rangePanHomePosition", positioning::handle_rangePanHomePosition, oids::rangePanHomePosition, 65535, false},
    {"handle_rangeMinimumPanStepAngle", positioning::handle_rangeMinimumPanStepAngle, oids::rangeMinimumPanStepAngle, 1,
     false},
    {"handle_rangeMinimumTiltStepAngle", positioning::handle_rangeMinimumTiltStepAngle, oids::rangeMinimumTiltStepAngle,
     1, false},
    {"handle_rangeZoomLimit", positioning::handle_rangeZoomLimit, oids::rangeZoomLimit, 0, false}};

const char *const kNorth = "handle_rangeTrueNorthOffset";
const char *const kNorthInstance = oids::rangeTrueNorthOffset;

LogLine enter(const std::string &name) {
    return logs::debug(name + ": Enter.");
}

LogLine done(const std::string &name) {
    return logs::debug(name + ": Done.");
}

class PositioningRangeTest : public PositioningTest {
protected:
    void SetUp() override {
        PositioningTest::SetUp();
        connect();
    }

    /** The line that shows the limits which the fixture's service has. */
    static LogLine softLimits(const RangeObject &object) {
        return logs::info(object.name +
                          ": get_soft_position_limits, 1000=pmin,350000=pmax,-80000=tmin,45000=tmax,10=zmin,10=zmax"s);
    }

    static long read(const RangeObject &object) {
        core().clearRecord();
        const Answer answer = get(object.instance);
        EXPECT_THAT(answer, isAccepted()) << object.name;
        EXPECT_EQ(answer.type, ASN_INTEGER) << object.name;
        return answer.integer;
    }

    /** One phase of the true north on the handler itself, with the record of this phase only. */
    static Answer north(int mode, const NewValue &value) {
        core().clearRecord();
        return DirtyRequest(kNorthInstance, value).run(positioning::handle_rangeTrueNorthOffset, mode);
    }

    /** What a limit answers, and whether a negative service value is cut or wrapped on the way. */
    struct Value {
        int zorva;
        long answered;
    };
};

class PositioningReadOnlyRangeTest : public PositioningRangeTest, public testing::WithParamInterface<RangeObject> {};

INSTANTIATE_TEST_SUITE_P(Objects, PositioningReadOnlyRangeTest, testing::ValuesIn(kReadOnly),
                         [](const auto &each) { return std::string(each.param.name).substr(7); });

} // namespace

TEST_P(PositioningReadOnlyRangeTest, WithoutAConnectionTheStoredValueIsAnswered) {
    positioning::gApiCookie = nullptr;
    EXPECT_EQ(read(GetParam()), GetParam().atStart);
    EXPECT_THAT(core().calls(), IsEmpty());
    EXPECT_THAT(core().logs(), ElementsAre(enter(GetParam().name), done(GetParam().name)));
}

TEST_P(PositioningReadOnlyRangeTest, OnlyLimitsAskTheService) {
    const long before = read(GetParam());
    if (GetParam().queried) {
        EXPECT_THAT(core().calls(), ElementsAre(calls::getSoftPositions()));
    } else {
        EXPECT_EQ(before, GetParam().atStart);
        EXPECT_THAT(core().calls(), IsEmpty());
        EXPECT_THAT(core().logs(), ElementsAre(enter(GetParam().name), done(GetParam().name)));
    }
}

TEST_F(PositioningRangeTest, TheLastLimitIsAnsweredWhileTheServiceFails) {
    const std::pair<RangeObject, long> cases[] = {
        {kPanLeft, 100}, {kPanRight, 35000}, {kTiltUp, 4500}, {kTiltDown, 28000}};
    for (const auto &[object, value] : cases) {
        softPositions({1000, 350000}, {-80000, 45000}, {10, 300});
        EXPECT_EQ(read(object), value);
        core().fail(service::kGetSoftPositions, kRefused);
        EXPECT_EQ(read(object), value);
        EXPECT_THAT(core().logs(),
                    ElementsAre(enter(object.name), logs::failed(texts::kGetSoftPositions), done(object.name)));
        const void *const connection = positioning::gApiCookie;
        positioning::gApiCookie = nullptr;
        EXPECT_EQ(read(object), value);
        positioning::gApiCookie = const_cast<void *>(connection);
    }
}

TEST_F(PositioningRangeTest, AFailureBeforeTheFirstLimitAnswersZero) {
    core().fail(service::kGetSoftPositions, kRefused);
    for (const RangeObject &object : {kPanLeft, kPanRight, kTiltUp, kTiltDown}) {
        EXPECT_EQ(read(object), 0) << object.name;
        EXPECT_THAT(core().calls(), ElementsAre(calls::getSoftPositions()));
    }
}

TEST_F(PositioningRangeTest, PanLimitsAreUnsignedAndCutTo16Bits) {
    const Value values[] = {{0, 0},          {9, 0},          {10, 1},          {359999, 35999},
                            {327680, 32768}, {655359, 65535}, {655360, 0},      {1000000, 34464},
                            {-1, 39321},     {-10, 39320},    {INT_MAX, 52428}, {INT_MIN, 52428}};
    for (const Value &each : values) {
        softPositions({each.zorva, 1}, {2, 3}, {4, 5});
        EXPECT_EQ(read(kPanLeft), each.answered) << each.zorva;
        EXPECT_EQ(positioning::gPanLeftLimit, each.answered) << each.zorva;
        softPositions({1, each.zorva}, {2, 3}, {4, 5});
        EXPECT_EQ(read(kPanRight), each.answered) << each.zorva;
        EXPECT_EQ(positioning::gPanRightLimit, each.answered) << each.zorva;
    }
}

TEST_F(PositioningRangeTest, WithoutPanLimitsTheCircleIsWhole) {
    softPositions({1000, 350000, false}, {-80000, 45000}, {10, 300});
    EXPECT_EQ(read(kPanLeft), 0);
    EXPECT_THAT(core().logs(), ElementsAre(enter(kPanLeft.name), softLimits(kPanLeft), done(kPanLeft.name)));
    EXPECT_EQ(read(kPanRight), 35999);
    EXPECT_THAT(core().logs(), ElementsAre(enter(kPanRight.name), softLimits(kPanRight), done(kPanRight.name)));
    EXPECT_THAT(core().calls(), ElementsAre(calls::getSoftPositions()));
}

TEST_F(PositioningRangeTest, SoftTiltLimitsWrapDownwards) {
    const Value values[] = {
        {0, 0},          {9, 0},           {45000, 4500}, {90000, 9000},     {-9, 0},          {-1, 0},
        {-10, -29537},   {-19, -29537},    {-20, -29538}, {-45000, 31500},   {-90000, 27000},  {-32320, 32768 - 65536},
        {-32330, 32767}, {327680, -32768}, {655360, 0},   {INT_MAX, -13108}, {INT_MIN, -16428}};
    for (const Value &each : values) {
        softPositions({1, 1}, {each.zorva, 12345}, {4, 5});
        EXPECT_EQ(read(kTiltDown), each.answered) << each.zorva;
        EXPECT_EQ(positioning::gTiltDownLimit, each.answered) << each.zorva;
        softPositions({1, 1}, {12345, each.zorva}, {4, 5});
        EXPECT_EQ(read(kTiltUp), each.answered) << each.zorva;
        EXPECT_EQ(positioning::gTiltUpLimit, each.answered) << each.zorva;
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
    for (const Case &each : cases) {
        cameraPositions({1, 2}, {each.zorva, 12345}, {3, 4});
        EXPECT_EQ(read(kTiltDown), each.down) << each.zorva;
        EXPECT_THAT(core().calls(), ElementsAre(calls::getSoftPositions(), calls::getCameraPositions()));
        EXPECT_THAT(core().logs(), ElementsAre(enter(kTiltDown.name), softLimits(kTiltDown), done(kTiltDown.name)));
        cameraPositions({1, 2}, {12345, each.zorva}, {3, 4});
        EXPECT_EQ(read(kTiltUp), each.up) << each.zorva;
        EXPECT_THAT(core().calls(), ElementsAre(calls::getSoftPositions(), calls::getCameraPositions()));
        EXPECT_THAT(core().logs(), ElementsAre(enter(kTiltUp.name), softLimits(kTiltUp), done(kTiltUp.name)));
    }
}

TEST_F(PositioningRangeTest, TheSoftUpLimitIsShownBeforeItIsCut) {
    read(kTiltUp);
    EXPECT_THAT(core().logs(),
                ElementsAre(enter(kTiltUp.name), softLimits(kTiltUp),
                            logs::info("handle_rangeTiltUpLimit: tiltMaxLimit->4500"), done(kTiltUp.name)));
    softPositions({1000, 350000}, {-80000, -10}, {10, 300});
    read(kTiltUp);
    EXPECT_THAT(core().logs(6), Contains("handle_rangeTiltUpLimit: tiltMaxLimit->35999"));
    softPositions({1000, 350000}, {-80000, 45000}, {10, 300});
    read(kTiltDown);
    EXPECT_THAT(core().logs(), ElementsAre(enter(kTiltDown.name), softLimits(kTiltDown), done(kTiltDown.name)));
}

TEST_F(PositioningRangeTest, ACameraLimitThatCannotBeReadLeavesTheLast) {
    for (const auto &[object, value] : {std::pair(kTiltUp, 4500L), std::pair(kTiltDown, 28000L)}) {
        softPositions({1000, 350000}, {-80000, 45000}, {10, 300});
        EXPECT_EQ(read(object), value);
        softPositions({1000, 350000}, {-80000, 45000, false}, {10, 300});
        core().fail(service::kGetCameraPositions, kRefused);
        EXPECT_EQ(read(object), value);
        EXPECT_THAT(core().logs(), ElementsAre(enter(object.name), softLimits(object),
                                               logs::failed(texts::kGetCameraPositions), done(object.name)));
    }
}

TEST_F(PositioningRangeTest, TrueNorthIsKnownOrNot) {
    EXPECT_EQ(get(kNorthInstance).integer, 65535);
    for (const long value : {0L, 65535L, 0L}) {
        set(kNorthInstance, NewValue::integer(value));
        const Answer answer = get(kNorthInstance);
        EXPECT_EQ(answer.type, ASN_INTEGER);
        EXPECT_EQ(answer.integer, value);
    }
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_F(PositioningRangeTest, AnotherTrueNorthIsRefused) {
    for (const long value : {1L, -1L, 65534L, 65536L, 2147483647L, -2147483648L}) {
        EXPECT_THAT(north(MODE_SET_RESERVE2, NewValue::integer(value)), isRefused(SNMP_ERR_GENERR, SNMP_ERR_WRONGVALUE))
            << value;
        EXPECT_THAT(core().logs(), ElementsAre(enter(kNorth),
                                               logs::error(kNorth + ": true north offset("s + std::to_string(value) +
                                                           ") can only be 0 or 65535"),
                                               done(kNorth)));
    }
    for (const long value : {0L, 65535L}) {
        EXPECT_THAT(north(MODE_SET_RESERVE2, NewValue::integer(value)), isAccepted()) << value;
        EXPECT_THAT(core().logs(), ElementsAre(enter(kNorth), done(kNorth))) << value;
    }
    EXPECT_EQ(positioning::gTrueNorthOffset, 65535);
}
