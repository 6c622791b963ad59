// SPDX-License-Identifier: Apache-2.0
// Pan, tilt and zoom through the whole chain: a manager's SET moves the simulated camera.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "camera_agent.h"
#include "eventually.h"
#include "positioning_objects.h"

namespace {

using namespace harness;
using namespace positioning_objects;
using nlohmann::json;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char *kTarget = "positioning/1";

class Positioning : public CameraAgent {
protected:
    explicit Positioning(const std::string &camera = "dome") : CameraAgent(camera) {}

    json axis(const std::string &name) const {
        return targetState(camera_, kTarget).at(name);
    }

    bool rests(const std::string &name) const {
        const json now = axis(name);
        return now.at("velocity") == 0 && now.at("target").is_null();
    }

    /** Waits until an axis rests at a position. */
    testing::AssertionResult arrives(const std::string &name, int position) const {
        const bool there =
            eventually(seconds(15), [&] { return rests(name) && axis(name).at("position") == position; });
        return there ? testing::AssertionSuccess() : testing::AssertionFailure() << name << ": " << axis(name);
    }

    testing::AssertionResult moves(const std::string &name) const {
        const bool moving = eventually(seconds(10), [&] { return axis(name).at("velocity") != 0; });
        return moving ? testing::AssertionSuccess() : testing::AssertionFailure() << name << ": " << axis(name);
    }

    testing::AssertionResult comesToRest(const std::string &name) const {
        const bool resting = eventually(seconds(15), [&] { return rests(name); });
        return resting ? testing::AssertionSuccess() : testing::AssertionFailure() << name << ": " << axis(name);
    }
};

class FixedCameraPositioning : public Positioning {
protected:
    FixedCameraPositioning() : Positioning("minimal") {}
};

} // namespace

TEST_F(Positioning, AnAbsoluteMoveGetsThere) {
    set(kPositionPan, absolute(127, 9000));
    EXPECT_TRUE(arrives("pan", 90000));
    set(kPositionTilt, absolute(127, 27000 + 4500));
    EXPECT_TRUE(arrives("tilt", -45000));
    set(kPositionZoomLens, absolute(127, 65535));
    EXPECT_TRUE(arrives("zoom", 300));
    EXPECT_EQ(get(kPositionPan), "0x027f2823");
    EXPECT_EQ(axis("pan").at("position"), 90000) << "another axis has moved it";
}

TEST_F(Positioning, AnAbsoluteMoveMakesTheseCommandsOfTheService) {
    const CameraEvents events(camera_);
    set(kPositionPan, absolute(127, 9000));
    ASSERT_TRUE(events.waitFor({{"event", "move_stopped"}, {"axis", "pan"}}));
    EXPECT_THAT(operations(events), ElementsAre("clear_velocity_limits_send", "set_soft_velocity_limits_send",
                                                "move_to_position_with_speed_percentage_send"));
    const json command = events.matching({{"operation", "move_to_position_with_speed_percentage_send"}}).at(0);
    EXPECT_EQ(command.at("arguments").at(1), 90000);
    EXPECT_EQ(command.at("arguments").at(9), 500);
}

TEST_F(Positioning, ADeltaMoveGoesTheWayOfItsSpeed) {
    setField(camera_, kTarget, "pan.position", 10000);
    set(kPositionPan, delta(-100, 1500));
    EXPECT_TRUE(arrives("pan", 355000));
    set(kPositionPan, delta(100, -30000));
    EXPECT_TRUE(arrives("pan", 55000));
    set(kPositionTilt, delta(-127, 1000));
    EXPECT_TRUE(arrives("tilt", -10000));
    set(kPositionZoomLens, delta(127, 65535 / 2));
    EXPECT_TRUE(arrives("zoom", 155));
}

TEST_F(Positioning, AContinuousMoveStopsByItsTimeout) {
    const CameraEvents events(camera_);
    setInteger(kTimeoutPan, 300);
    set(kPositionPan, continuous(64));
    ASSERT_TRUE(events.waitFor({{"event", "move_timed_out"}, {"axis", "pan"}}));
    EXPECT_TRUE(comesToRest("pan"));
    EXPECT_GT(axis("pan").at("position"), 0);
    EXPECT_EQ(axis("pan").at("position").get<int>(), events.matching({{"event", "move_stopped"}}).at(0).at("position"));
    EXPECT_EQ(get(kPositionPan), "0x03400000") << "what was commanded, not what came of it";
}

