// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Calls to the positioning service that fail, in commands and in conversions.
 */
#include "motion_commands.h"
#include "positioning_call_texts.h"
#include "positioning_test.h"
#include "unit_conversion.h"

namespace {

/** A function of the service, and its call in the line of a failure. */
struct Failing {
    const char *function;
    const char *text;
};

namespace failing {
const Failing kStop{service::kSetVelocity, texts::kSetVelocity};
const Failing kClear{service::kClearVelocityLimits, texts::kClearVelocityLimits};
const Failing kPosition{service::kGetPosition, texts::kGetPosition};
const Failing kLimits{service::kGetSoftPositions, texts::kGetSoftPositions};
const Failing kDigitalZoom{service::kGetDigitalZoom, texts::kGetDigitalZoom};
const Failing kMaxZoom{service::kGetMaxZoom, texts::kGetMaxZoom};
const Failing kVelocities{service::kGetSoftVelocities, texts::kGetSoftVelocities};
const Failing kCeilings{service::kSetSoftVelocities, texts::kSetSoftVelocities};
const Failing kRanges{service::kGetCameraVelocities, texts::kGetCameraVelocities};
const Failing kMove{service::kMove, texts::kMove};
} // namespace failing

/** A call that fails in a command, and all calls that are made nevertheless. */
struct FailedCommand : Row {
    Failing failing;
    void (*issue)();
    Calls calls;
    std::size_t failures = 1; ///< lines of failed calls
};

/** A call that fails in a conversion, the result of the conversion, and its calls and lines. */
struct FailedConversion : Row {
    Failing failing;
    float (*convert)();
    float result;
    Calls calls;
    std::vector<LogLine> linesBefore = {}; ///< that of the failed call
};

void (*const stopTilt)() = [] { positioning::stopMovement(kTiltAxis); };
void (*const deltaPan)() = [] { positioning::deltaMovement(kPanAxis, 64, 100); };
void (*const deltaZoom)() = [] { positioning::deltaMovement(kZoomAxis, 64, 100); };
void (*const absoluteTilt)() = [] { positioning::absoluteMovement(kTiltAxis, 64, 9000); };
void (*const absoluteZoom)() = [] { positioning::absoluteMovement(kZoomAxis, 64, 65535); };
void (*const runPan)() = [] { positioning::continuousMovement(kPanAxis, -64); };

Calls join(std::initializer_list<Calls> parts) {
    Calls result;
    for (const Calls &part : parts) {
        result.insert(result.end(), part.begin(), part.end());
    }
    return result;
}

std::vector<FailedCommand> failedCommands() {
    using namespace calls;
    using namespace failing;
    const Calls start{kClearVelocityLimits, kGetPosition, kGetSoftPositions};
    const Calls speeds{kGetSoftVelocities, setSoftVelocities(160000, 80000), kGetCameraVelocities};
    const Calls runSpeeds{kGetSoftPositions, kGetSoftVelocities, setSoftVelocities(80000, 40000), kGetCameraVelocities};
    const Calls panMove = join({start, speeds, {move(kPanAxis, 91000, "0.511749268")}});
    const Calls tiltMove = join({start, speeds, {move(kTiltAxis, 90000, "0.511749268")}});
    const Calls zoomMove = join({speeds, {move(kZoomAxis, 0, "0.625")}});
    const Calls run = join({runSpeeds, {calls::run(kPanAxis, -40365, 5000)}});
    return {
        {{"Stop"}, kStop, stopTilt, {stop(kTiltAxis)}},
        {{"DeltaClear"}, kClear, deltaPan, {kClearVelocityLimits}},
        {{"AbsoluteClear"}, kClear, absoluteTilt, {kClearVelocityLimits}},
        {{"DeltaPosition"}, kPosition, deltaPan, {kClearVelocityLimits, kGetPosition}},
        {{"AbsolutePosition"}, kPosition, absoluteTilt, {kClearVelocityLimits, kGetPosition}},
        {{"DeltaPanLimits"}, kLimits, deltaPan, panMove},
        {{"AbsoluteTiltLimits"}, kLimits, absoluteTilt, tiltMove},
        {{"DeltaZoomLimits"}, kLimits, deltaZoom, join({start, {kGetSoftPositions}, zoomMove}), 2},
        {{"DeltaDigitalZoom"}, kDigitalZoom, deltaZoom, join({start, {kGetSoftPositions, kGetDigitalZoom}, zoomMove})},
        {{"AbsoluteMaxZoom"},
         kMaxZoom,
         absoluteZoom,
         join({start, {kGetSoftPositions, kGetDigitalZoom, kGetMaxZoom}, zoomMove})},
        {{"DeltaVelocities"},
         kVelocities,
         deltaPan,
         join({start, {kGetSoftVelocities, kGetCameraVelocities, move(kPanAxis, 91000, "0.511749268")}})},
        {{"DeltaCeilings"}, kCeilings, deltaPan, panMove},
        {{"AbsoluteRange"}, kRanges, absoluteTilt, join({start, speeds, {move(kTiltAxis, 90000, "0")}})},
        {{"DeltaMove"}, kMove, deltaPan, panMove},
        {{"AbsoluteMove"}, kMove, absoluteTilt, tiltMove},
        {{"RunLimits"}, kLimits, runPan, run},
        {{"RunVelocities"},
         kVelocities,
         runPan,
         {kGetSoftPositions, kGetSoftVelocities, kGetCameraVelocities, calls::run(kPanAxis, 0, 5000)}},
        {{"RunCeilings"}, kCeilings, runPan, run},
        {{"RunRange"}, kRanges, runPan, run},
    };
}

float toZoom() {
    return static_cast<float>(positioning::convertNTCIPToZorvaZoom(65535));
}

float fromZoom() {
    return static_cast<float>(positioning::convertZorvaToNTCIPZoom(300));
}

template <int axis>
float velocity() {
    return static_cast<float>(
        positioning::speedNTCIPToZorva(static_cast<Axis>(axis), static_cast<signed char>(127), 160000));
}

template <int axis>
float fraction() {
    return positioning::speedPercentage(static_cast<Axis>(axis), 127);
}

std::vector<FailedConversion> failedConversions() {
    using namespace calls;
    using namespace failing;
    const LogLine limits = logs::notice("convertNTCIPToZorvaZoom: get_soft_limits (min,max) pan(F)(1000,350000), "
                                        "tilt(T)(-80000,45000), zoom(F)(10,300)");
    const Calls ceilings{kGetSoftVelocities, setSoftVelocities(160000, 80000)};
    return {
        {{"ZoomLimits"}, kLimits, toZoom, 0, {kGetSoftPositions}},
        {{"ZoomLimitsBack"}, kLimits, fromZoom, 0, {kGetSoftPositions}},
        {{"DigitalZoom"}, kDigitalZoom, toZoom, 0, {kGetSoftPositions, kGetDigitalZoom}, {limits}},
        {{"MaxZoom"}, kMaxZoom, toZoom, 0, {kGetSoftPositions, kGetDigitalZoom, kGetMaxZoom}, {limits}},
        {{"PanVelocity"}, kVelocities, velocity<kPanAxis>, 0, {kGetSoftVelocities}},
        {{"TiltVelocity"}, kVelocities, velocity<kTiltAxis>, 0, {kGetSoftVelocities}},
        {{"ZoomVelocity"}, kVelocities, velocity<kZoomAxis>, 0, {kGetSoftVelocities}},
        {{"NoVelocity"}, kVelocities, velocity<kNoAxis>, 0, {kGetSoftVelocities}},
        {{"PanCeiling"}, kCeilings, velocity<kPanAxis>, 160000, ceilings},
        {{"TiltCeiling"}, kCeilings, velocity<kTiltAxis>, 80000, ceilings},
        {{"ZoomCeiling"}, kCeilings, velocity<kZoomAxis>, 20, ceilings},
        {{"PanFraction"}, kRanges, fraction<kPanAxis>, 0, {kGetCameraVelocities}},
        {{"TiltFraction"}, kRanges, fraction<kTiltAxis>, 0, {kGetCameraVelocities}},
        {{"ZoomFraction"}, kRanges, fraction<kZoomAxis>, 0, {kGetCameraVelocities}},
        {{"NoFraction"}, kRanges, fraction<kNoAxis>, 0, {kGetCameraVelocities}},
    };
}

class PositioningFailuresTest : public ConnectedPositioningTest {
protected:
    void SetUp() override {
        ConnectedPositioningTest::SetUp();
        softPositions({1000, 350000, false}, {-80000, 45000}, {10, 300, false});
    }
};

class PositioningFailedCommandTest : public PositioningFailuresTest,
                                     public testing::WithParamInterface<FailedCommand> {};

class PositioningFailedConversionTest : public PositioningFailuresTest,
                                        public testing::WithParamInterface<FailedConversion> {};

INSTANTIATE_TEST_SUITE_P(Calls, PositioningFailedCommandTest, testing::ValuesIn(failedCommands()),
                         nameOf<FailedCommand>);
INSTANTIATE_TEST_SUITE_P(Calls, PositioningFailedConversionTest, testing::ValuesIn(failedConversions()),
                         nameOf<FailedConversion>);

} // namespace

