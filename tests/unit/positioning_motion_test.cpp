// SPDX-License-Identifier: Apache-2.0
#include "positioning_test.h"

namespace {

const char *const kInstances[] = {oids::positionPan, oids::positionTilt, oids::positionZoomLens};

enum class Kind { Stop, Delta, Absolute, Continuous };

/** Limits of the zoom. */
enum class ZoomBound { SoftLimits, DigitalZoom, Optics };

/** One command to an axis, and its effect at the fixture's position. */
struct Command : Row {
    Kind kind;
    Axis axis;
    int speed;
    int position;      ///< octets 2 and 3
    int target;        ///< position or velocity that the service is told
    int opticalTarget; ///< the same where the optics bound the zoom
    const char *fraction;
    Calls lines; ///< at info level
};

Command stop(const std::string &name, Axis axis, const std::string &line) {
    return {{name}, Kind::Stop, axis, 0, 0, 0, 0, "0", {"stopMovement: stop " + line}};
}

/** A move to a position. The lines are its own first one and the last ones. */
Command move(const std::string &name, Kind kind, Axis axis, int speed, int position, int target, int opticalTarget,
             const char *fraction, const std::string &first, const Calls &last) {
    const std::string function = kind == Kind::Delta ? "deltaMovement: " : "absoluteMovement: ";
    Calls lines{function + (kind == Kind::Delta ? "NTCIP delta " : "NTCIP absolute ") + first,
                function + "get_position FUZZ, 90000=pan,-10000=tilt,100=zoom",
                function + "get_position NTCIP,9000=pan,35000=tilt,20338=zoom"};
    for (const std::string &line : last) {
        lines.push_back(function + line);
    }
    return {{name}, kind, axis, speed, position, target, opticalTarget, fraction, lines};
}

Command run(const std::string &name, Axis axis, int speed, int velocity, const std::string &first,
            const std::string &last) {
    const Calls lines{"continuousMovement: NTCIP continuous " + first, "continuousMovement: countinous " + last};
    return row<Command>(name, Kind::Continuous, axis, speed, 0, velocity, velocity, "0", lines);
}

std::vector<Command> commands() {
    return {
        stop("StopPan", kPanAxis, "PAN"),
        stop("StopTilt", kTiltAxis, "TILT"),
        stop("StopZoom", kZoomAxis, "ZOOM"),
        move("DeltaPan", Kind::Delta, kPanAxis, 64, 100, 91000, 91000, "0.511749268",
             "PAN, speed=0x40(0.500%), delta=0x0064(100 hundrethdegree)",
             {"positive speed, clockwise", "new pan position FUZZ, 91000=pan,speed=80680,0.512"}),
        move("DeltaTilt", Kind::Delta, kTiltAxis, -64, 100, -11000, -11000, "0.511749268",
             "TILT, speed=0xffffffc0(-0.500%), delta=0x0064(100 hundrethdegree)",
             {"negative speed, tilt down", "new tilt position FUZZ, -11000=tilt,speed=40340,0.512"}),
        move("DeltaZoom", Kind::Delta, kZoomAxis, 64, 30000, 233, 156, "0.625",
             "ZOOM, speed=0x40(0.500%), delta=0x7530(30000 hundrethdegree)",
             {"telephoto zoom", "new zoom position FUZZ, 233=zoom,speed=20,0.625"}),
        move("AbsolutePan", Kind::Absolute, kPanAxis, -1, 12345, 123450, 123450, "0.0156860352",
             "PAN, speed=0xffffffff(-0.008%), position=0x3039(12345 hundrethdegree)",
             {"new pan position FUZZ, 123450=pan,speed=1359,0.016"}),
        move("AbsoluteTilt", Kind::Absolute, kTiltAxis, 127, 18001, -10, -10, "1.0078125",
             "TILT, speed=0x7f(0.992%), position=0x4651(18001 hundrethdegree)",
             {"new tilt position FUZZ, -10=tilt,speed=80000,1.008"}),
        move("AbsoluteZoom", Kind::Absolute, kZoomAxis, 0, 50000, 231, 155, "0.125",
             "ZOOM, speed=0x00(0.000%), position=0xc350(50000 hundrethdegree)",
             {"new zoom position FUZZ, 231=zoom,speed=0,0.125"}),
        run("ContinuousPan", kPanAxis, 64, 40365, "PAN, speed=0x40(0.500%)", "clockwise pan, speed=40365,0.511749"),
        run("ContinuousTilt", kTiltAxis, -64, -20182, "TILT, speed=0xffffffc0(-0.500%)",
            "downward tilt, speed=-20182,0.511749"),
        run("ContinuousZoom", kZoomAxis, -1, -20, "ZOOM, speed=0xffffffff(-0.008%)", "wide zoom, speed=-20,0.125000"),
    };
}

const char *instanceOf(const Command &each) {
    return kInstances[each.axis];
}

NewValue valueOf(const Command &each) {
    return NewValue::text(
        command(static_cast<unsigned int>(each.kind), each.speed, static_cast<unsigned int>(each.position)));
}

Ceilings ceilingsOf(Kind kind) {
    return kind == Kind::Continuous ? kRunCeilings : kMoveCeilings;
}

void append(Calls &result, const Calls &more) {
    result.insert(result.end(), more.begin(), more.end());
}

Calls zoomConversion(ZoomBound bound) {
    Calls result{calls::kGetSoftPositions};
    if (bound != ZoomBound::SoftLimits) {
        result.push_back(calls::kGetDigitalZoom);
    }
    if (bound == ZoomBound::Optics) {
        result.push_back(calls::kGetMaxZoom);
    }
    return result;
}

Calls speedMapping(Kind kind, bool rewritten) {
    Calls result{calls::kGetSoftVelocities};
    if (rewritten) {
        result.push_back(calls::setSoftVelocities(ceilingsOf(kind).pan, ceilingsOf(kind).tilt));
    }
    result.push_back(calls::kGetCameraVelocities);
    return result;
}

Calls expectedCalls(const Command &each, bool rewritten, ZoomBound bound) {
    if (each.kind == Kind::Stop) {
        return {calls::stop(each.axis)};
    }
    if (each.kind == Kind::Continuous) {
        Calls result{calls::kGetSoftPositions};
        append(result, speedMapping(each.kind, rewritten));
        result.push_back(calls::run(each.axis, each.target, 5000));
        return result;
    }
    Calls result{calls::kClearVelocityLimits, calls::kGetPosition, calls::kGetSoftPositions};
    if (each.axis == kZoomAxis) {
        append(result, zoomConversion(bound));
    }
    append(result, speedMapping(each.kind, rewritten));
    const bool optical = bound == ZoomBound::Optics;
    result.push_back(calls::move(each.axis, optical ? each.opticalTarget : each.target, each.fraction));
    return result;
}

class PositioningCommandTest : public ConnectedPositioningTest, public testing::WithParamInterface<Command> {
protected:
    void SetUp() override {
        ConnectedPositioningTest::SetUp();
        use(instanceOf(GetParam()));
    }
};

INSTANTIATE_TEST_SUITE_P(Commands, PositioningCommandTest, testing::ValuesIn(commands()), nameOf<Command>);

/** The lines of the conversions that the command makes, in between its own. */
std::vector<LogLine> expectedLines(const Command &each) {
    std::vector<LogLine> result;
    for (const std::string &line : each.lines) {
        result.push_back(logs::info(line));
    }
    if (each.kind == Kind::Stop) {
        return result;
    }
    const LogLine own = result.back();
    result.pop_back();
    if (each.kind != Kind::Continuous && each.axis == kZoomAxis) {
        result.push_back(logs::notice("convertNTCIPToZorvaZoom: get_soft_limits (min,max) pan(T)(1000,350000), "
                                      "tilt(T)(-80000,45000), zoom(T)(10,300)"));
    }
    result.push_back(logs::notice("speedPercentage: get_implementation_velocity_limits, "
                                  "1024=pvmin,132096=pvmax,512=tvmin,66048=tvmax,4=zvmin,4=zvmax"));
    result.push_back(own);
    return result;
}

} // namespace