TEST_F(Positioning, AStopEndsAMoveHalfWay) {
    set(kPositionPan, absolute(20, 17000));
    ASSERT_TRUE(moves("pan"));
    set(kPositionPan, stop());
    EXPECT_TRUE(comesToRest("pan"));
    EXPECT_GT(axis("pan").at("position"), 0);
    EXPECT_LT(axis("pan").at("position"), 170000);
    set(kPositionPan, continuous(-100));
    ASSERT_TRUE(moves("pan"));
    set(kPositionPan, continuous(0));
    EXPECT_TRUE(comesToRest("pan"));
}

TEST_F(Positioning, FullSpeedDownStopsAtTheLimit) {
    const CameraEvents events(camera_);
    set(kPositionTilt, continuous(-128));
    ASSERT_TRUE(events.waitFor({{"event", "limit_reached"}, {"axis", "tilt"}}));
    EXPECT_TRUE(arrives("tilt", -90000));
}

TEST_F(Positioning, AllAxesStartAndStopInOneRequest) {
    const auto all = [this](const std::string &command) {
        const Result result = manager_.set(
            {octets(kPositionPan, command), octets(kPositionTilt, command), octets(kPositionZoomLens, command)});
        EXPECT_TRUE(result.ok()) << result;
    };
    setField(camera_, kTarget, "tilt.position", -80000);
    all(continuous(10));
    for (const char *name : {"pan", "tilt", "zoom"}) {
        EXPECT_TRUE(moves(name));
    }
    all(stop());
    for (const char *name : {"pan", "tilt", "zoom"}) {
        EXPECT_TRUE(comesToRest(name));
    }
    for (const char *oid : {kPositionPan, kPositionTilt, kPositionZoomLens}) {
        EXPECT_EQ(get(oid), "0x00000000");
    }
}

TEST_F(Positioning, OneBadVariableOfTwoMovesNothing) {
    const CameraEvents events(camera_);
    const struct {
        std::vector<Variable> request;
        ErrorStatus error;
        long index;
    } cases[] = {
        {{octets(kPositionPan, absolute(50, 100)), octets(kPositionTilt, absolute(50, 36000))},
         ErrorStatus::WrongValue,
         2},
        {{octets(kPositionPan, command(4)), octets(kPositionTilt, absolute(50, 100))}, ErrorStatus::WrongValue, 1},
        {{octets(kPositionTilt, absolute(50, 100)), integer(kPositionPan, 1)}, ErrorStatus::WrongType, 2},
        {{octets(kPositionZoomLens, absolute(50, 100)), integer(kTimeoutPan, 65536)}, ErrorStatus::WrongValue, 2},
        {{octets(kPositionZoomLens, command(0, 1)), octets(kPositionPan, absolute(50, 100))},
         ErrorStatus::WrongValue,
         1},
        {{octets(kPositionPan, absolute(50, 100)), integer(kRangePanLeftLimit, 1)}, ErrorStatus::NotWritable, 2},
    };
    for (const auto &each : cases) {
        const Result result = manager_.set(each.request);
        EXPECT_EQ(result.error, each.error) << each.request[0] << " " << each.request[1];
        EXPECT_EQ(result.errorIndex, each.index) << each.request[0] << " " << each.request[1];
    }
    // The answer to this one shows that the camera had nothing to do before.
    set(kPositionPan, stop());
    ASSERT_TRUE(events.waitFor({{"event", "command"}}));
    EXPECT_THAT(operations(events), ElementsAre("set_velocity_send"));
    EXPECT_EQ(get(kPositionTilt), "0x00000000");
    EXPECT_THAT(events.matching({{"event", "move_started"}}), IsEmpty());
}

TEST_F(Positioning, OctetsThatAreMissingAreZero) {
    setField(camera_, kTarget, "pan.position", 20000);
    set(kPositionPan, std::string("\x02\x7F", 2));
    EXPECT_TRUE(arrives("pan", 0));
    EXPECT_EQ(get(kPositionPan), "0x027f0000");
    set(kPositionPan, std::string("\x02\x7F\x64", 3));
    EXPECT_TRUE(arrives("pan", 1000));
    set(kPositionPan, "");
    EXPECT_EQ(get(kPositionPan), "0x00000000");
    set(kPositionPan, absolute(127, 9000) + std::string(300, 'x'));
    EXPECT_TRUE(arrives("pan", 90000));
    EXPECT_EQ(get(kPositionPan), "0x027f2823");
}