TEST_P(PositioningFailedCommandTest, IsLoggedAndEndsOrGoesOn) {
    core().fail(GetParam().failing.function, kRefused);
    GetParam().issue();
    EXPECT_EQ(core().logs(3), Calls(GetParam().failures, logs::failed(GetParam().failing.text).text));
    EXPECT_EQ(core().calls(), GetParam().calls);
}

TEST_P(PositioningFailedConversionTest, IsLoggedAndHasItsFallback) {
    core().fail(GetParam().failing.function, kRefused);
    EXPECT_EQ(GetParam().convert(), GetParam().result);
    EXPECT_EQ(core().calls(), GetParam().calls);
    std::vector<LogLine> lines = GetParam().linesBefore;
    lines.push_back(logs::failed(GetParam().failing.text));
    EXPECT_EQ(core().logs(), lines);
}

TEST_F(PositioningFailuresTest, AMoveThatIsRefusedInTheEndHasLoggedEverythingBefore) {
    core().fail(service::kMove, kRefused);
    deltaPan();
    EXPECT_THAT(
        core().logs(),
        ElementsAre(logs::info("deltaMovement: NTCIP delta PAN, speed=0x40(0.500%), delta=0x0064(100 hundrethdegree)"),
                    logs::info("deltaMovement: get_position FUZZ, 90000=pan,-10000=tilt,100=zoom"),
                    logs::info("deltaMovement: get_position NTCIP,9000=pan,35000=tilt,20338=zoom"),
                    logs::info("deltaMovement: positive speed, clockwise"),
                    logs::notice("speedPercentage: get_implementation_velocity_limits, "
                                 "1024=pvmin,132096=pvmax,512=tvmin,66048=tvmax,4=zvmin,4=zvmax"),
                    logs::info("deltaMovement: new pan position FUZZ, 91000=pan,speed=80680,0.512"),
                    logs::failed(texts::kMove)));
}

