// SPDX-License-Identifier: Apache-2.0
// The lens through the whole chain, on cameras with a motor-driven lens and with stepper motors.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "camera_agent.h"
#include "eventually.h"
#include "object_oids.h"
#include "position_commands.h"

namespace {

using namespace harness;
using namespace position_commands;
using namespace std::string_literals;
using nlohmann::json;
using std::chrono::seconds;
using testing::ElementsAre;

const std::string kFocus = "lens_focus/1";
const std::string kFocusStepper = "focus_stepper/1";
const std::string kIris = "iris/1";
const std::string kZoomStepper = "zoom_stepper/1";

const std::string kAllManual = "\xC0\x00"s;
const std::string kAllAutomatic = "\xC0\x80"s;

class Lens : public CameraAgent {
protected:
    explicit Lens(const std::string &camera = "dome") : CameraAgent(camera) {}

    json drive(const std::string &target) const {
        return targetState(camera_, target);
    }

    testing::AssertionResult arrives(const std::string &target, int position) const {
        const bool there = eventually(seconds(20), [&] {
            const json now = drive(target);
            return now.at("position") == position && now.at("velocity") == 0;
        });
        return there ? testing::AssertionSuccess() : testing::AssertionFailure() << target << ": " << drive(target);
    }

    testing::AssertionResult moves(const std::string &target) const {
        const bool moving = eventually(seconds(10), [&] { return drive(target).at("velocity") != 0; });
        return moving ? testing::AssertionSuccess() : testing::AssertionFailure() << target << ": " << drive(target);
    }
};

class StepperLens : public Lens {
protected:
    StepperLens() : Lens("stepper") {}
};

} // namespace

TEST_F(Lens, FocusGoesToPositionsRunsAndStops) {
    set(oids::systemLensFeatureControl, kAllManual);
    set(oids::positionFocusLens, absolute(0, 0x8000));
    EXPECT_TRUE(arrives(kFocus, 5000));
    set(oids::positionFocusLens, delta(1, 0x4000));
    EXPECT_TRUE(arrives(kFocus, 7500));
    EXPECT_EQ(get(oids::positionFocusLens), "0x01010040");
    set(oids::positionFocusLens, continuous(-1));
    EXPECT_TRUE(arrives(kFocus, 0));
    set(oids::positionFocusLens, continuous(100));
    ASSERT_TRUE(moves(kFocus));
    set(oids::positionFocusLens, stop());
    EXPECT_TRUE(eventually(seconds(10), [&] { return drive(kFocus).at("velocity") == 0; }));
    EXPECT_LT(drive(kFocus).at("position"), 10000);
    EXPECT_EQ(logged("handle_positionFocusLens: focus near"), 1U);
    EXPECT_EQ(logged("handle_positionFocusLens: focus far"), 1U);
}

TEST_F(Lens, IrisGoesToPositionsRunsAndStops) {
    set(oids::systemLensFeatureControl, kAllManual);
    set(oids::positionIrisLens, absolute(0, 0x8000));
    EXPECT_TRUE(arrives(kIris, 128));
    set(oids::positionIrisLens, continuous(1));
    EXPECT_TRUE(arrives(kIris, 255));
    set(oids::positionIrisLens, continuous(-1));
    ASSERT_TRUE(moves(kIris));
    set(oids::positionIrisLens, stop());
    EXPECT_TRUE(eventually(seconds(10), [&] { return drive(kIris).at("velocity") == 0; }));
}

TEST_F(Lens, OneCommandSwitchesFocusAndIris) {
    const CameraEvents events(camera_);
    set(oids::systemLensFeatureControl, kAllManual);
    EXPECT_EQ(get(oids::systemLensFeatureStatus), "0x00");
    set(oids::systemLensFeatureControl, kAllAutomatic);
    EXPECT_EQ(get(oids::systemLensFeatureStatus), "0xc0");
    EXPECT_EQ(get(oids::systemLensFeatureControl), "0xc080");
    set(oids::systemLensFeatureControl, "\x80\x00"s);
    EXPECT_EQ(get(oids::systemLensFeatureStatus), "\"@\"") << "40, automatic focus";
    set(oids::systemLensFeatureControl, "\x00\x80"s);
    EXPECT_EQ(get(oids::systemLensFeatureStatus), "\"@\"");
    EXPECT_THAT(operations(events),
                ElementsAre("set_manual_mode_enable_send", "set_manual_mode_enable_send", "set_manual_mode_enable_send",
                            "do_auto_focus_send", "set_manual_mode_enable_send", "set_manual_mode_enable_send"));
}