TEST_F(Positioning, BeforeTheFirstCommandAGetAnswersThePosition) {
    setField(camera_, kTarget, "pan.position", 90000);
    setField(camera_, kTarget, "tilt.position", -10);
    setField(camera_, kTarget, "zoom.position", 300);
    EXPECT_EQ(get(kPositionPan), "0x28230000");
    EXPECT_EQ(get(kPositionTilt), "0x9f8c0000");
    EXPECT_EQ(get(kPositionZoomLens), "0xffff0000");
    setField(camera_, kTarget, "pan.position", 0);
    EXPECT_EQ(get(kPositionPan), "0x28230000") << "it is read at the first request only";
}

TEST_F(Positioning, AWalkWhileTheCameraMovesAnswersAsOneAtRest) {
    const std::vector<Variable> before = manager_.walk(kSubtree);
    setInteger(kTimeoutPan, 0);
    set(kPositionPan, continuous(127));
    ASSERT_TRUE(moves("pan"));
    std::vector<Variable> during = manager_.walk(kSubtree);
    EXPECT_NE(axis("pan").at("velocity"), 0);
    EXPECT_EQ(during, manager_.bulkWalk(kSubtree));
    ASSERT_EQ(during.size(), before.size());
    for (std::size_t i = 0; i < during.size(); ++i) {
        if (during[i].oid != kPositionPan && during[i].oid != kTimeoutPan) {
            EXPECT_EQ(during[i], before[i]);
        }
    }
    set(kPositionPan, stop());
    EXPECT_TRUE(comesToRest("pan"));
}

TEST_F(Positioning, TheServiceGoesDownInMidMoveAndComesBack) {
    set(kPositionPan, continuous(30));
    ASSERT_TRUE(moves("pan"));
    ASSERT_TRUE(camera_.control("down", "positioning").status.clean());
    set(kPositionPan, stop());
    EXPECT_EQ(logged("Failed zorva api call: zorva_api_positioning_set_velocity_send("), 1U);
    EXPECT_EQ(get(kPositionPan), "0x00000000") << "the command was accepted";
    EXPECT_EQ(get(kRangePanRightLimit), "0") << "never read, so as it was at the start";
    EXPECT_NE(axis("pan").at("velocity"), 0) << "nobody has told the mechanics";
    ASSERT_TRUE(camera_.control("up", "positioning").status.clean());
    EXPECT_EQ(get(kRangePanRightLimit), "35999");
    set(kPositionPan, stop());
    EXPECT_TRUE(comesToRest("pan"));
    EXPECT_EQ(logged("Failed zorva api call: zorva_api_positioning_set_velocity_send("), 1U);
}

TEST_F(Positioning, TheCameraComesBackAfterItsPowerWasCut) {
    set(kPositionPan, continuous(30));
    ASSERT_TRUE(moves("pan"));
    camera_.kill();
    set(kPositionPan, continuous(30));
    camera_.start();
    EXPECT_TRUE(rests("pan"));
    set(kPositionPan, absolute(127, 100));
    EXPECT_TRUE(arrives("pan", 1000));
}

TEST_F(Positioning, RangesFollowTheCamera) {
    EXPECT_EQ(get(kRangePanLeftLimit), "0");
    EXPECT_EQ(get(kRangePanRightLimit), "35999");
    EXPECT_EQ(get(kRangeTiltUpLimit), "2000");
    EXPECT_EQ(get(kRangeTiltDownLimit), "27000");
    setField(camera_, kTarget, "pan.softPosition", {{"enabled", true}, {"minimum", 10000}, {"maximum", 300000}});
    setField(camera_, kTarget, "tilt.softPosition", {{"enabled", true}, {"minimum", -45000}, {"maximum", -10}});
    EXPECT_EQ(get(kRangePanLeftLimit), "1000");
    EXPECT_EQ(get(kRangePanRightLimit), "30000");
    EXPECT_EQ(get(kRangeTiltUpLimit), "-29537") << "35999 in 16 bits, read as signed";
    EXPECT_EQ(get(kRangeTiltDownLimit), "31500");
    EXPECT_EQ(get(kRangePanHomePosition), "65535");
    EXPECT_EQ(get(kRangeMinimumPanStepAngle), "1");
    EXPECT_EQ(get(kRangeMinimumTiltStepAngle), "1");
    EXPECT_EQ(get(kRangeZoomLimit), "0");
}

