// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <climits>
#include <string>

#include "motion_commands.h"
#include "positioning_test.h"

using namespace positioning;

namespace {

class PositioningTargetsTest : public ConnectedPositioningTest {
protected:
    void SetUp() override {
        ConnectedPositioningTest::SetUp();
        // One fraction for all speeds, so that only the targets differ.
        cameraVelocities({4, 4}, {4, 4}, {4, 4});
    }

    static std::string lastCall() {
        const std::vector<std::string> all = core().calls();
        return all.empty() ? "" : all.back();
    }
};

/** A delta from a position of the service. */
struct Delta {
    int from;
    int speed;
    int delta;
    int target;
};

} // namespace

TEST_F(PositioningTargetsTest, DeltasGoByTheSignsOfSpeedAndDelta) {
    const auto expectTargets = [](Axis axis, const std::vector<Delta> &deltas) {
        for (const Delta &each : deltas) {
            position(axis == kPanAxis ? each.from : 90000, axis == kTiltAxis ? each.from : -10000,
                     axis == kZoomAxis ? each.from : 100);
            deltaMovement(axis, static_cast<signed char>(each.speed), static_cast<short>(each.delta));
            EXPECT_EQ(lastCall(), calls::move(axis, each.target, "0"))
                << axis << ": " << each.from << " by " << each.delta << " at " << each.speed;
        }
    };
    const std::vector<Delta> pan = {
        {0, -1, 100, 359000},         {0, 5, -100, 359000},  {0, 5, 100, 1000},       {1000, -5, -100, 2000},
        {359990, 1, 10, 90},          {0, 0, 100, 1000},     {90000, 127, 0, 90000},  {90000, -128, 0, 90000},
        {359990, 1, 32767, 327660},   {0, 1, -32768, 32320}, {0, -1, -32768, 327680}, {359995, 1, 0, 0},
        {359994, 1, 0, 359990},       {4, -1, 0, 0},         {359990, -1, 1, 359980}, {0, -1, 32767, 32330},
        {359990, -1, -32768, 327670}, {359990, 1, 1, 0}};
    // Through the fold.
    const std::vector<Delta> tilt = {{0, 1, 100, 1000},
                                     {0, -1, 100, -1000},
                                     {-10, 1, 1, 0},
                                     {-10, -1, 1, -20},
                                     {90000, 1, 1, 10},
                                     {90000, -1, 1, 89990},
                                     {-90000, -1, 1, -89990},
                                     {-90000, 1, -1, -89990},
                                     {0, 0, 100, 1000},
                                     {0, 1, -100, -1000},
                                     {-10, 1, 32767, -32340},
                                     {0, 1, 32767, -32330},
                                     {0, -1, 32767, -327670},
                                     {0, 1, -32768, -327680},
                                     {0, -1, -32768, -32320},
                                     {-90000, 1, 9000, 0},
                                     {-1, 1, 0, 0}};
    // Up to the bounds.
    const std::vector<Delta> zoom = {
        {10, 1, 32767, 155},   {10, -1, 1, 10},       {10, 1, -1, 10},      {300, 1, 1, 300},     {300, -1, -1, 300},
        {300, -1, 32767, 155}, {100, 0, 30000, 233},  {100, -1, 20338, 10}, {100, 1, 32767, 245}, {100, 1, 0, 100},
        {300, 1, -32768, 155}, {10, -1, -32768, 155}, {5, 1, 0, 10},        {400, 1, 0, 300}};
    expectTargets(kPanAxis, pan);
    expectTargets(kTiltAxis, tilt);
    expectTargets(kZoomAxis, zoom);
}

TEST_F(PositioningTargetsTest, ADirectionIsLoggedForDeltasOnly) {
    struct Case {
        Axis axis;
        const char *negative;
        const char *positive;
    };
    const Case cases[] = {
        {kPanAxis, "deltaMovement: negative speed, counter-clockwise", "deltaMovement: positive speed, clockwise"},
        {kTiltAxis, "deltaMovement: negative speed, tilt down", "deltaMovement: positive speed, tilt up"},
        {kZoomAxis, "deltaMovement: wide zoom", "deltaMovement: telephoto zoom"}};
    for (const Case &each : cases) {
        for (const int speed : {-128, -1, 0, 1, 127}) {
            for (const short delta : {short{-100}, short{100}}) {
                core().clearRecord();
                deltaMovement(each.axis, static_cast<signed char>(speed), delta);
                const char *const expected = speed < 0 ? each.negative : each.positive;
                ASSERT_EQ(core().logs(6).size(), 5U) << each.axis << " " << speed;
                EXPECT_EQ(core().logs(6).at(3), expected) << each.axis << " " << speed;
            }
            core().clearRecord();
            absoluteMovement(each.axis, static_cast<signed char>(speed), 100);
            EXPECT_EQ(core().logs(6).size(), 4U) << each.axis << " " << speed;
        }
    }
}