TEST_F(Lens, ACommandWhileTheServiceIsAwayIsAcceptedAndLost) {
    set(oids::systemLensFeatureControl, kAllManual);
    control("down", "lens_focus");
    set(oids::positionFocusLens, absolute(0, 0xFFFF));
    EXPECT_EQ(get(oids::positionFocusLens), "0x0200ffff");
    control("up", "lens_focus");
    EXPECT_EQ(drive(kFocus).at("position"), 5000);
    set(oids::positionFocusLens, absolute(0, 0));
    EXPECT_TRUE(arrives(kFocus, 0));
}

TEST_F(StepperLens, StepsToPositionsAndCannotBeStopped) {
    set(oids::systemLensFeatureControl, kAllManual);
    set(oids::positionFocusLens, absolute(0, 0x8000));
    EXPECT_TRUE(arrives(kFocusStepper, 2000));
    const CameraEvents events(camera_);
    set(oids::positionFocusLens, delta(-1, 0x4000));
    ASSERT_TRUE(moves(kFocusStepper));
    set(oids::positionFocusLens, stop());
    set(oids::positionFocusLens, continuous(127));
    EXPECT_TRUE(arrives(kFocusStepper, 1000));
    EXPECT_THAT(operations(events), ElementsAre("set_position_send"));
    EXPECT_EQ(events.matching({{"operation", "set_position_send"}}).at(0).at("arguments"), json({1000, 800}))
        << "at the highest speed";
    EXPECT_EQ(logged("handle_positionFocusStepperLens: stop focus (0)"), 1U);
    EXPECT_EQ(get(oids::positionFocusLens), "0x037f0000");
    set(oids::positionZoomLens, absolute(0, 0x8000));
    EXPECT_TRUE(arrives(kZoomStepper, 3000));
}

TEST_F(StepperLens, AutomaticFocusIsAQuickRun) {
    set(oids::systemLensFeatureControl, kAllManual);
    EXPECT_EQ(get(oids::systemLensFeatureStatus), "0x00");
    set(oids::positionFocusLens, absolute(0, 0));
    ASSERT_TRUE(arrives(kFocusStepper, 0));
    set(oids::systemLensFeatureControl, kAllAutomatic);
    EXPECT_EQ(logged("handle_systemLensFeatureControl2: starting quick auto-focus"), 1U);
    EXPECT_TRUE(arrives(kFocusStepper, drive(kFocusStepper).at("sharpPosition")));
    EXPECT_EQ(get(oids::systemLensFeatureStatus), "0xc0");
    EXPECT_EQ(manager_.set({octetString(oids::systemLensEquipped, "\xC0")}).single().octets, "\xC0\0\0\0\0\0\0\0"s);
}

TEST(LensDiscovery, AServiceThatComesLateIsFound) {
    const Camera camera("dome");
    // The lists of inputs and identity, and three of the focus.
    ASSERT_TRUE(camera.control("fail", "directory", "get_target_ids", "1", "--times", "5").status.clean());
    const Agent agent(withCamera(withFastClock(), camera));
    EXPECT_EQ(Manager(agent.peer()).get(oids::systemLensFeatureStatus).single().type, Type::Octets);
    EXPECT_EQ(agent.moduleLog().count("no zorva API alarms"), 1U);
    EXPECT_EQ(agent.moduleLog().count("no zorva API dev info"), 1U);
    EXPECT_EQ(agent.moduleLog().count("no zorva API focuses"), 1U) << "of the stepper that the dome does not have";
}

TEST(LensDiscovery, AServiceThatNeverComesIsGivenUp) {
    const Camera camera("dome");
    ASSERT_TRUE(camera.control("down", "lens_focus").status.clean());
    const Agent agent(withCamera(withFastClock(), camera));
    EXPECT_EQ(agent.moduleLog().count("no zorva API focuses"), 2U);
    Manager manager(agent.peer());
    EXPECT_NE(manager.get(oids::positionFocusLens).single().type, Type::Octets);
    EXPECT_EQ(manager.get(oids::positionIrisLens).single().type, Type::Octets);
}