TEST_F(Positioning, TheTrueNorthOffsetIsZeroOrUnknown) {
    EXPECT_EQ(get(kRangeTrueNorthOffset), "65535");
    setInteger(kRangeTrueNorthOffset, 0);
    EXPECT_EQ(get(kRangeTrueNorthOffset), "0");
    EXPECT_EQ(manager_.set(kRangeTrueNorthOffset, Type::Integer, 1).error, ErrorStatus::WrongValue);
    EXPECT_EQ(manager_.set(kRangeTrueNorthOffset, Type::Gauge32, 0).error, ErrorStatus::WrongType);
    EXPECT_EQ(get(kRangeTrueNorthOffset), "0");
    EXPECT_EQ(logged("true north offset(1) can only be 0 or 65535"), 1U);
}

TEST_F(Positioning, TimeoutsReachTheCamera) {
    EXPECT_EQ(get(kTimeoutPan), "-1") << "the dome starts without a time-out";
    EXPECT_EQ(get(kTimeoutZoom), "-1");
    setInteger(kTimeoutTilt, 1500);
    EXPECT_EQ(targetState(camera_, kTarget).at("velocityCommandTimeout"), 1500);
    EXPECT_EQ(get(kTimeoutTilt), "1500");
    EXPECT_EQ(get(kTimeoutPan), "-1");
    EXPECT_EQ(manager_.set(kTimeoutPan, Type::Integer, 65536).error, ErrorStatus::WrongValue);
    setInteger(kTimeoutPan, -1);
    EXPECT_EQ(get(kTimeoutPan), "65535");
    setInteger(kTimeoutZoom, 0);
    EXPECT_EQ(get(kTimeoutZoom), "0");
    EXPECT_EQ(targetState(camera_, kTarget).at("velocityCommandTimeout"), 65535);
}

TEST_F(Positioning, ATimeoutOfZeroIsForEver) {
    const CameraEvents events(camera_);
    setInteger(kTimeoutPan, 0);
    set(kPositionPan, continuous(10));
    ASSERT_TRUE(events.waitFor({{"operation", "set_velocity_with_timeout_send"}}));
    const json command = events.matching({{"operation", "set_velocity_with_timeout_send"}}).at(0);
    EXPECT_EQ(command.at("arguments").at(7), 4294967295U);
    set(kPositionPan, stop());
}

TEST_F(Positioning, ZoomCoversTheOpticsOrTheUsersRange) {
    setField(camera_, kTarget, "zoom.softPosition.maximum", 200);
    set(kPositionZoomLens, absolute(127, 65535));
    EXPECT_TRUE(arrives("zoom", 300));
    setField(camera_, kTarget, "digitalZoom.enabled", true);
    set(kPositionZoomLens, absolute(127, 65535));
    EXPECT_TRUE(arrives("zoom", 200));
    set(kPositionZoomLens, absolute(127, 0));
    EXPECT_TRUE(arrives("zoom", 10));
}

TEST_F(FixedCameraPositioning, AnswersForPanAndTiltButMovesNothing) {
    EXPECT_EQ(manager_.walk(kSubtree).size(), 12U + 3U) << "and the presets";
    for (const char *oid : {kRangeZoomLimit, kTimeoutZoom, kPositionZoomLens}) {
        const Type type = manager_.get(oid).single().type;
        EXPECT_TRUE(type == Type::NoSuchObject || type == Type::NoSuchInstance) << oid;
    }
    set(kPositionPan, absolute(10, 100));
    EXPECT_EQ(get(kPositionPan), "0x020a6400");
    setInteger(kTimeoutTilt, 700);
    EXPECT_EQ(get(kTimeoutTilt), "700");
    EXPECT_EQ(get(kTimeoutPan), "0");
    EXPECT_EQ(get(kRangePanRightLimit), "0");
    EXPECT_EQ(logged("no zorva API positionings"), 1U);
    EXPECT_EQ(logged("Failed zorva api call"), 0U);
}