TEST_F(PositioningTargetsTest, NumbersAreLoggedAsTheyArePromoted) {
    deltaMovement(kPanAxis, -128, SHRT_MIN);
    EXPECT_EQ(core().logs(6).front(),
              "deltaMovement: NTCIP delta PAN, speed=0xffffff80(-1.000%), delta=0xffff8000(-32768 hundrethdegree)");
    core().clearRecord();
    absoluteMovement(kTiltAxis, 1, 65535);
    EXPECT_EQ(core().logs(6).front(),
              "absoluteMovement: NTCIP absolute TILT, speed=0x01(0.008%), position=0xffff(65535 hundrethdegree)");
}

TEST_F(PositioningTargetsTest, ContinuousMovesTakeTheirDirectionFromTheSign) {
    struct Case {
        Axis axis;
        int speed;
        int velocity;
        const char *words;
    };
    const Case cases[] = {{kPanAxis, 127, 80000, "clockwise pan, speed=80000"},
                          {kPanAxis, -127, -80000, "counterclockwise pan, speed=-80000"},
                          {kPanAxis, -128, -80629, "counterclockwise pan, speed=-80629"},
                          {kPanAxis, 1, 729, "clockwise pan, speed=729"},
                          {kPanAxis, 0, 0, "clockwise pan, speed=0"},
                          {kTiltAxis, 127, 40000, "upward tilt, speed=40000"},
                          {kTiltAxis, -1, -365, "downward tilt, speed=-365"},
                          {kTiltAxis, 0, 0, "upward tilt, speed=0"},
                          {kZoomAxis, 1, 20, "telephoto zoom, speed=20"},
                          {kZoomAxis, -128, -20, "wide zoom, speed=-20"},
                          {kZoomAxis, 0, 0, "telephoto zoom, speed=0"}};
    for (const Case &each : cases) {
        core().clearRecord();
        continuousMovement(each.axis, each.speed);
        EXPECT_EQ(lastCall(), calls::run(each.axis, each.velocity, 5000)) << each.axis << " " << each.speed;
        EXPECT_EQ(core().logs(6).back(), "continuousMovement: countinous " + std::string(each.words) + ",0.000000");
    }
}

TEST_F(PositioningTargetsTest, EachAxisHasItsOwnTimeoutUnlessItIsInfinite) {
    const std::uint32_t kept[][3] = {{11, 22, 33}, {0, 0, 0}, {kInfiniteTimeout, kInfiniteTimeout, kInfiniteTimeout}};
    for (const auto &timeouts : kept) {
        gLastPanTimeout = timeouts[kPanAxis];
        gLastTiltTimeout = timeouts[kTiltAxis];
        gLastZoomTimeout = timeouts[kZoomAxis];
        for (const Axis axis : {kPanAxis, kTiltAxis, kZoomAxis}) {
            continuousMovement(axis, 0);
            EXPECT_EQ(lastCall(), calls::run(axis, 0, timeouts[axis] != 0 ? timeouts[axis] : 0xFFFFFFFF));
        }
    }
}

TEST_F(PositioningTargetsTest, TheVelocityLimitsChangeWithTheKindOfMove) {
    const auto rewrites = [](const Ceilings &held, void (*move)()) {
        softVelocities(held);
        core().clearRecord();
        move();
        const auto all = core().calls();
        return std::count_if(all.begin(), all.end(), [](const std::string &call) {
            return call.compare(0, std::string(service::kSetSoftVelocities).size(), service::kSetSoftVelocities) == 0;
        });
    };
    void (*const moves[])() = {[] { deltaMovement(kTiltAxis, 5, 1); }, [] { absoluteMovement(kZoomAxis, 5, 1); }};
    for (const auto &move : moves) {
        EXPECT_EQ(rewrites(kMoveCeilings, move), 0);
        EXPECT_EQ(rewrites(kRunCeilings, move), 1);
        EXPECT_THAT(core().calls(), Contains(calls::setSoftVelocities(160000, 80000)));
    }
    const auto run = [] { continuousMovement(kPanAxis, 5); };
    EXPECT_EQ(rewrites(kRunCeilings, run), 0);
    EXPECT_EQ(rewrites(kMoveCeilings, run), 1);
    EXPECT_THAT(core().calls(), Contains(calls::setSoftVelocities(80000, 40000)));
}

