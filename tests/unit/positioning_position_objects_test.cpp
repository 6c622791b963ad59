// SPDX-License-Identifier: Apache-2.0
#include "positioning_position_objects.h"

namespace {

/** Phases and values kept between them. */
class PositionPhasesTest : public PositionObjectTest {};

/** The check of a command. */
class PositionCheckTest : public PositionObjectTest {
protected:
    void SetUp() override {
        PositionObjectTest::SetUp();
        use(GetParam().instance);
    }

    static void expectAccepted(const std::string &value) {
        EXPECT_THAT(phase(MODE_SET_RESERVE2, value), isAccepted()) << testing::PrintToString(value);
        EXPECT_THAT(core().logs(), ElementsAre(enter(), done())) << testing::PrintToString(value);
    }

    static void expectRefused(const std::string &value, int returned, const std::string &text) {
        EXPECT_THAT(phase(MODE_SET_RESERVE2, value), isRefused(returned, SNMP_ERR_WRONGVALUE));
        EXPECT_THAT(core().logs(), ElementsAre(enter(), logs::error(GetParam().name + ": " + text), done()));
    }
};

const auto kName = [](const auto &object) { return std::string(object.param.word); };

INSTANTIATE_TEST_SUITE_P(Axes, PositionPhasesTest, testing::ValuesIn(positionObjects()), kName);
INSTANTIATE_TEST_SUITE_P(Axes, PositionCheckTest, testing::ValuesIn(positionObjects()), kName);

} // namespace

TEST_P(PositionPhasesTest, TheFirstRequestReadsThePositionOnceWhateverItsModeIs) {
    for (const int mode : Modes{MODE_GET, MODE_GETNEXT, MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION,
                                MODE_SET_FREE, MODE_SET_UNDO}) {
        positioning::ResetPositionObjects();
        phase(mode, command(3, 1, 0));
        EXPECT_THAT(core().calls(), ElementsAre(calls::getPosition(), calls::getSoftPositions())) << mode;
        EXPECT_THAT(
            core().logs(),
            ElementsAre(enter(), logs::info("getInitialPosition: get_position FUZZ, 90000=pan,-10000=tilt,100=zoom"),
                        logs::info("getInitialPosition: get_position NTCIP,9000=pan,35000=tilt,20338=zoom"), done()))
            << mode;
        position(0, 0, 10);
        EXPECT_EQ(phase(MODE_GET).octets, GetParam().atStart) << mode;
        EXPECT_THAT(core().calls(), IsEmpty()) << mode;
        EXPECT_THAT(core().logs(), ElementsAre(enter(), done())) << mode;
        position(90000, -10000, 100);
    }
}

TEST_P(PositionPhasesTest, AnUnknownModeIsAFirstRequestToo) {
    phase(99);
    EXPECT_THAT(core().calls(), ElementsAre(calls::getPosition(), calls::getSoftPositions()));
}

