// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The commands that take the number of a preset, phase by phase.
 */
#include "fresh_process.h"
#include "presets_test.h"
#include "snmp_utils.h"

namespace presets {

namespace {

class PresetCommandTest : public PresetsTest, public testing::WithParamInterface<Command> {
protected:
    static LogLine carriedOut(long number) {
        return logs::info(GetParam().handler() + ": " + GetParam().doneText + std::to_string(number) + " ");
    }
    static Calls commandCalls(long number) {
        return {find(number), GetParam().carryOutCall("home", number)};
    }
    /** One phase on the object's own handler, with the record of this phase only. */
    static Answer phase(int mode, long value) {
        core().clearRecord();
        return DirtyRequest(GetParam().instance, NewValue::integer(value)).runOwnHandler(mode);
    }
    /** An ACTION and a COMMIT without a check, with the record of the COMMIT only. */
    static void commit(long number) {
        EXPECT_THAT(phase(MODE_SET_ACTION, number), isAccepted());
        EXPECT_THAT(phase(MODE_SET_COMMIT, number), isAccepted());
    }
    static void expectLines(const std::vector<LogLine> &between) {
        EXPECT_EQ(core().logs(), logs::from(GetParam().handler(), between));
    }
    static void expectNumber(unsigned int number) {
        core().clearRecord();
        EXPECT_THAT(get(GetParam().instance), isOctets(octets({number})));
        EXPECT_THAT(core().calls(), IsEmpty());
        expectLines({});
    }
};

class PresetCommandFreshTest : public PresetCommandTest {};

INSTANTIATE_TEST_SUITE_P(Commands, PresetCommandTest, testing::Values(kGoTo, kStoreHere), nameOf<Command>);
INSTANTIATE_TEST_SUITE_P(Commands, PresetCommandFreshTest, testing::Values(kGoTo, kStoreHere), nameOf<Command>);

} // namespace

TEST_P(PresetCommandTest, ASetLooksTheNumberUpCarriesItOutAndKeepsItsLowOctet) {
    start();
    for (const auto &[number, kept] :
         {std::pair(0L, 0U), std::pair(1L, 1U), std::pair(7L, 7U), std::pair(12L, 12U), std::pair(255L, 255U),
          std::pair(-1L, 255U), std::pair(-256L, 0U), std::pair(-251L, 5U), std::pair(-2147483648L, 0U)}) {
        core().clearRecord();
        set(GetParam().instance, NewValue::integer(number));
        EXPECT_EQ(core().calls(), commandCalls(number));
        EXPECT_THAT(core().logs(6), ElementsAre(carriedOut(number).text));
        expectNumber(kept);
        commit(number);
        expectLines({carriedOut(number)});
    }
}

TEST_P(PresetCommandFreshTest, TheNumberIsZeroUntilTheFirstCommand) {
    expectInFreshProcess([] {
        start();
        expectNumber(0);
    });
}

TEST_P(PresetCommandTest, ANumberAbove255IsRefused) {
    start();
    commit(3);
    for (const long number : {256L, 257L, 511L, 65536L, 2147483647L}) {
        EXPECT_THAT(phase(MODE_SET_RESERVE2, number), isRefused(SNMP_ERR_GENERR, SNMP_ERR_WRONGVALUE));
        expectLines({logs::error(GetParam().handler() + ": preset number (" + std::to_string(number) +
                                 ") outside range 0-255")});
        EXPECT_THAT(core().calls(), IsEmpty());
    }
    for (const long number : {0L, 255L, -1L, -2147483648L}) {
        EXPECT_THAT(phase(MODE_SET_RESERVE2, number), isAccepted()) << number;
        expectLines({});
        EXPECT_THAT(core().calls(), IsEmpty());
    }
    expectNumber(3);
}

TEST_P(PresetCommandTest, ACommitCarriesOutThePendingNumberNotTheRequests) {
    start();
    phase(MODE_SET_ACTION, 9);
    EXPECT_THAT(phase(MODE_SET_COMMIT, 4), isAccepted());
    EXPECT_EQ(core().calls(), commandCalls(9));
    expectNumber(9);
}

TEST_P(PresetCommandTest, AnUndoRestoresTheCommittedNumber) {
    start();
    for (const auto &[committed, kept] : {std::pair(6L, 6L), std::pair(-1L, 255L)}) {
        commit(committed);
        core().clearRecord();
        setAndUndo(GetParam().instance, NewValue::integer(200));
        EXPECT_THAT(core().calls(), IsEmpty());
        expectNumber(static_cast<unsigned int>(kept));
        phase(MODE_SET_COMMIT, 200);
        EXPECT_EQ(core().calls().front(), find(kept));
    }
}

TEST_P(PresetCommandTest, ACommandThatTheServiceRefusesIsAnsweredAllTheSame) {
    start();
    core().fail(GetParam().carryOut, kRefused);
    commit(5);
    EXPECT_EQ(core().calls(), commandCalls(5));
    expectLines({logs::failed(GetParam().failedCarryOut)});
    expectNumber(5);
    core().fail(kFind, kRefused);
    commit(6);
    EXPECT_THAT(core().calls(), ElementsAre(find(6)));
    expectLines({logs::failed(GetParam().failedFind)});
    expectNumber(6);
}

TEST_P(PresetCommandTest, WithoutTheServiceANumberIsOnlyKept) {
    for (const bool hasTarget : {true, false}) {
        if (!hasTarget) {
            core().targets("presets_tours", {});
        }
        startWithoutService();
        set(GetParam().instance, NewValue::integer(5));
        EXPECT_THAT(core().calls(), IsEmpty());
        EXPECT_THAT(core().logs(3), IsEmpty());
        EXPECT_THAT(core().logs(6), IsEmpty());
        expectNumber(5);
        set(GetParam().instance, NewValue::integer(0));
        DeinitPresets();
        UnregisterAll();
    }
}

} // namespace presets
