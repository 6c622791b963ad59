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
    static LogLine said(int level, const std::string &text) {
        return {level, std::string(GetParam().handler) + ": " + text};
    }
    static LogLine enter() {
        return said(7, "Enter.");
    }
    static LogLine done() {
        return said(7, "Done.");
    }
    static LogLine carriedOut(long number) {
        return said(6, GetParam().doneText + std::to_string(number) + " ");
    }

    /** One phase on the object's own handler, with the record of this phase only. */
    static Answer phase(int mode, long value) {
        core().clearRecord();
        return DirtyRequest(GetParam().instance, NewValue::integer(value)).runOwnHandler(mode);
    }
    /** A number that nobody checks: an ACTION and a COMMIT, with the record of the COMMIT only. */
    static Answer commit(long number) {
        EXPECT_THAT(phase(MODE_SET_ACTION, number), isAccepted());
        return phase(MODE_SET_COMMIT, number);
    }
    static void expectNumber(unsigned int number) {
        core().clearRecord();
        EXPECT_THAT(get(GetParam().instance), isOctets(octets({number})));
        EXPECT_THAT(core().calls(), IsEmpty());
        EXPECT_THAT(core().logs(), ElementsAre(enter(), done()));
    }
};

std::string handlerOf(const testing::TestParamInfo<Command> &command) {
    return command.param.handler;
}

INSTANTIATE_TEST_SUITE_P(Commands, PresetCommandTest, testing::Values(kGoTo, kStoreHere), handlerOf);

class PresetCommandFreshTest : public PresetCommandTest {};

INSTANTIATE_TEST_SUITE_P(Commands, PresetCommandFreshTest, testing::Values(kGoTo, kStoreHere), handlerOf);

} // namespace

TEST_P(PresetCommandTest, ASetLooksTheNumberUpAndCarriesItOut) {
    start();
    for (const long number : {0L, 1L, 7L, 12L, 255L}) {
        core().clearRecord();
        set(GetParam().instance, NewValue::integer(number));
        EXPECT_THAT(core().calls(), ElementsAre(find(number), GetParam().carryOutCall("home", number)));
        expectNumber(static_cast<unsigned int>(number));
    }
}

TEST_P(PresetCommandTest, ACommitIsLogged) {
    start();
    EXPECT_THAT(commit(7), isAccepted());
    EXPECT_THAT(core().logs(), ElementsAre(enter(), carriedOut(7), done()));
}

TEST_P(PresetCommandFreshTest, TheNumberIsZeroUntilTheFirstCommand) {
    static const Command *command = nullptr;
    command = &GetParam();
    expectInFreshProcess([] {
        start();
        EXPECT_EQ(get(command->instance).octets, octets({0}));
    });
}

TEST_P(PresetCommandTest, MinusOneIsKeptAs255AndAskedForAsItIs) {
    start();
    set(GetParam().instance, NewValue::integer(-1));
    EXPECT_THAT(core().calls(), ElementsAre(find(-1), GetParam().carryOutCall("home", -1)));
    EXPECT_THAT(core().logs(6), ElementsAre(carriedOut(-1).text));
    expectNumber(255);
}

TEST_P(PresetCommandTest, OnlyTheLowOctetOfANegativeNumberIsKept) {
    start();
    for (const auto &[number, kept] : {std::pair(-256L, 0U), std::pair(-251L, 5U), std::pair(-2147483648L, 0U)}) {
        core().clearRecord();
        set(GetParam().instance, NewValue::integer(number));
        EXPECT_EQ(core().calls().front(), find(number));
        expectNumber(kept);
    }
}

TEST_P(PresetCommandTest, ANumberAbove255IsRefused) {
    start();
    commit(3);
    for (const long number : {256L, 257L, 511L, 65536L, 2147483647L}) {
        EXPECT_THAT(phase(MODE_SET_RESERVE2, number), isRefused(SNMP_ERR_GENERR, SNMP_ERR_WRONGVALUE));
        EXPECT_THAT(core().logs(),
                    ElementsAre(enter(), said(3, "preset number (" + std::to_string(number) + ") outside range 0-255"),
                                done()));
    }
    for (const long number : {0L, 255L, -1L, -2147483648L}) {
        EXPECT_THAT(phase(MODE_SET_RESERVE2, number), isAccepted()) << number;
        EXPECT_THAT(core().logs(), ElementsAre(enter(), done())) << number;
    }
    EXPECT_THAT(core().calls(), IsEmpty());
    expectNumber(3);
}

TEST_P(PresetCommandTest, TheNumberIsKeptApartUntilTheCommit) {
    start();
    EXPECT_THAT(phase(MODE_SET_ACTION, 9), isAccepted());
    EXPECT_THAT(core().logs(), ElementsAre(enter(), done()));
    EXPECT_THAT(core().calls(), IsEmpty());
    expectNumber(0);
    EXPECT_THAT(phase(MODE_SET_COMMIT, 4), isAccepted());
    EXPECT_THAT(core().calls(), ElementsAre(find(9), GetParam().carryOutCall("home", 9)))
        << "the pending number counts, not the request's";
    expectNumber(9);
}

TEST_P(PresetCommandTest, AnUndoTakesTheCommittedNumberBack) {
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

TEST_P(PresetCommandTest, ANumberThatCannotBeLookedUpIsAnsweredAllTheSame) {
    start();
    core().fail(kFind, kRefused);
    EXPECT_THAT(commit(5), isAccepted());
    EXPECT_THAT(core().calls(), ElementsAre(find(5)));
    EXPECT_THAT(core().logs(), ElementsAre(enter(), logs::failed(GetParam().failedFind), done()));
    expectNumber(5);
}

TEST_P(PresetCommandTest, ACommandThatTheServiceRefusesIsAnsweredAllTheSame) {
    start();
    core().fail(GetParam().carryOut, kRefused);
    EXPECT_THAT(commit(5), isAccepted());
    EXPECT_THAT(core().calls(), ElementsAre(find(5), GetParam().carryOutCall("home", 5)));
    EXPECT_THAT(core().logs(), ElementsAre(enter(), logs::failed(GetParam().failedCarryOut), done()));
    expectNumber(5);
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
