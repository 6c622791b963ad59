// SPDX-License-Identifier: Apache-2.0
// Automatic focus, and how it and the focus by hand exclude each other.
#include "lens_camera.h"

using namespace camera;
using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/** A focus, and its operations for the automatic and for the hand. */
struct FocusCalls {
    const char *service;
    const char *run;
    std::vector<std::pair<const char *, json>> byHand; ///< with arguments; the first one goes to 5000, at full speed
    const char *counter;                               ///< the field that counts runs
};

void PrintTo(const FocusCalls &focus, std::ostream *out) {
    *out << focus.service;
}

class AFocus : public test::LensCamera, public testing::WithParamInterface<FocusCalls> {
protected:
    const std::string service_ = GetParam().service;

    wire::Status run() {
        return callService(service_, GetParam().run, json::array());
    }
    wire::Status moveByHand() {
        return callService(service_, GetParam().byHand.front().first, GetParam().byHand.front().second);
    }
    wire::Status setManual(int enable) {
        return callService(service_, "set_manual_mode_enable_send", {enable});
    }
    void makeAutomatic() {
        ASSERT_EQ(wire::kSuccess, setManual(0));
        events_.clear();
    }
    void show(int sharpPosition) {
        setField(service_, "sharpPosition", sharpPosition);
    }
};

INSTANTIATE_TEST_SUITE_P(All, AFocus,
                         testing::Values(FocusCalls{"lens_focus",
                                                    "do_auto_focus_send",
                                                    {{"set_manual_focus_position_send", {5000}},
                                                     {"set_velocity_send", {0, 1}},
                                                     {"set_velocity_send", {1, 0}}},
                                                    "autoFocusRuns"},
                                         FocusCalls{
                                             "focus_stepper",
                                             "start_quick_auto_focus_send",
                                             {{"set_position_send", {5000, 1000}}, {"set_position_send", {5000, 0}}},
                                             "quickAutoFocusRuns"}),
                         [](const auto &test) { return std::string(test.param.service); });

TEST_P(AFocus, SearchesAndSettlesWhereThePictureIsSharpAlready) {
    makeAutomatic();
    ASSERT_EQ(wire::kSuccess, run());
    EXPECT_EQ(true, state(service_)["focusing"]);
    EXPECT_EQ(1, state(service_)[GetParam().counter]);
    pass(0.49);
    EXPECT_EQ(true, state(service_)["focusing"]);
    pass(0.01);
    EXPECT_EQ(false, state(service_)["focusing"]);
    expectAtRest(service_, 1000);
    EXPECT_THAT(happened(service_), ElementsAre("0.0 focus_started 1000", "0.5 focus_settled 1000"));
}

TEST_P(AFocus, DrivesToWhereThePictureIsSharpAtItsFullSpeed) {
    setField(service_, "position", 4321);
    ASSERT_EQ(wire::kSuccess, setManual(0));
    expectAtRestAfter(0.25, service_, 4321);
    expectAtAfter(1.25, service_, 3321, -1000, 1000);
    EXPECT_EQ(true, state(service_)["focusing"]);
    expectAtRestAfter(2.321, service_, 1000);
    EXPECT_EQ(false, state(service_)["focusing"]);
    EXPECT_THAT(happened(service_), ElementsAre("0.0 focus_started 4321", "0.5 move_started 4321",
                                                "3.821 move_stopped 1000", "3.821 focus_settled 1000"));
}

TEST_P(AFocus, TellsOfItselfWhileNobodyAsks) {
    makeAutomatic();
    show(3000);
    EXPECT_EQ(0.5, camera_->nextTime());
    passAwake(10.0);
    EXPECT_EQ(kNever, camera_->nextTime());
    const std::string target = service_ + "/1";
    EXPECT_THAT(
        events_.seen(),
        ElementsAre(
            json{{"event", "changed"}, {"target", target}, {"fields", {{"sharpPosition", 3000}, {"focusing", true}}}},
            json{{"event", "focus_started"}, {"target", target}, {"position", 1000}},
            json{{"event", "move_started"}, {"target", target}, {"position", 1000}, {"to", 3000}},
            json{{"event", "move_stopped"}, {"target", target}, {"position", 3000}},
            json{{"event", "focus_settled"}, {"target", target}, {"position", 3000}}));
}

TEST_P(AFocus, TellsTheTimesHoweverLateItIsAsked) {
    makeAutomatic();
    show(3000);
    pass(100.0);
    EXPECT_THAT(happened(service_), ElementsAre("0.0 focus_started 1000", "0.5 move_started 1000",
                                                "2.5 move_stopped 3000", "2.5 focus_settled 3000"));
}

