// SPDX-License-Identifier: Apache-2.0
#include <ostream>
#include <string>

#include "motion_commands.h"
#include "positioning_call_texts.h"
#include "positioning_test.h"

namespace {

/** A call that fails, in a command: the errors that are logged, and all calls that are made nevertheless. */
struct FailedCommand {
    const char *name;
    const char *function;
    void (*issue)();
    Calls errors; ///< the failed calls
    Calls calls;
};

void PrintTo(const FailedCommand &each, std::ostream *stream) {
    *stream << each.name;
}

void deltaPan() {
    positioning::deltaMovement(kPanAxis, 64, 100);
}

void deltaZoom() {
    positioning::deltaMovement(kZoomAxis, 64, 100);
}

void absoluteTilt() {
    positioning::absoluteMovement(kTiltAxis, 64, 9000);
}

void absoluteZoom() {
    positioning::absoluteMovement(kZoomAxis, 64, 65535);
}

void runPan() {
    positioning::continuousMovement(kPanAxis, -64);
}

/** The calls of a move up to its speed mapping, those of the zoom conversion included. */
Calls with(Calls first, const Calls &rest) {
    first.insert(first.end(), rest.begin(), rest.end());
    return first;
}

std::vector<FailedCommand> failedCommands() {
    const Calls start{calls::clearVelocityLimits(), calls::getPosition(), calls::getSoftPositions()};
    const Calls zoomStart = with(start, {calls::getSoftPositions(), calls::getDigitalZoom(), calls::getMaxZoom()});
    const std::string ceilings = calls::setSoftVelocities(160000, 80000);
    const Calls speeds{calls::getSoftVelocities(), ceilings, calls::getCameraVelocities()};
    const Calls runSpeeds{calls::getSoftPositions(), calls::getSoftVelocities(), calls::setSoftVelocities(80000, 40000),
                          calls::getCameraVelocities()};
    const Calls panMove = with(with(start, speeds), {calls::move(kPanAxis, 91000, "0.511749268")});
    const Calls tiltMove = with(with(start, speeds), {calls::move(kTiltAxis, 90000, "0.511749268")});
    return {
        {"Stop",
         service::kSetVelocity,
         [] { positioning::stopMovement(kTiltAxis); },
         {texts::kSetVelocity},
         {calls::stop(kTiltAxis)}},
        {"DeltaClear",
         service::kClearVelocityLimits,
         deltaPan,
         {texts::kClearVelocityLimits},
         {calls::clearVelocityLimits()}},
        {"AbsoluteClear",
         service::kClearVelocityLimits,
         absoluteTilt,
         {texts::kClearVelocityLimits},
         {calls::clearVelocityLimits()}},
        {"DeltaPosition",
         service::kGetPosition,
         deltaPan,
         {texts::kGetPosition},
         {calls::clearVelocityLimits(), calls::getPosition()}},
        {"AbsolutePosition",
         service::kGetPosition,
         absoluteTilt,
         {texts::kGetPosition},
         {calls::clearVelocityLimits(), calls::getPosition()}},
        {"DeltaPanLimits", service::kGetSoftPositions, deltaPan, {texts::kGetSoftPositions}, panMove},
        {"AbsoluteTiltLimits", service::kGetSoftPositions, absoluteTilt, {texts::kGetSoftPositions}, tiltMove},
        {"DeltaZoomLimits",
         service::kGetSoftPositions,
         deltaZoom,
         {texts::kGetSoftPositions, texts::kGetSoftPositions},
         with(with(start, {calls::getSoftPositions()}), with(speeds, {calls::move(kZoomAxis, 0, "0.625")}))},
        {"DeltaDigitalZoom",
         service::kGetDigitalZoom,
         deltaZoom,
         {texts::kGetDigitalZoom},
         with(with(start, {calls::getSoftPositions(), calls::getDigitalZoom()}),
              with(speeds, {calls::move(kZoomAxis, 0, "0.625")}))},
        {"AbsoluteMaxZoom",
         service::kGetMaxZoom,
         absoluteZoom,
         {texts::kGetMaxZoom},
         with(zoomStart, with(speeds, {calls::move(kZoomAxis, 0, "0.625")}))},
        {"DeltaVelocities",
         service::kGetSoftVelocities,
         deltaPan,
         {texts::kGetSoftVelocities},
         with(start,
              {calls::getSoftVelocities(), calls::getCameraVelocities(), calls::move(kPanAxis, 91000, "0.511749268")})},
        {"DeltaCeilings", service::kSetSoftVelocities, deltaPan, {texts::kSetSoftVelocities}, panMove},
        {"AbsoluteRange",
         service::kGetCameraVelocities,
         absoluteTilt,
         {texts::kGetCameraVelocities},
         with(with(start, speeds), {calls::move(kTiltAxis, 90000, "0")})},
        {"DeltaMove", service::kMove, deltaPan, {texts::kMove}, panMove},
        {"AbsoluteMove", service::kMove, absoluteTilt, {texts::kMove}, tiltMove},
        {"RunLimits",
         service::kGetSoftPositions,
         runPan,
         {texts::kGetSoftPositions},
         with(runSpeeds, {calls::run(kPanAxis, -40365, 5000)})},
        {"RunVelocities",
         service::kGetSoftVelocities,
         runPan,
         {texts::kGetSoftVelocities},
         {calls::getSoftPositions(), calls::getSoftVelocities(), calls::getCameraVelocities(),
          calls::run(kPanAxis, 0, 5000)}},
        {"RunCeilings",
         service::kSetSoftVelocities,
         runPan,
         {texts::kSetSoftVelocities},
         with(runSpeeds, {calls::run(kPanAxis, -40365, 5000)})},
        {"RunRange",
         service::kGetCameraVelocities,
         runPan,
         {texts::kGetCameraVelocities},
         with(runSpeeds, {calls::run(kPanAxis, -40365, 5000)})},
    };
}

class PositioningFailuresTest : public PositioningTest {
protected:
    void SetUp() override {
        PositioningTest::SetUp();
        connect();
        softPositions({1000, 350000, false}, {-80000, 45000}, {10, 300, false});
    }

