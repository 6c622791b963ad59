// SPDX-License-Identifier: Apache-2.0
#include "lens_test.h"

namespace lens_tests {

namespace {

/** The lens position objects, phase by phase. */
class LensPositionTest : public LensDriveTest {
protected:
    static void expectRefused(const Answer &answer, int returned, int error, const std::string &text) {
        EXPECT_THAT(answer, isRefused(returned, error)) << text;
        EXPECT_EQ(core().logs(), logs::from(object().handler, {said(object(), 3, text)}));
        EXPECT_THAT(core().calls(), IsEmpty());
    }
    static void expectQuiet(const Answer &answer) {
        EXPECT_THAT(answer, isAccepted());
        EXPECT_THAT(core().logs(), ElementsAre(enter(object()), done(object())));
        EXPECT_THAT(core().calls(), IsEmpty());
    }
};

INSTANTIATE_TEST_SUITE_P(Drives, LensPositionTest, testing::ValuesIn(allDrives()), nameOf<Drive>);

} // namespace

TEST_P(LensPositionTest, RangeAndTimeoutOfTheDriveAreAlwaysZero) {
    for (const std::size_t i : {0U, 1U}) {
        const Object &object = GetParam().objects.at(i);
        const std::string &text = GetParam().constantLines.at(i);
        forget();
        // Another value to start with, which the answer replaces.
        EXPECT_THAT(Request(object.instance(), NewValue::integer(7)).run(MODE_GET), isInteger(0));
        EXPECT_THAT(core().calls(), IsEmpty());
        EXPECT_EQ(core().logs(),
                  text.empty() ? logs::from(object.handler) : logs::from(object.handler, {said(object, 6, text)}));
    }
}

TEST_P(LensPositionTest, IsZeroBeforeAnyCommand) {
    EXPECT_THAT(get(object().instance()), isOctets(octets({0, 0, 0, 0})));
    EXPECT_EQ(pending(), octets({0, 0, 0, 0}));
}

TEST_P(LensPositionTest, OnlyFourOctetsAreTaken) {
    for (const std::size_t length : {0U, 1U, 2U, 3U, 4U, 5U, 300U}) {
        const Answer answer = phase(MODE_SET_RESERVE1, std::string(length, '\2'));
        if (length == 4) {
            expectQuiet(answer);
        } else {
            expectRefused(answer, SNMP_ERR_WRONGVALUE, SNMP_ERR_WRONGVALUE,
                          GetParam().word + " position not 4-bytes, val_len=" + std::to_string(length));
        }
    }
}

TEST_P(LensPositionTest, AWrongTypeIsNotMeasured) {
    forget();
    Request request(object().instance(), {ASN_OPAQUE, "abc"});
    EXPECT_THAT(request.runOwnHandler(MODE_SET_RESERVE1), isRefused(SNMP_ERR_WRONGTYPE, SNMP_ERR_WRONGTYPE));
    EXPECT_THAT(core().logs(), ElementsAre(enter(object()), done(object())));
}

TEST_P(LensPositionTest, AnotherModeIsAWrongValueThatReturnsGenErr) {
    for (unsigned int mode = 4; mode <= 0xFF; ++mode) {
        expectRefused(phase(MODE_SET_RESERVE2, command(mode, mode % 2 == 0 ? 5 : 0, 0)), SNMP_ERR_GENERR,
                      SNMP_ERR_WRONGVALUE, "unknown " + GetParam().word + " mode (" + std::to_string(mode) + ")");
    }
}

TEST_P(LensPositionTest, OnlyAStopMustHaveNoSpeed) {
    for (int speed = -128; speed <= 127; ++speed) {
        const Answer stop = phase(MODE_SET_RESERVE2, command(0, speed, 0x1234));
        if (speed == 0) {
            expectQuiet(stop);
        } else {
            expectRefused(stop, SNMP_ERR_WRONGVALUE, SNMP_ERR_WRONGVALUE,
                          "stop movement speed not zero(" + std::to_string(speed) + ")");
        }
        for (const unsigned int position : {0U, 0x3412U, 0xFFFFU}) {
            for (unsigned int mode = speed == 0 ? 0 : 1; mode <= 3; ++mode) {
                expectQuiet(phase(MODE_SET_RESERVE2, command(mode, speed, position)));
            }
        }
    }
}

TEST_P(LensPositionTest, ARefusedCommandLeavesTheLastOne) {
    const std::string last = command(0, 0, 0x3412);
    commit(last);
    for (const std::string &value : {command(0, 5, 1), command(4, 0, 1), std::string("abc")}) {
        DirtyRequest request(object().instance(), NewValue::text(value));
        EXPECT_THAT(request.run(value.size() == 4 ? MODE_SET_RESERVE2 : MODE_SET_RESERVE1), Not(isAccepted()));
        request.run(MODE_SET_FREE);
        EXPECT_EQ(committed(), last);
    }
    EXPECT_EQ(pending(), last);
}

TEST_P(LensPositionTest, ACommitAnswersWithThePendingCommand) {
    phase(MODE_SET_ACTION, command(2, -5, 0x1234));
    EXPECT_THAT(phase(MODE_SET_COMMIT, command(0, 0, 0x5678)), isOctets(command(2, -5, 0x1234)));
    EXPECT_EQ(committed(), command(2, -5, 0x1234));
}

TEST_P(LensPositionTest, ACommitMovesByTheRequest) {
    phase(MODE_SET_ACTION, command(0, 0, 0));
    phase(MODE_SET_COMMIT, command(2, 0, 0xFFFF));
    EXPECT_THAT(core().calls(), ElementsAre(GetParam().moveCall(kLens.max)));
}

TEST_P(LensPositionTest, ACommitOfAnotherModeMovesNothingAndReturnsGenErr) {
    for (unsigned int mode = 4; mode <= 0xFF; ++mode) {
        const std::string value = command(mode, 5, 0x1234);
        const Answer answer = commit(value);
        EXPECT_EQ(answer.octets, value);
        // The line shows the speed, not the mode.
        expectRefused(answer, SNMP_ERR_GENERR, SNMP_ERR_GENERR, "unknown " + GetParam().word + " mode (5)");
        EXPECT_EQ(committed(), value);
    }
}

} // namespace lens_tests