TEST_P(AFocus, FollowsTheSceneInOneRun) {
    makeAutomatic();
    show(9000);
    pass(0.25);
    show(3000);
    expectAtAfter(1.25, service_, 2000, 1000, 3000);
    show(500);
    expectAt(service_, 2000, -1000, 500);
    pass(0.5);
    show(1500);
    // The drive has just come to where the picture is sharp now.
    expectAtRest(service_, 1500);
    EXPECT_EQ(false, state(service_)["focusing"]);
    EXPECT_THAT(happened(service_),
                ElementsAre("0.0 focus_started 1000", "0.5 move_started 1000", "1.5 move_started 2000",
                            "2.0 move_started 1500", "2.0 move_stopped 1500", "2.0 focus_settled 1500"));
}

TEST_P(AFocus, DoesNotFollowTheSceneInManualMode) {
    show(9000);
    expectAtRestAfter(10.0, service_, 1000);
    EXPECT_THAT(happened(service_), IsEmpty());
}

TEST_P(AFocus, IsLeftAloneByASceneThatIsAsSharp) {
    makeAutomatic();
    show(1000);
    EXPECT_THAT(happened(service_), IsEmpty());
    EXPECT_EQ(kNever, camera_->nextTime());
}

TEST_P(AFocus, StartsAnewWithAnotherRun) {
    makeAutomatic();
    show(3000);
    pass(1.0);
    ASSERT_EQ(wire::kSuccess, run());
    expectAtRest(service_, 1500);
    pass(0.25);
    ASSERT_EQ(wire::kSuccess, run());
    EXPECT_EQ(2, state(service_)[GetParam().counter]);
    expectAtRestAfter(10.0, service_, 3000);
    EXPECT_THAT(happened(service_),
                ElementsAre("0.0 focus_started 1000", "0.5 move_started 1000", "1.0 move_stopped 1500",
                            "1.0 focus_started 1500", "1.25 focus_started 1500", "1.75 move_started 1500",
                            "3.25 move_stopped 3000", "3.25 focus_settled 3000"));
}

TEST_P(AFocus, NeedNotSearch) {
    makeAutomatic();
    setField(service_, "searchTime", 0);
    show(2000);
    expectAt(service_, 1000, 1000, 2000);
    pass(1.0);
    ASSERT_EQ(wire::kSuccess, run());
    EXPECT_THAT(happened(service_),
                ElementsAre("0.0 focus_started 1000", "0.0 move_started 1000", "1.0 move_stopped 2000",
                            "1.0 focus_settled 2000", "1.0 focus_started 2000", "1.0 focus_settled 2000"));
}

TEST_P(AFocus, StaysWhereItIsInManualMode) {
    for (const bool byCommand : {true, false}) {
        setField(service_, "position", 1000);
        makeAutomatic();
        show(3000);
        pass(1.0);
        if (byCommand) {
            ASSERT_EQ(wire::kSuccess, setManual(1));
        } else {
            setField(service_, "manualMode", true);
        }
        expectAtRest(service_, 1500);
        EXPECT_EQ(false, state(service_)["focusing"]);
        EXPECT_EQ(kNever, camera_->nextTime());
        expectAtRestAfter(10.0, service_, 1500);
        EXPECT_EQ("move_stopped", events_.seen().back()["event"]);
        show(1000);
    }
}

TEST_P(AFocus, SearchesNoMoreInManualMode) {
    makeAutomatic();
    show(3000);
    pass(0.25);
    ASSERT_EQ(wire::kSuccess, setManual(1));
    expectAtRestAfter(10.0, service_, 1000);
    EXPECT_THAT(happened(service_), ElementsAre("0.0 focus_started 1000"));
}

TEST_P(AFocus, TakesUpTheSceneInAutomaticMode) {
    show(3000);
    for (const bool byCommand : {true, false}) {
        setField(service_, "position", 1000);
        if (byCommand) {
            ASSERT_EQ(wire::kSuccess, setManual(0));
        } else {
            setField(service_, "manualMode", false);
        }
        expectAtRestAfter(10.0, service_, 3000);
        ASSERT_EQ(wire::kSuccess, setManual(1));
    }
    // No run was asked for.
    EXPECT_EQ(0, state(service_)[GetParam().counter]);
}