TEST_P(PositioningCommandTest, MakesItsCallsInOrderInEachStateOfTheService) {
    for (const bool rewritten : {false, true}) {
        for (const ZoomBound bound : {ZoomBound::SoftLimits, ZoomBound::DigitalZoom, ZoomBound::Optics}) {
            softVelocities(rewritten ? kOtherCeilings : ceilingsOf(GetParam().kind));
            softZoom({10, 300, bound == ZoomBound::SoftLimits});
            digitalZoom(bound == ZoomBound::DigitalZoom);
            core().clearRecord();
            set(instanceOf(GetParam()), valueOf(GetParam()));
            EXPECT_THAT(core().calls(), ElementsAreArray(expectedCalls(GetParam(), rewritten, bound)))
                << "rewritten " << rewritten << ", bound " << static_cast<int>(bound);
        }
    }
}

TEST_P(PositioningCommandTest, LogsItsLinesInItsCommit) {
    DirtyRequest request(instanceOf(GetParam()), valueOf(GetParam()));
    for (const int phase : {MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION}) {
        request.run(phase);
    }
    core().clearRecord();
    ASSERT_THAT(request.run(MODE_SET_COMMIT), isAccepted());
    const char *const names[] = {"handle_positionPan", "handle_positionTilt", "handle_positionZoomLens"};
    std::vector<LogLine> expected = expectedLines(GetParam());
    expected.insert(expected.begin(), logs::debug(names[GetParam().axis] + ": Enter."s));
    expected.push_back(logs::debug(names[GetParam().axis] + ": Done."s));
    EXPECT_THAT(core().logs(), ElementsAreArray(expected));
}

TEST_P(PositioningCommandTest, AFailedMoveIsNotReportedToTheManager) {
    for (const char *function :
         {service::kClearVelocityLimits, service::kGetPosition, service::kGetSoftPositions, service::kGetSoftVelocities,
          service::kSetSoftVelocities, service::kGetCameraVelocities, service::kMove, service::kSetVelocity,
          service::kSetVelocityWithTimeout}) {
        core().fail(function, kRefused);
    }
    set(instanceOf(GetParam()), valueOf(GetParam()));
    EXPECT_THAT(core().logs(3), Not(IsEmpty()));
    EXPECT_EQ(get(instanceOf(GetParam())).octets, valueOf(GetParam()).content);
}