    static std::vector<LogLine> errors() {
        std::vector<LogLine> result;
        for (const std::string &text : core().logs(3)) {
            result.push_back(logs::error(text));
        }
        return result;
    }
};

class PositioningFailedCommandTest : public PositioningFailuresTest,
                                     public testing::WithParamInterface<FailedCommand> {};

INSTANTIATE_TEST_SUITE_P(Calls, PositioningFailedCommandTest, testing::ValuesIn(failedCommands()),
                         [](const auto &each) { return std::string(each.param.name); });

} // namespace

TEST_P(PositioningFailedCommandTest, IsLoggedAndEndsOrGoesOn) {
    core().fail(GetParam().function, kRefused);
    GetParam().issue();
    std::vector<LogLine> expected;
    for (const std::string &call : GetParam().errors) {
        expected.push_back(logs::failed(call));
    }
    EXPECT_EQ(errors(), expected);
    EXPECT_EQ(core().calls(), GetParam().calls);
}

TEST_F(PositioningFailuresTest, TheStatusOfTheCallIsShown) {
    core().fail(service::kSetVelocity, -3);
    positioning::stopMovement(kPanAxis);
    EXPECT_THAT(core().logs(3),
                ElementsAre("Failed zorva api call: " + std::string(texts::kSetVelocity) + " (status -3)"));
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
        EXPECT_THAT(errors(), ElementsAre(logs::error("continuousMovement: set_velocity_with_timeout" +
                                                      std::string(each.arguments)),
                                          logs::failed(each.call)));
    }
}

TEST_F(PositioningFailuresTest, APositionThatCannotBeReadIsZero) {
    core().fail(service::kGetPosition, kRefused);
    for (const auto axis : {kPanAxis, kTiltAxis, kZoomAxis}) {
        core().clearRecord();
        EXPECT_EQ(positioning::getInitialPosition(axis), 0U);
        EXPECT_THAT(core().calls(), ElementsAre(calls::getPosition()));
        EXPECT_THAT(core().logs(), ElementsAre(logs::failed(texts::kGetPosition)));
    }
}

TEST_F(PositioningFailuresTest, AZoomThatCannotBeConvertedLeavesPanAndTilt) {
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