TEST_P(AFocus, InAutomaticModeRefusesTheHand) {
    makeAutomatic();
    show(3000);
    pass(1.0);
    for (const auto &[operation, arguments] : GetParam().byHand) {
        expectRefused(wire::kNotSupported, service_, operation, arguments);
    }
    // What is wrong in any mode is wrong in this one.
    json wrong = GetParam().byHand.front().second;
    wrong[0] = 10001;
    expectRefused(wire::kInvalidArgument, service_, GetParam().byHand.front().first, wrong);
    expectAtRestAfter(1.5, service_, 3000);
    expectRefused(wire::kNotSupported, service_, GetParam().byHand.front().first, GetParam().byHand.front().second);
}

TEST_P(AFocus, InManualModeRefusesARun) {
    ASSERT_EQ(wire::kSuccess, moveByHand());
    expectRefused(wire::kNotSupported, service_, GetParam().run, json::array());
    expectAt(service_, 1000, 1000, 5000);
}

TEST_P(AFocus, ThatIsManualAlreadyGoesOn) {
    ASSERT_EQ(wire::kSuccess, moveByHand());
    pass(1.0);
    ASSERT_EQ(wire::kSuccess, setManual(255));
    expectAt(service_, 2000, 1000, 5000);
}

TEST_P(AFocus, ThatIsAutomaticAlreadyGoesOn) {
    makeAutomatic();
    show(3000);
    pass(1.0);
    ASSERT_EQ(wire::kSuccess, setManual(0));
    expectAt(service_, 1500, 1000, 3000);
    EXPECT_THAT(happened(service_), ElementsAre("0.0 focus_started 1000", "0.5 move_started 1000"));
}

TEST_P(AFocus, EndsAMoveByHandInAutomaticMode) {
    ASSERT_EQ(wire::kSuccess, moveByHand());
    pass(1.0);
    ASSERT_EQ(wire::kSuccess, setManual(0));
    expectAtRest(service_, 2000);
    expectAtAfter(1.0, service_, 1500, -1000, 1000);
    EXPECT_THAT(happened(service_), ElementsAre("0.0 move_started 1000", "1.0 move_stopped 2000",
                                                "1.0 focus_started 2000", "1.5 move_started 2000"));
}

TEST_P(AFocus, ThatIsPutSomewhereGoesBack) {
    makeAutomatic();
    setField(service_, "position", 2000);
    expectAtAfter(1.0, service_, 1500, -1000, 1000);
    setField(service_, "position", 3000);
    expectAt(service_, 3000, -1000, 1000);
    pass(1.0);
    setField(service_, "position", 1000);
    expectAtRest(service_, 1000);
    EXPECT_EQ(false, state(service_)["focusing"]);
    EXPECT_THAT(happened(service_),
                ElementsAre("0.0 focus_started 2000", "0.5 move_started 2000", "1.0 move_stopped 3000",
                            "1.0 move_started 3000", "2.0 move_stopped 1000", "2.0 focus_settled 1000"));
}

TEST_P(AFocus, TakesUpTheSceneAgainAfterARestart) {
    makeAutomatic();
    show(3000);
    pass(1.0);
    reboot();
    passAwake(4.0);
    expectAtRest(service_, 1500);
    EXPECT_EQ(false, state(service_)["focusing"]);
    passAwake(10.0);
    expectAtRest(service_, 3000);
    EXPECT_THAT(happened(service_),
                ElementsAre("0.0 focus_started 1000", "0.5 move_started 1000", "1.0 move_stopped 1500",
                            "6.0 focus_started 1500", "6.5 move_started 1500", "8.0 move_stopped 3000",
                            "8.0 focus_settled 3000"));
}

TEST(ACameraThatStartsOutOfFocus, SeesToIt) {
    double now = 0.0;
    const auto camera = test::makeCamera(R"({"name": "blurred", "services": {"lens_focus": {"targets": [
        {"position": 9000, "maximum": 10000, "sharpPosition": 7000, "searchTime": 300}]}}})",
                                         [&] { return now; });
    EXPECT_EQ(0.3, camera->nextTime());
    EXPECT_EQ(true, camera->state("lens_focus/1")["focusing"]);
    now = 1.3;
    EXPECT_EQ(8000, camera->state("lens_focus/1")["position"]);
    now = 9.0;
    EXPECT_EQ(7000, camera->state("lens_focus/1")["position"]);
}

TEST(ShippedLenses, AreAtRestAtTheStart) {
    for (const char *name : {"dome", "stepper", "twinfocus"}) {
        EXPECT_EQ(kNever, test::shippedCamera(name, [] { return 0.0; })->nextTime()) << name;
    }
}

} // namespace
