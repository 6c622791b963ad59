// SPDX-License-Identifier: Apache-2.0
// Pan, tilt and zoom through the whole chain: a manager's SET moves the simulated camera.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "camera_agent.h"
#include "eventually.h"
#include "object_oids.h"
#include "position_commands.h"

namespace {

using namespace harness;
using namespace position_commands;
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
    set(oids::positionPan, absolute(127, 9000));
    EXPECT_TRUE(arrives("pan", 90000));
    set(oids::positionTilt, absolute(127, 27000 + 4500));
    EXPECT_TRUE(arrives("tilt", -45000));
    set(oids::positionZoomLens, absolute(127, 65535));
    EXPECT_TRUE(arrives("zoom", 300));
    EXPECT_EQ(get(oids::positionPan), "0x027f2823");
    EXPECT_EQ(axis("pan").at("position"), 90000) << "another axis has moved it";
}

TEST_F(Positioning, AnAbsoluteMoveMakesTheseCommandsOfTheService) {
    const CameraEvents events(camera_);
    set(oids::positionPan, absolute(127, 9000));
    ASSERT_TRUE(events.waitFor({{"event", "move_stopped"}, {"axis", "pan"}}));
    EXPECT_THAT(operations(events), ElementsAre("clear_velocity_limits_send", "set_soft_velocity_limits_send",
                                                "move_to_position_with_speed_percentage_send"));
    const json command = events.matching({{"operation", "move_to_position_with_speed_percentage_send"}}).at(0);
    EXPECT_EQ(command.at("arguments").at(1), 90000);
    EXPECT_EQ(command.at("arguments").at(9), 500);
}

TEST_F(Positioning, ADeltaMoveGoesTheWayOfItsSpeed) {
    setField(camera_, kTarget, "pan.position", 10000);
    set(oids::positionPan, delta(-100, 1500));
    EXPECT_TRUE(arrives("pan", 355000));
    set(oids::positionPan, delta(100, -30000));
    EXPECT_TRUE(arrives("pan", 55000));
    set(oids::positionTilt, delta(-127, 1000));
    EXPECT_TRUE(arrives("tilt", -10000));
    set(oids::positionZoomLens, delta(127, 65535 / 2));
    EXPECT_TRUE(arrives("zoom", 155));
}

TEST_F(Positioning, AContinuousMoveStopsByItsTimeout) {
    const CameraEvents events(camera_);
    setInteger(oids::timeoutPan, 300);
    set(oids::positionPan, continuous(64));
    ASSERT_TRUE(events.waitFor({{"event", "move_timed_out"}, {"axis", "pan"}}));
    EXPECT_TRUE(comesToRest("pan"));
    EXPECT_GT(axis("pan").at("position"), 0);
    EXPECT_EQ(axis("pan").at("position").get<int>(), events.matching({{"event", "move_stopped"}}).at(0).at("position"));
    EXPECT_EQ(get(oids::positionPan), "0x03400000") << "what was commanded, not what came of it";
}

TEST_F(Positioning, AStopEndsAMoveHalfWay) {
    set(oids::positionPan, absolute(20, 17000));
    ASSERT_TRUE(moves("pan"));
    set(oids::positionPan, stop());
    EXPECT_TRUE(comesToRest("pan"));
    EXPECT_GT(axis("pan").at("position"), 0);
    EXPECT_LT(axis("pan").at("position"), 170000);
    set(oids::positionPan, continuous(-100));
    ASSERT_TRUE(moves("pan"));
    set(oids::positionPan, continuous(0));
    EXPECT_TRUE(comesToRest("pan"));
}

TEST_F(Positioning, FullSpeedDownStopsAtTheLimit) {
    const CameraEvents events(camera_);
    set(oids::positionTilt, continuous(-128));
    ASSERT_TRUE(events.waitFor({{"event", "limit_reached"}, {"axis", "tilt"}}));
    EXPECT_TRUE(arrives("tilt", -90000));
}