TEST_P(PositionPhasesTest, APositionThatCannotBeReadIsZeroAndNotReadAgain) {
    core().once(service::kGetPosition, {kRefused, {}});
    EXPECT_EQ(get(GetParam().instance).octets, octets({0, 0, 0, 0}));
    EXPECT_EQ(core().logs(3).size(), 1U);
    EXPECT_EQ(phase(MODE_GET).octets, octets({0, 0, 0, 0}));
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_P(PositionPhasesTest, ThePositionAtTheStartFillsFourOctets) {
    position(-20, -361000, 9);
    const std::string expected[] = {octets({0xFF, 0xFF, 0xFF, 0xFF}), octets({0x9D, 0xFF, 0xFF, 0xFF}),
                                    octets({0x1E, 0xFF, 0xFF, 0xFF})};
    EXPECT_EQ(get(GetParam().instance).octets, expected[GetParam().axis]);
}

TEST_P(PositionPhasesTest, AGetAnswersTheLastCommandAndAsksNobody) {
    use(GetParam().instance);
    set(GetParam().instance, NewValue::text(command(3, -7, 0x1234)));
    core().clearRecord();
    const Answer answer = get(GetParam().instance);
    EXPECT_THAT(answer, isAccepted());
    EXPECT_EQ(answer.type, ASN_OCTET_STR);
    EXPECT_EQ(answer.octets, octets({3, 0xF9, 0x34, 0x12}));
    EXPECT_THAT(core().calls(), IsEmpty());
    EXPECT_THAT(core().logs(), ElementsAre(enter(), done()));
}

TEST_P(PositionPhasesTest, AnyLengthIsTakenAndMissingOctetsAreZero) {
    use(GetParam().instance);
    const std::string full = octets({3, 5, 0x34, 0x12}) + std::string(296, '\x77');
    for (const std::size_t length : {1U, 2U, 3U, 4U, 5U, 300U}) {
        SCOPED_TRACE(length);
        const std::string value = full.substr(0, length);
        std::string read = value.substr(0, 4);
        read.resize(4, '\0');
        core().clearRecord();
        set(GetParam().instance, NewValue::text(value));
        EXPECT_EQ(pending(), read);
        EXPECT_EQ(get(GetParam().instance).octets, read);
        const int velocities[][2] = {{0, 3246}, {0, 1623}, {0, 20}};
        EXPECT_EQ(core().calls().back(), calls::run(GetParam().axis, velocities[GetParam().axis][length > 1], 5000));
    }
}

TEST_P(PositionPhasesTest, AnEmptyCommandStops) {
    use(GetParam().instance);
    set(GetParam().instance, NewValue::text(""));
    EXPECT_THAT(core().calls(), ElementsAre(calls::stop(GetParam().axis)));
    EXPECT_EQ(get(GetParam().instance).octets, octets({0, 0, 0, 0}));
}

TEST_P(PositionPhasesTest, ACommitMovesByTheRequestAndKeepsThePendingCommand) {
    use(GetParam().instance);
    phase(MODE_SET_ACTION, command(3, 5, 0x1234));
    const Answer answer = phase(MODE_SET_COMMIT, octets({0, 0, 0x78, 0x56, 0x9A}));
    EXPECT_THAT(answer, isAccepted());
    EXPECT_THAT(core().calls(), ElementsAre(calls::stop(GetParam().axis)));
    EXPECT_EQ(last(), octets({3, 5, 0x34, 0x12}));
    EXPECT_EQ(answer.type, ASN_OCTET_STR);
    EXPECT_EQ(answer.octets, isZoom() ? octets({0, 0, 0x78, 0x56, 0x9A}) : octets({3, 5, 0x34, 0x12}));
}

TEST_P(PositionPhasesTest, ACommitOfAnUnknownCommandMovesNothing) {
    use(GetParam().instance);
    for (unsigned int mode = 4; mode <= 0xFF; ++mode) {
        phase(MODE_SET_ACTION, command(mode, 5, 100));
        EXPECT_THAT(phase(MODE_SET_COMMIT, command(mode, 5, 100)), isAccepted()) << mode;
        EXPECT_THAT(core().calls(), IsEmpty()) << mode;
        EXPECT_EQ(last(), command(mode, 5, 100));
    }
}

TEST_P(PositionPhasesTest, WithoutAConnectionACommandIsKeptAllTheSame) {
    use(GetParam().instance);
    positioning::gApiCookie = nullptr;
    for (const unsigned int mode : {0U, 1U, 2U, 3U}) {
        phase(MODE_SET_ACTION, command(mode, 0, 7));
        const Answer answer = phase(MODE_SET_COMMIT, command(mode, 0, 7));
        EXPECT_THAT(answer, isAccepted());
        EXPECT_EQ(answer.octets, command(mode, 0, 7));
        EXPECT_EQ(last(), command(mode, 0, 7));
        // The zoom object never meets this, as it exists with a connection only.
        if (!isZoom()) {
            EXPECT_THAT(core().calls(), IsEmpty());
            EXPECT_THAT(core().logs(), ElementsAre(enter(), done()));
        }
    }
}

TEST_P(PositionPhasesTest, AnUndoTakesTheLastCommandBack) {
    use(GetParam().instance);
    setAndUndo(GetParam().instance, NewValue::text(command(2, 5, 100)));
    EXPECT_EQ(pending(), GetParam().atStart);
    set(GetParam().instance, NewValue::text(command(0, 0, 0x1234)));
    setAndUndo(GetParam().instance, NewValue::text(command(2, 5, 100)));
    EXPECT_EQ(pending(), command(0, 0, 0x1234));
    EXPECT_EQ(get(GetParam().instance).octets, command(0, 0, 0x1234));
}

TEST_P(PositionPhasesTest, ACommandLeavesTheOtherObjects) {
    for (const PositionObject &object : positionObjects()) {
        use(object.instance);
    }
    set(GetParam().instance, NewValue::text(command(2, 5, 100)));
    for (const PositionObject &object : positionObjects()) {
        EXPECT_EQ(get(object.instance).octets, object.axis == GetParam().axis ? command(2, 5, 100) : object.atStart)
            << object.name;
    }
}

TEST_P(PositionCheckTest, FourModesAreKnown) {
    for (unsigned int mode = 0; mode < 4; ++mode) {
        expectAccepted(command(mode, 0, 0));
    }
    for (unsigned int mode = 4; mode <= 0xFF; ++mode) {
        expectRefused(command(mode, 0, 0), SNMP_ERR_GENERR,
                      std::string("unknown ") + GetParam().word + " mode (" + std::to_string(mode) + ")");
    }
}

TEST_P(PositionCheckTest, AStopHasNoSpeed) {
    for (int speed = -128; speed <= 127; ++speed) {
        if (speed == 0) {
            expectAccepted(command(0, speed, 0xFFFF));
        } else {
            expectRefused(command(0, speed, 0), SNMP_ERR_WRONGVALUE,
                          "stop movement speed not zero(" + std::to_string(speed) + ")");
        }
        expectAccepted(command(3, speed, 0xFFFF));
    }
}

TEST_P(PositionCheckTest, PanAndTiltTargetsLieOnTheCircle) {
    for (const unsigned int mode : {1U, 2U}) {
        for (const unsigned int position : {0U, 1U, 255U, 256U, 9000U, 32767U, 32768U, 35998U, 35999U}) {
            expectAccepted(command(mode, 5, position));
        }
        for (const unsigned int position : {36000U, 36001U, 40704U, 65280U, 65535U}) {
            if (isZoom()) {
                expectAccepted(command(mode, 5, position));
            } else {
                expectRefused(command(mode, 5, position), SNMP_ERR_WRONGVALUE,
                              "position=" + std::to_string(position) + " outside range 0-35999");
            }
        }
    }
}

TEST_P(PositionCheckTest, MissingOctetsAreCheckedAsZero) {
    for (const unsigned int mode : {0U, 1U, 2U, 3U}) {
        expectAccepted(octets({mode}));
        expectAccepted(octets({mode, 0}));
        expectAccepted(octets({mode, 0, 0xFF}));
    }
    expectAccepted("");
    expectRefused(octets({0, 1}), SNMP_ERR_WRONGVALUE, "stop movement speed not zero(1)");
}

TEST_P(PositionCheckTest, ARefusedCommandLeavesTheLastOne) {
    set(GetParam().instance, NewValue::text(command(0, 0, 0x1234)));
    DirtyRequest request(GetParam().instance, NewValue::text(command(0, 1, 0)));
    request.run(MODE_SET_RESERVE1);
    EXPECT_EQ(request.run(MODE_SET_RESERVE2).requestError, SNMP_ERR_WRONGVALUE);
    request.run(MODE_SET_FREE);
    EXPECT_EQ(last(), command(0, 0, 0x1234));
    EXPECT_EQ(pending(), command(0, 0, 0x1234));
}

TEST_P(PositionCheckTest, ADeltaFromTheUpperHalfIsNegative) {
    cameraVelocities({0, 0}, {0, 0}, {0, 0});
    position(0, 0, 300);
    set(GetParam().instance, NewValue::text(command(1, 5, 32768)));
    const int targets[] = {32320, -327680, 155};
    EXPECT_EQ(core().calls().back(), calls::move(GetParam().axis, targets[GetParam().axis], "0"));
}

TEST_P(PositionCheckTest, AnAbsoluteTargetFromTheUpperHalfIsPositive) {
    cameraVelocities({0, 0}, {0, 0}, {0, 0});
    set(GetParam().instance, NewValue::text(command(2, 5, isZoom() ? 0xFFFF : 35999)));
    const int targets[] = {359990, -10, 300};
    EXPECT_EQ(core().calls().back(), calls::move(GetParam().axis, targets[GetParam().axis], "0"));
}
