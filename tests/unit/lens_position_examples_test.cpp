// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Single commands of single drives: worked examples, and behaviour that looks wrong and is kept.
 */
#include "lens_test.h"
#include "snmp_utils.h"

namespace lens_tests {

namespace {

/** A drive of which the test chooses the limits; the command that it holds is 0 afterwards. */
class LensExampleTest : public LensTest {
protected:
    void TearDown() override {
        for (const Drive &drive : allDrives()) {
            if (!requests::registeredName(drive.position().registeredOid()).empty()) {
                commit(drive.position(), octets({0, 0, 0, 0}));
            }
        }
    }

    static Lines callsOf(const Drive &drive, const std::string &value) {
        core().clearRecord();
        set(drive.position().instance(), NewValue::text(value));
        return core().calls();
    }

    /** The target of a delta that read the position first. */
    static void expectDelta(const Drive &drive, const std::string &value, std::int64_t target) {
        EXPECT_THAT(callsOf(drive, value), ElementsAre(drive.readPositionCall(), drive.moveCall(target)))
            << testing::PrintToString(value);
    }
};

using FocusTest = LensExampleTest;
using FocusStepperTest = LensExampleTest;
using IrisTest = LensExampleTest;
using ZoomStepperTest = LensExampleTest;

} // namespace

TEST_F(FocusTest, ADeltaOfHalfTheRangeDownwardsEndsAtTheMinimum) {
    start(focus(), {5000, 0, 8000});
    expectDelta(focus(), octets({1, 0x80, 0xFF, 0x7F}), 1000);
    answer(focus(), {3000, 0, 8000});
    expectDelta(focus(), octets({1, 0x80, 0xFF, 0x7F}), 0);
}

TEST_F(FocusTest, TheEndsOfThePositionAreTheEndsOfTheRange) {
    start(focus(), {0, -300, 700});
    EXPECT_THAT(callsOf(focus(), octets({2, 0, 0, 0})), ElementsAre(focus().moveCall(-300)));
    EXPECT_THAT(callsOf(focus(), octets({2, 0, 0xFF, 0xFF})), ElementsAre(focus().moveCall(700)));
}

TEST_F(FocusTest, AStopMayCarryAPosition) {
    start(focus());
    EXPECT_THAT(callsOf(focus(), octets({0, 0, 0x12, 0x34})), ElementsAre(focus().velocityCall(0, 0)));
    EXPECT_EQ(get(focus().position().instance()).octets, octets({0, 0, 0x12, 0x34}));
}

TEST_F(FocusStepperTest, ADeltaIsClampedToTheRangeOfTheStart) {
    start(focusStepper(), {4000, 0, 10000});
    expectDelta(focusStepper(), octets({1, 1, 0, 0x80}), 9000);
    expectDelta(focusStepper(), octets({1, 0xFF, 0, 0x80}), 0);
}

TEST_F(FocusStepperTest, CannotBeStoppedOrRunByDesign) {
    start(focusStepper());
    EXPECT_THAT(callsOf(focusStepper(), octets({3, 5, 0, 0})), IsEmpty());
    EXPECT_THAT(callsOf(focusStepper(), octets({3, 0xFB, 0, 0})), IsEmpty());
    EXPECT_THAT(callsOf(focusStepper(), octets({0, 0, 0, 0})), IsEmpty());
    EXPECT_THAT(core().logs(6), ElementsAre("handle_positionFocusStepperLens: stop focus (0)"));
}

TEST_F(IrisTest, OpensFullyWhenToldToCloseTooFarBecauseTheTargetWraps) {
    start(iris(), {100, 0, 1000});
    expectDelta(iris(), octets({1, 0xFF, 0, 0x40}), 1000);
    EXPECT_THAT(core().logs(6),
                ElementsAre("handle_positionIrisLens: gMinIrisPosition->0, gMaxIrisPosition->1000, "
                            "currentIrisPosition-> 100, deltaIrisPosition->250, calcDeltaIrisPosition->1000"));
}

TEST_F(IrisTest, IsNotHeldAtItsMinimumBecauseTheStoredCommandIsWhatIsCompared) {
    start(iris(), {500, 200, 1000});
    expectDelta(iris(), octets({1, 1, 0, 1}), 503);
    answer(iris(), {210, 200, 1000});
    // 210 - 100 is below the minimum, and above zero.
    expectDelta(iris(), octets({1, 0xFF, 0, 0x20}), 110);
}

TEST_F(IrisTest, IsSentToItsMinimumWhenTheStoredCommandIsSmallerThanThat) {
    // The command 01 01 00 01 is the number 0x01000101, and 01 01 01 01 is one of 0x01010101.
    const std::int64_t stored = 0x01000101;
    start(iris(), {stored + 5000, stored, stored + 100000});
    expectDelta(iris(), octets({1, 1, 0, 1}), stored + 5391);
    answer(iris(), {stored + 5000, stored + 1, stored + 100001});
    expectDelta(iris(), octets({1, 1, 0, 1}), stored + 1);
    expectDelta(iris(), octets({1, 1, 1, 1}), stored + 5392);
}

TEST_F(IrisTest, ComparesThePendingCommandAndMovesByTheRequest) {
    start(iris(), {1000000, 500000, 2000000});
    phase(iris().position(), MODE_SET_ACTION, octets({1, 1, 0, 0}));
    phase(iris().position(), MODE_SET_COMMIT, octets({1, 1, 0, 0x40}));
    EXPECT_THAT(core().calls(), ElementsAre(iris().readPositionCall(), iris().moveCall(500000)));
    phase(iris().position(), MODE_SET_ACTION, octets({1, 1, 0, 0x40}));
    phase(iris().position(), MODE_SET_COMMIT, octets({1, 1, 0, 0}));
    EXPECT_THAT(core().calls(), ElementsAre(iris().readPositionCall(), iris().moveCall(1000000)));
}

TEST_F(IrisTest, HasUnsignedPositions) {
    start(iris(), {3500000000, 100, 4000000000});
    expectDelta(iris(), octets({1, 1, 0, 0}), 3500000000);
    answer(iris(), {3500000000, 100, 3000000000});
    expectDelta(iris(), octets({1, 1, 0, 0}), 3000000000);
}

TEST_F(ZoomStepperTest, AnAbsoluteMoveGoesAtTheHighestSpeed) {
    start(zoomStepper(), {0, 0, 4000, 1, 500});
    EXPECT_THAT(callsOf(zoomStepper(), octets({2, 0, 0, 0x80})), ElementsAre(zoomStepper().moveCall(2000, 500)));
}

TEST_F(ZoomStepperTest, CannotBeStoppedOrRunByDesignAndSaysNothing) {
    start(zoomStepper());
    for (const std::string &value : {octets({0, 0, 0, 0}), octets({3, 0x7F, 0, 0}), octets({3, 0x80, 0, 0})}) {
        EXPECT_THAT(callsOf(zoomStepper(), value), IsEmpty());
        EXPECT_THAT(core().logs(6), IsEmpty());
        EXPECT_EQ(get(zoomStepper().position().instance()).octets, value);
    }
}

} // namespace lens_tests
