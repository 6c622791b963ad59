// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The positions: their value at the start, the check of a command, and the value that they keep. The moves themselves
 * are those of positioning_motion_test.cpp.
 */
#include "position_objects.h"
#include "positioning_call_texts.h"
#include "positioning_test.h"

namespace {

struct PositionObject : Row {
    Axis axis;
    std::string handler;
    const char *instance;
    std::string atStart; ///< octets of the fixture's position
};

std::vector<PositionObject> positionObjects() {
    return {{{"pan"}, kPanAxis, "handle_positionPan", oids::positionPan, octets({0x28, 0x23, 0, 0})},
            {{"tilt"}, kTiltAxis, "handle_positionTilt", oids::positionTilt, octets({0xB8, 0x88, 0, 0})},
            {{"zoom"}, kZoomAxis, "handle_positionZoomLens", oids::positionZoomLens, octets({0x72, 0x4F, 0, 0})}};
}

class PositionStartTest : public ConnectedPositioningTest, public testing::WithParamInterface<PositionObject> {
protected:
    static bool isZoom() {
        return GetParam().axis == kZoomAxis;
    }
    /** One phase on the object's own handler, with the record of this phase only. */
    static Answer phase(int mode, const std::string &value) {
        core().clearRecord();
        return DirtyRequest(GetParam().instance, NewValue::text(value)).runOwnHandler(mode);
    }
    static void expectQuiet() {
        EXPECT_THAT(core().calls(), IsEmpty());
        EXPECT_EQ(core().logs(), logs::from(GetParam().handler));
    }
    static void expectValue(const std::string &value) {
        core().clearRecord();
        EXPECT_THAT(get(GetParam().instance), isOctets(value));
        expectQuiet();
    }
};

/** An object that has read its position. */
class PositionObjectTest : public PositionStartTest {
protected:
    void SetUp() override {
        PositionStartTest::SetUp();
        use(GetParam().instance);
    }

    static void expectAccepted(const std::string &value) {
        EXPECT_THAT(phase(MODE_SET_RESERVE2, value), isAccepted()) << testing::PrintToString(value);
        expectQuiet();
    }
    static void expectRefused(const std::string &value, int returned, const std::string &text) {
        EXPECT_THAT(phase(MODE_SET_RESERVE2, value), isRefused(returned, SNMP_ERR_WRONGVALUE));
        EXPECT_EQ(core().logs(), logs::from(GetParam().handler, {logs::error(GetParam().handler + ": " + text)}));
    }
    static void setTo(const std::string &value) {
        core().clearRecord();
        set(GetParam().instance, NewValue::text(value));
    }
    /** Checks the target of a SET on a camera on which all speeds are equal. */
    static void expectTarget(const std::string &value, const std::vector<int> &targets) {
        cameraVelocities({0, 0}, {0, 0}, {0, 0});
        setTo(value);
        EXPECT_EQ(core().calls().back(),
                  calls::move(GetParam().axis, targets.at(static_cast<std::size_t>(GetParam().axis)), "0"));
    }
};

INSTANTIATE_TEST_SUITE_P(Axes, PositionStartTest, testing::ValuesIn(positionObjects()), nameOf<PositionObject>);
INSTANTIATE_TEST_SUITE_P(Axes, PositionObjectTest, testing::ValuesIn(positionObjects()), nameOf<PositionObject>);

} // namespace

TEST_P(PositionStartTest, TheFirstRequestReadsThePositionOnceInAnyMode) {
    for (const int mode : Modes{MODE_GET, MODE_GETNEXT, MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION,
                                MODE_SET_FREE, MODE_SET_UNDO}) {
        SCOPED_TRACE(mode);
        positioning::ResetPositionObjects();
        phase(mode, command(3, 1, 0));
        EXPECT_THAT(core().calls(), ElementsAre(calls::kGetPosition, calls::kGetSoftPositions));
        EXPECT_EQ(core().logs(),
                  logs::from(GetParam().handler,
                             {logs::info("getInitialPosition: get_position FUZZ, 90000=pan,-10000=tilt,100=zoom"),
                              logs::info("getInitialPosition: get_position NTCIP,9000=pan,35000=tilt,20338=zoom")}));
        position(0, 0, 10);
        expectValue(GetParam().atStart);
        position(90000, -10000, 100);
    }
}

