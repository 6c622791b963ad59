// SPDX-License-Identifier: Apache-2.0
// Pan, tilt, zoom and presets through the whole chain: a manager's SET moves the simulated camera.
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
using testing::MatchesRegex;
using testing::SizeIs;

constexpr const char *kTarget = "positioning/1";

class Positioning : public CameraAgent {
protected:
    Positioning() : CameraAgent("dome") {}

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

} // namespace

TEST_F(Positioning, AbsoluteMovesAndDeltasGetThere) {
    set(oids::positionPan, absolute(127, 9000));
    EXPECT_TRUE(arrives("pan", 90000));
    set(oids::positionPan, delta(-100, 1500));
    EXPECT_TRUE(arrives("pan", 75000));
    set(oids::positionTilt, absolute(127, 27000 + 4500));
    EXPECT_TRUE(arrives("tilt", -45000));
    set(oids::positionZoomLens, absolute(127, 65535));
    EXPECT_TRUE(arrives("zoom", 300));
    EXPECT_EQ(get(oids::positionPan), "0x019cdc05");
    EXPECT_EQ(axis("pan").at("position"), 75000) << "another axis has moved it";
}

TEST_F(Positioning, AMoveBeyondTheUsersLimitEndsThere) {
    setField(camera_, kTarget, "pan.softPosition", {{"enabled", true}, {"minimum", 0}, {"maximum", 20000}});
    set(oids::positionPan, absolute(127, 9000));
    EXPECT_TRUE(arrives("pan", 20000));
    EXPECT_EQ(get(oids::positionPan), "0x027f2823");
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

TEST_F(Positioning, ObjectsAndCameraHaveTheSameValues) {
    setField(camera_, kTarget, "pan.position", 90000);
    setField(camera_, kTarget, "tilt.softPosition", {{"enabled", true}, {"minimum", -45000}, {"maximum", -10}});
    EXPECT_EQ(get(oids::positionPan), "0x28230000") << "before the first command";
    EXPECT_EQ(get(oids::rangeTiltUpLimit), "-29537") << "35999 in 16 bits, read as signed";
    EXPECT_EQ(get(oids::rangeTiltDownLimit), "31500");
    setInteger(oids::timeoutTilt, 1500);
    EXPECT_EQ(targetState(camera_, kTarget).at("velocityCommandTimeout"), 1500);
    EXPECT_EQ(get(oids::timeoutTilt), "1500");
    EXPECT_EQ(get(oids::timeoutPan), "-1") << "the dome starts without a time-out";
}

TEST_F(Positioning, APresetIsStoredMovedToAndStoredAgain) {
    const auto presets = [this] { return targetState(camera_, "presets_tours/1").at("presets"); };
    setField(camera_, kTarget, "pan.position", 90000);
    setInteger(oids::presetStorePosition, 7);
    ASSERT_THAT(presets(), SizeIs(1));
    const json preset = presets().at(0);
    EXPECT_EQ(preset.at("name"), "Preset 7");
    EXPECT_EQ(preset.at("number"), 7);
    EXPECT_EQ(preset.at("pan"), 90000);
    EXPECT_THAT(preset.at("id").get<std::string>(),
                MatchesRegex("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}"));
    setField(camera_, kTarget, "pan.position", 45000);
    setInteger(oids::presetGotoPosition, 7);
    EXPECT_TRUE(arrives("pan", 90000));
    EXPECT_EQ(get(oids::presetGotoPosition), "0x07") << "written as a number, read as an octet";
    EXPECT_EQ(get(oids::presetStorePosition), "0x07");
    setField(camera_, kTarget, "pan.position", 45000);
    setInteger(oids::presetStorePosition, 7);
    ASSERT_THAT(presets(), SizeIs(1));
    EXPECT_EQ(presets().at(0).at("id"), preset.at("id"));
    EXPECT_EQ(presets().at(0).at("pan"), 45000);
    setInteger(oids::presetStorePosition, 13);
    ASSERT_THAT(presets(), SizeIs(2));
    EXPECT_NE(presets().at(0).at("id"), presets().at(1).at("id"));
}
