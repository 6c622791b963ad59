// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Single commands of single drives: worked examples, and behaviour that looks wrong and is kept.
 */
#include <optional>
#include <tuple>

#include "lens_test.h"
#include "snmp_utils.h"

namespace lens_tests {

namespace {

/** A SET, and the target of the move that it makes. */
struct Step {
    std::string value;
    std::int64_t target;
    std::optional<Lens> lens = {}; ///< answered from now on
};

struct Example : Row {
    Drive drive;
    Lens lens;
    std::vector<Step> steps;
};

/** The command 01 01 00 01 is the number 0x01000101, and 01 01 01 01 is 0x01010101. */
constexpr std::int64_t kStored = 0x01000101;

Example example(const char *name, const Drive &drive, const Lens &lens, const std::vector<Step> &steps) {
    return {{name}, drive, lens, steps};
}

std::vector<Example> examples() {
    const std::string half = octets({1, 0x80, 0xFF, 0x7F});
    const std::string up = octets({1, 1, 0, 1});
    const std::string still = octets({1, 1, 0, 0});
    return {
        example("FocusDeltaOfHalfTheRangeDownwardsEndsAtTheMinimum", focus(), {5000, 0, 8000},
                {{half, 1000}, {half, 0, Lens{3000, 0, 8000}}}),
        example("FocusEndsOfThePositionAreTheEndsOfTheRange", focus(), {0, -300, 700},
                {{octets({2, 0, 0, 0}), -300}, {octets({2, 0, 0xFF, 0xFF}), 700}}),
        example("FocusStepperDeltaIsClampedToTheRangeOfTheStart", focusStepper(), {4000, 0, 10000},
                {{octets({1, 1, 0, 0x80}), 9000}, {octets({1, 0xFF, 0, 0x80}), 0}}),
        example("IrisOpensFullyWhenClosedTooFarBecauseTheTargetWraps", iris(), {100, 0, 1000},
                {{octets({1, 0xFF, 0, 0x40}), 1000}}),
        // 210 - 100 is below the minimum and above zero. The minimum is compared with the stored command.
        example("IrisMayPassItsMinimum", iris(), {500, 200, 1000},
                {{up, 503}, {octets({1, 0xFF, 0, 0x20}), 110, Lens{210, 200, 1000}}}),
        example("IrisGoesToItsMinimumWhenTheStoredCommandIsSmaller", iris(),
                {kStored + 5000, kStored, kStored + 100000},
                {{up, kStored + 5391},
                 {up, kStored + 1, Lens{kStored + 5000, kStored + 1, kStored + 100001}},
                 {octets({1, 1, 1, 1}), kStored + 5392}}),
        example("IrisHasUnsignedPositions", iris(), {3500000000, 100, 4000000000},
                {{still, 3500000000}, {still, 3000000000, Lens{3500000000, 100, 3000000000}}}),
        example("ZoomStepperMovesAtTheHighestSpeed", zoomStepper(), {0, 0, 4000, 1, 500},
                {{octets({2, 0, 0, 0x80}), 2000}}),
    };
}

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
        infoLines = core().logs(6);
        Lines calls = core().calls();
        EXPECT_EQ(get(drive.position().instance()).octets, value);
        return calls;
    }

    static inline Lines infoLines; ///< of the last SET
};

class LensMoveExampleTest : public LensExampleTest, public testing::WithParamInterface<Example> {};

INSTANTIATE_TEST_SUITE_P(Examples, LensMoveExampleTest, testing::ValuesIn(examples()), nameOf<Example>);

} // namespace

TEST_P(LensMoveExampleTest, MovesToItsTarget) {
    const Drive &drive = GetParam().drive;
    Lens lens = GetParam().lens;
    start(drive, lens);
    for (const Step &step : GetParam().steps) {
        SCOPED_TRACE(testing::PrintToString(step.value));
        lens = step.lens.value_or(lens);
        answer(drive, lens);
        Lines expected{drive.moveCall(step.target, lens.maxSpeed)};
        if (step.value[0] == 1) {
            expected.insert(expected.begin(), drive.readPositionCall());
        }
        EXPECT_EQ(callsOf(drive, step.value), expected);
    }
}

TEST_F(LensExampleTest, TheLineOfADeltaThatWraps) {
    start(iris(), {100, 0, 1000});
    callsOf(iris(), octets({1, 0xFF, 0, 0x40}));
    EXPECT_THAT(infoLines,
                ElementsAre("handle_positionIrisLens: gMinIrisPosition->0, gMaxIrisPosition->1000, "
                            "currentIrisPosition-> 100, deltaIrisPosition->250, calcDeltaIrisPosition->1000"));
}

TEST_F(LensExampleTest, TheIrisComparesThePendingCommandAndMovesByTheRequest) {
    start(iris(), {1000000, 500000, 2000000});
    for (const auto &[pending, requested, target] :
         {std::tuple(octets({1, 1, 0, 0}), octets({1, 1, 0, 0x40}), 500000),
          std::tuple(octets({1, 1, 0, 0x40}), octets({1, 1, 0, 0}), 1000000)}) {
        phase(iris().position(), MODE_SET_ACTION, pending);
        phase(iris().position(), MODE_SET_COMMIT, requested);
        EXPECT_THAT(core().calls(), ElementsAre(iris().readPositionCall(), iris().moveCall(target)));
    }
}

TEST_F(LensExampleTest, AStopMayCarryAPosition) {
    start(focus());
    EXPECT_THAT(callsOf(focus(), octets({0, 0, 0x12, 0x34})), ElementsAre(focus().velocityCall(0, 0)));
}

TEST_F(LensExampleTest, SteppersCannotBeStoppedOrRunByDesign) {
    for (const Drive &drive : {focusStepper(), zoomStepper()}) {
        start(drive);
        for (const std::string &value : {octets({3, 5, 0, 0}), octets({3, 0x7F, 0, 0}), octets({3, 0x80, 0, 0}),
                                         octets({3, 0xFB, 0, 0}), octets({0, 0, 0, 0})}) {
            EXPECT_THAT(callsOf(drive, value), IsEmpty());
            const bool logsStop = drive.logsStop && value[0] == 0;
            EXPECT_EQ(infoLines, logsStop ? Lines{"handle_positionFocusStepperLens: stop focus (0)"} : Lines{});
        }
    }
}

} // namespace lens_tests