TEST_P(PositionStartTest, AnUnknownModeIsAFirstRequestToo) {
    phase(99, "");
    EXPECT_THAT(core().calls(), ElementsAre(calls::kGetPosition, calls::kGetSoftPositions));
}

TEST_P(PositionStartTest, AnUnreadablePositionIsZeroAndNotReadAgain) {
    core().once(service::kGetPosition, {kRefused, {}});
    EXPECT_EQ(get(GetParam().instance).octets, octets({0, 0, 0, 0}));
    EXPECT_THAT(core().calls(), ElementsAre(calls::kGetPosition));
    EXPECT_EQ(core().logs(), logs::from(GetParam().handler, {logs::failed(texts::kGetPosition)}));
    expectValue(octets({0, 0, 0, 0}));
}

TEST_P(PositionStartTest, ThePositionAtTheStartFillsFourOctets) {
    position(-20, -361000, 9);
    const std::string expected[] = {octets({0xFF, 0xFF, 0xFF, 0xFF}), octets({0x9D, 0xFF, 0xFF, 0xFF}),
                                    octets({0x1E, 0xFF, 0xFF, 0xFF})};
    EXPECT_EQ(get(GetParam().instance).octets, expected[GetParam().axis]);
}

TEST_P(PositionObjectTest, AnyLengthIsTakenAndMissingOctetsAreZero) {
    const std::string full = octets({3, 5, 0x34, 0x12}) + std::string(296, '\x77');
    const int velocities[][2] = {{0, 3246}, {0, 1623}, {0, 20}};
    for (const std::size_t length : {1U, 2U, 3U, 4U, 5U, 300U}) {
        SCOPED_TRACE(length);
        std::string read = full.substr(0, std::min<std::size_t>(length, 4));
        read.resize(4, '\0');
        setTo(full.substr(0, length));
        EXPECT_EQ(core().calls().back(), calls::run(GetParam().axis, velocities[GetParam().axis][length > 1], 5000));
        expectValue(read);
    }
    setTo("");
    EXPECT_THAT(core().calls(), ElementsAre(calls::stop(GetParam().axis)));
    expectValue(octets({0, 0, 0, 0}));
}

TEST_P(PositionObjectTest, ACommitMovesByTheRequestAndKeepsThePendingCommand) {
    phase(MODE_SET_ACTION, command(3, 5, 0x1234));
    const Answer answer = phase(MODE_SET_COMMIT, octets({0, 0, 0x78, 0x56, 0x9A}));
    EXPECT_THAT(answer, isOctets(isZoom() ? octets({0, 0, 0x78, 0x56, 0x9A}) : octets({3, 5, 0x34, 0x12})));
    EXPECT_THAT(core().calls(), ElementsAre(calls::stop(GetParam().axis)));
    expectValue(octets({3, 5, 0x34, 0x12}));
}

TEST_P(PositionObjectTest, ACommitOfAnUnknownCommandMovesNothing) {
    for (unsigned int mode = 4; mode <= 0xFF; ++mode) {
        phase(MODE_SET_ACTION, command(mode, 5, 100));
        EXPECT_THAT(phase(MODE_SET_COMMIT, command(mode, 5, 100)), isAccepted()) << mode;
        EXPECT_THAT(core().calls(), IsEmpty()) << mode;
        expectValue(command(mode, 5, 100));
    }
}