TEST_F(PositioningFailuresTest, VelocitiesThatCannotBeMappedAreLoggedAsZero) {
    core().fail(service::kGetSoftVelocities, kRefused);
    core().fail(service::kGetCameraVelocities, kRefused);
    deltaPan();
    EXPECT_EQ(core().logs().back(), logs::info("deltaMovement: new pan position FUZZ, 91000=pan,speed=0,0.000"));
    runPan();
    EXPECT_EQ(core().logs().back(),
              logs::info("continuousMovement: countinous counterclockwise pan, speed=0,0.000000"));
}

TEST_F(PositioningFailuresTest, AContinuousMoveWithoutPositionLimitsSaysSoFirst) {
    core().fail(service::kGetSoftPositions, kRefused);
    runPan();
    ASSERT_GE(core().logs().size(), 2U);
    EXPECT_EQ(core().logs().at(0), logs::failed(texts::kGetSoftPositions));
    EXPECT_EQ(core().logs().at(1), logs::info("continuousMovement: NTCIP continuous PAN, speed=0xffffffc0(-0.500%)"));
}

TEST_F(PositioningFailuresTest, ARefusedContinuousMoveShowsItsArguments) {
    struct Case {
        Axis axis;
        std::uint32_t timeout;
        const char *arguments;
        const char *call;
    };
    const Case cases[] = {
        {kPanAxis, 700, " pan T=-40365, tilt F=0, zoom F=0, priority=500, timeout=700 (ms)", texts::kRun},
        {kTiltAxis, 65535, " pan F=0, tilt T=-20182, zoom F=0, priority=500, timeout=65535 (ms)", texts::kRun},
        {kZoomAxis, 0xFFFFFFFF, " pan F=0, tilt F=0, zoom T=-20, priority=500, timeout=-1 (ms)", texts::kRun},
        {kPanAxis, 0, "(infinite) pan T=-40365, tilt F=0, zoom F=0, priority=500", texts::kRunForEver},
        {kTiltAxis, 0, "(infinite) pan F=0, tilt T=-20182, zoom F=0, priority=500", texts::kRunForEver},
        {kZoomAxis, 0, "(infinite) pan F=0, tilt F=0, zoom T=-20, priority=500", texts::kRunForEver},
        {kNoAxis, 700, "(infinite) pan F=0, tilt F=0, zoom F=0, priority=500", texts::kRunForEver}};
    core().fail(service::kSetVelocityWithTimeout, kRefused);
    for (const Case &each : cases) {
        positioning::gLastPanTimeout = each.timeout;
        positioning::gLastTiltTimeout = each.timeout;
        positioning::gLastZoomTimeout = each.timeout;
        core().clearRecord();
        positioning::continuousMovement(each.axis, -64);
        EXPECT_THAT(core().logs(3), ElementsAre("continuousMovement: set_velocity_with_timeout"s + each.arguments,
                                                logs::failed(each.call).text));
    }
}

TEST_F(PositioningFailuresTest, AZoomThatCannotBeConvertedDoesNotAffectPanAndTilt) {
    core().fail(service::kGetSoftPositions, kRefused);
    const std::uint32_t expected[] = {9000, 35000, 0};
    for (const auto axis : {kPanAxis, kTiltAxis, kZoomAxis}) {
        core().clearRecord();
        EXPECT_EQ(positioning::getInitialPosition(axis), expected[axis]);
        EXPECT_THAT(core().logs(),
                    ElementsAre(logs::info("getInitialPosition: get_position FUZZ, 90000=pan,-10000=tilt,100=zoom"),
                                logs::failed(texts::kGetSoftPositions),
                                logs::info("getInitialPosition: get_position NTCIP,9000=pan,35000=tilt,0=zoom")));
    }
}