TEST_F(PositioningTargetsTest, AnUnknownAxisMovesNothing) {
    positioning::stopMovement(kNoAxis);
    EXPECT_THAT(core().calls(), ElementsAre(calls::stop(kNoAxis)));
    EXPECT_THAT(core().logs(), ElementsAre(logs::info("stopMovement: stop ")));

    const std::vector<std::string> still{calls::kClearVelocityLimits, calls::kGetPosition, calls::kGetSoftPositions,
                                         calls::move(kNoAxis, 0, "0")};
    core().clearRecord();
    deltaMovement(kNoAxis, 5, 100);
    EXPECT_EQ(core().calls(), still);
    core().clearRecord();
    absoluteMovement(kNoAxis, 5, 100);
    EXPECT_EQ(core().calls(), still);

    core().clearRecord();
    continuousMovement(kNoAxis, 5);
    EXPECT_EQ(core().calls().front(), calls::kGetSoftPositions);
    EXPECT_EQ(lastCall(), calls::run(kNoAxis, 0, 0xFFFFFFFF));
    EXPECT_THAT(core().logs(6), ElementsAre("continuousMovement: NTCIP continuous , speed=0x05(0.039%)"));

    core().clearRecord();
    EXPECT_EQ(getInitialPosition(kNoAxis), 0U);
    EXPECT_THAT(core().calls(), ElementsAre(calls::kGetPosition, calls::kGetSoftPositions));
}

TEST_F(PositioningTargetsTest, APositionBeyondTheLimitsIsNotClamped) {
    position(-20, -1, 9);
    EXPECT_EQ(getInitialPosition(kPanAxis), 0xFFFFFFFFU);
    EXPECT_EQ(getInitialPosition(kTiltAxis), 36000U);
    EXPECT_EQ(getInitialPosition(kZoomAxis), static_cast<std::uint32_t>(-226));
    position(INT_MAX, INT_MIN, INT_MAX);
    EXPECT_EQ(getInitialPosition(kTiltAxis), static_cast<std::uint32_t>(-214712364));
}

TEST_F(PositioningTargetsTest, WithoutAServiceThePositionIsZeroWithoutACall) {
    positioning::gApiCookie = nullptr;
    for (const Axis axis : {kPanAxis, kTiltAxis, kZoomAxis, kNoAxis}) {
        EXPECT_EQ(getInitialPosition(axis), 0U) << axis;
    }
    EXPECT_THAT(core().calls(), IsEmpty());
    EXPECT_THAT(core().logs(), IsEmpty());
}

TEST_F(PositioningTargetsTest, ExtremePositionsHaveADefinedTarget) {
    for (const int extreme : {INT_MIN, INT_MAX}) {
        position(extreme, extreme, extreme);
        for (const Axis axis : {kPanAxis, kTiltAxis, kZoomAxis}) {
            for (const short delta : {short{SHRT_MIN}, short{SHRT_MAX}}) {
                for (const signed char speed : {static_cast<signed char>(-1), static_cast<signed char>(1)}) {
                    core().clearRecord();
                    deltaMovement(axis, speed, delta);
                    EXPECT_EQ(lastCall().rfind(service::kMove, 0), 0U) << axis << " " << extreme;
                }
            }
        }
    }
}

TEST_F(PositioningTargetsTest, ExtremeLimitsHaveADefinedVelocity) {
    for (const int extreme : {INT_MIN, INT_MAX}) {
        softVelocities({extreme, extreme}, {extreme, extreme}, {extreme, extreme});
        cameraVelocities({INT_MIN, INT_MAX}, {extreme, 0}, {0, extreme});
        for (const Axis axis : {kPanAxis, kTiltAxis, kZoomAxis}) {
            for (const int speed : {-128, -127, -1, 0, 1, 127}) {
                core().clearRecord();
                continuousMovement(axis, speed);
                EXPECT_EQ(lastCall().rfind(service::kSetVelocityWithTimeout, 0), 0U) << axis << " " << speed;
            }
        }
    }
}