TEST_P(PositionObjectTest, WithoutAConnectionACommandIsKeptAllTheSame) {
    positioning::gApiCookie = nullptr;
    for (const unsigned int mode : {0U, 1U, 2U, 3U}) {
        phase(MODE_SET_ACTION, command(mode, 0, 7));
        EXPECT_THAT(phase(MODE_SET_COMMIT, command(mode, 0, 7)), isOctets(command(mode, 0, 7)));
        // The object of the zoom exists with a connection only.
        if (!isZoom()) {
            expectQuiet();
        }
        expectValue(command(mode, 0, 7));
    }
}

TEST_P(PositionObjectTest, AnUndoRestoresThePositionAtTheStart) {
    setAndUndo(GetParam().instance, NewValue::text(command(2, 5, 100)));
    phase(MODE_SET_COMMIT, command(0, 0, 0));
    expectValue(GetParam().atStart);
}

TEST_P(PositionObjectTest, ACommandDoesNotAffectTheOtherObjects) {
    for (const PositionObject &object : positionObjects()) {
        use(object.instance);
    }
    setTo(command(2, 5, 100));
    for (const PositionObject &object : positionObjects()) {
        EXPECT_EQ(get(object.instance).octets, object.axis == GetParam().axis ? command(2, 5, 100) : object.atStart)
            << object.name;
    }
}

TEST_P(PositionObjectTest, FourModesAreKnown) {
    for (unsigned int mode = 0; mode < 4; ++mode) {
        expectAccepted(command(mode, 0, 0));
    }
    for (unsigned int mode = 4; mode <= 0xFF; ++mode) {
        expectRefused(command(mode, 0, 0), SNMP_ERR_GENERR,
                      "unknown " + GetParam().name + " mode (" + std::to_string(mode) + ")");
    }
}

TEST_P(PositionObjectTest, AStopHasNoSpeed) {
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

TEST_P(PositionObjectTest, PanAndTiltTargetsLieOnTheCircle) {
    for (const unsigned int mode : {1U, 2U}) {
        for (const unsigned int position :
             {0U, 1U, 255U, 256U, 9000U, 32767U, 32768U, 35998U, 35999U, 36000U, 36001U, 40704U, 65280U, 65535U}) {
            if (isZoom() || position < 36000) {
                expectAccepted(command(mode, 5, position));
            } else {
                expectRefused(command(mode, 5, position), SNMP_ERR_WRONGVALUE,
                              "position=" + std::to_string(position) + " outside range 0-35999");
            }
        }
    }
}

TEST_P(PositionObjectTest, MissingOctetsAreCheckedAsZero) {
    for (const unsigned int mode : {0U, 1U, 2U, 3U}) {
        expectAccepted(octets({mode}));
        expectAccepted(octets({mode, 0}));
        expectAccepted(octets({mode, 0, 0xFF}));
    }
    expectAccepted("");
    expectRefused(octets({0, 1}), SNMP_ERR_WRONGVALUE, "stop movement speed not zero(1)");
}

TEST_P(PositionObjectTest, ARefusedCommandDoesNotReplaceTheLastOne) {
    setTo(command(0, 0, 0x1234));
    DirtyRequest request(GetParam().instance, NewValue::text(command(0, 1, 0)));
    request.run(MODE_SET_RESERVE1);
    EXPECT_EQ(request.run(MODE_SET_RESERVE2).requestError, SNMP_ERR_WRONGVALUE);
    request.run(MODE_SET_FREE);
    expectValue(command(0, 0, 0x1234));
    phase(MODE_SET_COMMIT, command(0, 0, 0));
    expectValue(command(0, 0, 0x1234));
}

TEST_P(PositionObjectTest, ADeltaFromTheUpperHalfIsNegative) {
    position(0, 0, 300);
    expectTarget(command(1, 5, 32768), {32320, -327680, 155});
}

TEST_P(PositionObjectTest, AnAbsoluteTargetFromTheUpperHalfIsPositive) {
    expectTarget(command(2, 5, isZoom() ? 0xFFFF : 35999), {359990, -10, 300});
}