TEST_F(Positioning, AllAxesStartAndStopInOneRequest) {
    const auto all = [this](const std::string &command) {
        const Result result =
            manager_.set({octetString(oids::positionPan, command), octetString(oids::positionTilt, command),
                          octetString(oids::positionZoomLens, command)});
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
    for (const char *oid : {oids::positionPan, oids::positionTilt, oids::positionZoomLens}) {
        EXPECT_EQ(get(oid), "0x00000000");
    }
}

TEST_F(Positioning, OneBadVariableOfTwoMovesNothing) {
    const CameraEvents events(camera_);
    const struct {
        std::vector<Varbind> request;
        ErrorStatus error;
        long index;
    } cases[] = {
        {{octetString(oids::positionPan, absolute(50, 100)), octetString(oids::positionTilt, absolute(50, 36000))},
         ErrorStatus::WrongValue,
         2},
        {{octetString(oids::positionPan, command(4)), octetString(oids::positionTilt, absolute(50, 100))},
         ErrorStatus::WrongValue,
         1},
        {{octetString(oids::positionTilt, absolute(50, 100)), integer(oids::positionPan, 1)},
         ErrorStatus::WrongType,
         2},
        {{octetString(oids::positionZoomLens, absolute(50, 100)), integer(oids::timeoutPan, 65536)},
         ErrorStatus::WrongValue,
         2},
        {{octetString(oids::positionZoomLens, command(0, 1)), octetString(oids::positionPan, absolute(50, 100))},
         ErrorStatus::WrongValue,
         1},
        {{octetString(oids::positionPan, absolute(50, 100)), integer(oids::rangePanLeftLimit, 1)},
         ErrorStatus::NotWritable,
         2},
    };
    for (const auto &each : cases) {
        const Result result = manager_.set(each.request);
        EXPECT_EQ(result.error, each.error) << each.request[0] << " " << each.request[1];
        EXPECT_EQ(result.errorIndex, each.index) << each.request[0] << " " << each.request[1];
    }
    // The answer to this one shows that the camera had nothing to do before.
    set(oids::positionPan, stop());
    ASSERT_TRUE(events.waitFor({{"event", "command"}}));
    EXPECT_THAT(operations(events), ElementsAre("set_velocity_send"));
    EXPECT_EQ(get(oids::positionTilt), "0x00000000");
    EXPECT_THAT(events.matching({{"event", "move_started"}}), IsEmpty());
}

TEST_F(Positioning, BeforeTheFirstCommandAGetAnswersThePosition) {
    setField(camera_, kTarget, "pan.position", 90000);
    setField(camera_, kTarget, "tilt.position", -10);
    setField(camera_, kTarget, "zoom.position", 300);
    EXPECT_EQ(get(oids::positionPan), "0x28230000");
    EXPECT_EQ(get(oids::positionTilt), "0x9f8c0000");
    EXPECT_EQ(get(oids::positionZoomLens), "0xffff0000");
    setField(camera_, kTarget, "pan.position", 0);
    EXPECT_EQ(get(oids::positionPan), "0x28230000") << "it is read at the first request only";
}

TEST_F(Positioning, AWalkWhileTheCameraMovesAnswersAsOneAtRest) {
    const std::vector<Varbind> before = manager_.walk(oids::kCctvSubtree);
    setInteger(oids::timeoutPan, 0);
    set(oids::positionPan, continuous(127));
    ASSERT_TRUE(moves("pan"));
    std::vector<Varbind> during = manager_.walk(oids::kCctvSubtree);
    EXPECT_NE(axis("pan").at("velocity"), 0);
    EXPECT_EQ(during, manager_.bulkWalk(oids::kCctvSubtree));
    ASSERT_EQ(during.size(), before.size());
    for (std::size_t i = 0; i < during.size(); ++i) {
        if (during[i].oid != oids::positionPan && during[i].oid != oids::timeoutPan) {
            EXPECT_EQ(during[i], before[i]);
        }
    }
    set(oids::positionPan, stop());
    EXPECT_TRUE(comesToRest("pan"));
}

TEST_F(Positioning, TheServiceGoesDownInMidMoveAndComesBack) {
    set(oids::positionPan, continuous(30));
    ASSERT_TRUE(moves("pan"));
    ASSERT_TRUE(camera_.control("down", "positioning").status.clean());
    set(oids::positionPan, stop());
    EXPECT_EQ(logged("Failed zorva api call: zorva_api_positioning_set_velocity_send("), 1U);
    EXPECT_EQ(get(oids::positionPan), "0x00000000") << "the command was accepted";
    EXPECT_EQ(get(oids::rangePanRightLimit), "0") << "never read, so as it was at the start";
    EXPECT_NE(axis("pan").at("velocity"), 0) << "nobody has told the mechanics";
    ASSERT_TRUE(camera_.control("up", "positioning").status.clean());
    EXPECT_EQ(get(oids::rangePanRightLimit), "35999");
    set(oids::positionPan, stop());
    EXPECT_TRUE(comesToRest("pan"));
    EXPECT_EQ(logged("Failed zorva api call: zorva_api_positioning_set_velocity_send("), 1U);
}

TEST_F(Positioning, TheCameraComesBackAfterItsPowerWasCut) {
    set(oids::positionPan, continuous(30));
    ASSERT_TRUE(moves("pan"));
    camera_.kill();
    set(oids::positionPan, continuous(30));
    camera_.start();
    EXPECT_TRUE(rests("pan"));
    set(oids::positionPan, absolute(127, 100));
    EXPECT_TRUE(arrives("pan", 1000));
}

TEST_F(Positioning, RangesFollowTheCamera) {
    EXPECT_EQ(get(oids::rangePanLeftLimit), "0");
    EXPECT_EQ(get(oids::rangePanRightLimit), "35999");
    EXPECT_EQ(get(oids::rangeTiltUpLimit), "2000");
    EXPECT_EQ(get(oids::rangeTiltDownLimit), "27000");
    setField(camera_, kTarget, "pan.softPosition", {{"enabled", true}, {"minimum", 10000}, {"maximum", 300000}});
    setField(camera_, kTarget, "tilt.softPosition", {{"enabled", true}, {"minimum", -45000}, {"maximum", -10}});
    EXPECT_EQ(get(oids::rangePanLeftLimit), "1000");
    EXPECT_EQ(get(oids::rangePanRightLimit), "30000");
    EXPECT_EQ(get(oids::rangeTiltUpLimit), "-29537") << "35999 in 16 bits, read as signed";
    EXPECT_EQ(get(oids::rangeTiltDownLimit), "31500");
    EXPECT_EQ(get(oids::rangePanHomePosition), "65535");
    EXPECT_EQ(get(oids::rangeMinimumPanStepAngle), "1");
    EXPECT_EQ(get(oids::rangeMinimumTiltStepAngle), "1");
    EXPECT_EQ(get(oids::rangeZoomLimit), "0");
}

TEST_F(Positioning, TimeoutsReachTheCamera) {
    EXPECT_EQ(get(oids::timeoutPan), "-1") << "the dome starts without a time-out";
    EXPECT_EQ(get(oids::timeoutZoom), "-1");
    setInteger(oids::timeoutTilt, 1500);
    EXPECT_EQ(targetState(camera_, kTarget).at("velocityCommandTimeout"), 1500);
    EXPECT_EQ(get(oids::timeoutTilt), "1500");
    EXPECT_EQ(get(oids::timeoutPan), "-1");
    setInteger(oids::timeoutPan, -1);
    EXPECT_EQ(get(oids::timeoutPan), "65535");
    setInteger(oids::timeoutZoom, 0);
    EXPECT_EQ(get(oids::timeoutZoom), "0");
    EXPECT_EQ(targetState(camera_, kTarget).at("velocityCommandTimeout"), 65535);
}

TEST_F(Positioning, ZoomCoversTheOpticsOrTheUsersRange) {
    setField(camera_, kTarget, "zoom.softPosition.maximum", 200);
    set(oids::positionZoomLens, absolute(127, 65535));
    EXPECT_TRUE(arrives("zoom", 300));
    setField(camera_, kTarget, "digitalZoom.enabled", true);
    set(oids::positionZoomLens, absolute(127, 65535));
    EXPECT_TRUE(arrives("zoom", 200));
    set(oids::positionZoomLens, absolute(127, 0));
    EXPECT_TRUE(arrives("zoom", 10));
}

TEST_F(FixedCameraPositioning, AnswersForPanAndTiltButMovesNothing) {
    EXPECT_EQ(oidsOf(manager_.walk(oids::kCctvSubtree)), objectsWithoutServices());
    set(oids::positionPan, absolute(10, 100));
    EXPECT_EQ(get(oids::positionPan), "0x020a6400");
    setInteger(oids::timeoutTilt, 700);
    EXPECT_EQ(get(oids::timeoutTilt), "700");
    EXPECT_EQ(get(oids::timeoutPan), "0");
    EXPECT_EQ(get(oids::rangePanRightLimit), "0");
    EXPECT_EQ(logged("no zorva API positionings"), 1U);
    EXPECT_EQ(logged("Failed zorva api call"), 0U);
}
