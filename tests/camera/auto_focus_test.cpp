// SPDX-License-Identifier: Apache-2.0
// Automatic focus, and its mutual exclusion with manual commands of the focus.
#include "lens_camera.h"

using namespace camera;
using nlohmann::json;
using testing::ElementsAre;

namespace {

/** Focus service, with its operations for automatic and manual mode. */
struct FocusCalls {
    const char *service;
    const char *run;
    json byHand;         ///< manual operations with arguments; the first one moves to 5000 at full speed
    const char *counter; ///< field with the number of runs
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
        return callService(service_, GetParam().byHand[0][0], GetParam().byHand[0][1]);
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
    void runFocus(const std::vector<test::Script> &scripts) {
        using Arguments = test::ScriptArguments;
        runDrive(service_, scripts,
                 {
                     {"automatic", [this](const Arguments & /*a*/) { makeAutomatic(); }},
                     {"manual", [this](const Arguments &a) { EXPECT_EQ(wire::kSuccess, setManual(a.at(0))); }},
                     {"sharp", [this](const Arguments &a) { show(a.at(0)); }},
                     {"search", [this](const Arguments & /*a*/) { EXPECT_EQ(wire::kSuccess, run()); }},
                     {"hand", [this](const Arguments & /*a*/) { EXPECT_EQ(wire::kSuccess, moveByHand()); }},
                     {"runs", [this](const Arguments &a) { EXPECT_EQ(a.at(0), state(service_)[GetParam().counter]); }},
                 });
    }
};

const FocusCalls kLensFocus = {"lens_focus", "do_auto_focus_send",
                               R"([["set_manual_focus_position_send", [5000]], ["set_velocity_send", [0, 1]],
                                   ["set_velocity_send", [1, 0]]])"_json,
                               "autoFocusRuns"};
const FocusCalls kFocusStepper = {"focus_stepper", "start_quick_auto_focus_send",
                                  R"([["set_position_send", [5000, 1000]], ["set_position_send", [5000, 0]]])"_json,
                                  "quickAutoFocusRuns"};

INSTANTIATE_TEST_SUITE_P(All, AFocus, testing::Values(kLensFocus, kFocusStepper),
                         [](const auto &test) { return std::string(test.param.service); });

TEST_P(AFocus, RunsItsScripts) {
    runFocus({
        {"stays where it is after a change to manual mode by a call",
         "automatic; sharp 3000; pass 1.0; manual 1; rest 1500; field focusing false; next never; "
         "after 10.0 rest 1500; events 0.0 focus_started 1000 0.5 move_started 1000 1.0 move_stopped 1500"},
        {"stays where it is after a change to manual mode by a set",
         "automatic; sharp 3000; pass 1.0; set manualMode true; rest 1500; field focusing false; next never; "
         "after 10.0 rest 1500; events 0.0 focus_started 1000 0.5 move_started 1000 1.0 move_stopped 1500"},
        {"drives to the sharp position after a change to automatic mode by a call, without a requested run",
         "sharp 3000; manual 0; after 10.0 rest 3000; runs 0"},
        {"drives to the sharp position after a change to automatic mode by a set, without a requested run",
         "sharp 3000; set manualMode false; after 10.0 rest 3000; runs 0"},
        {"follows the scene in one run, which ends where the drive has just arrived",
         "automatic; sharp 9000; pass 0.25; sharp 3000; after 1.25 at 2000 1000 3000; sharp 500; at 2000 -1000 500; "
         "pass 0.5; sharp 1500; rest 1500; field focusing false; "
         "events 0.0 focus_started 1000 0.5 move_started 1000 1.5 move_started 2000 2.0 move_started 1500 2.0 "
         "move_stopped 1500 2.0 focus_settled 1500"},
        {"searches and settles where the picture is sharp already",
         "automatic; search; field focusing true; runs 1; pass 0.49; field focusing true; pass 0.01; "
         "field focusing false; rest 1000; events 0.0 focus_started 1000 0.5 focus_settled 1000"},
        {"drives to where the picture is sharp at its full speed",
         "set position 4321; manual 0; after 0.25 rest 4321; after 1.25 at 3321 -1000 1000; field focusing true; "
         "after 2.321 rest 1000; field focusing false; "
         "events 0.0 focus_started 4321 0.5 move_started 4321 3.821 move_stopped 1000 3.821 focus_settled 1000"},
        {"reports exact times to a late request",
         "automatic; sharp 3000; pass 100.0; "
         "events 0.0 focus_started 1000 0.5 move_started 1000 2.5 move_stopped 3000 2.5 focus_settled 3000"},
        {"does not follow the scene in manual mode", "sharp 9000; after 10.0 rest 1000; events"},
        {"ignores a scene without a change of the sharp position", "automatic; sharp 1000; events; next never"},
        {"starts anew with another run",
         "automatic; sharp 3000; pass 1.0; search; rest 1500; pass 0.25; search; runs 2; after 10.0 rest 3000; "
         "events 0.0 focus_started 1000 0.5 move_started 1000 1.0 move_stopped 1500 1.0 focus_started 1500 1.25 "
         "focus_started 1500 1.75 move_started 1500 3.25 move_stopped 3000 3.25 focus_settled 3000"},
        {"works without a search", "automatic; set searchTime 0; sharp 2000; at 1000 1000 2000; pass 1.0; search; "
                                   "events 0.0 focus_started 1000 0.0 move_started 1000 1.0 move_stopped 2000 1.0 "
                                   "focus_settled 2000 1.0 focus_started 2000 1.0 focus_settled 2000"},
        {"ends its search in manual mode",
         "automatic; sharp 3000; pass 0.25; manual 1; after 10.0 rest 1000; events 0.0 focus_started 1000"},
        {"continues a move when it is manual already", "hand; pass 1.0; manual 255; at 2000 1000 5000"},
        {"continues a run when it is automatic already",
         "automatic; sharp 3000; pass 1.0; manual 0; at 1500 1000 3000; "
         "events 0.0 focus_started 1000 0.5 move_started 1000"},
        {"ends a move by hand in automatic mode",
         "hand; pass 1.0; manual 0; rest 2000; after 1.0 at 1500 -1000 1000; "
         "events 0.0 move_started 1000 1.0 move_stopped 2000 1.0 focus_started 2000 1.5 move_started 2000"},
        {"returns when its position is set",
         "automatic; set position 2000; after 1.0 at 1500 -1000 1000; set position 3000; at 3000 -1000 1000; "
         "pass 1.0; set position 1000; rest 1000; field focusing false; "
         "events 0.0 focus_started 2000 0.5 move_started 2000 1.0 move_stopped 3000 1.0 move_started 3000 2.0 "
         "move_stopped 1000 2.0 focus_settled 1000"},
        {"takes up the scene again after a restart",
         "automatic; sharp 3000; pass 1.0; reboot; awake 4.0; rest 1500; field focusing false; awake 10.0; "
         "rest 3000; "
         "events 0.0 focus_started 1000 0.5 move_started 1000 1.0 move_stopped 1500 6.0 focus_started 1500 6.5 "
         "move_started 1500 8.0 move_stopped 3000 8.0 focus_settled 3000"},
    });
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

TEST_P(AFocus, InAutomaticModeRefusesTheHand) {
    makeAutomatic();
    show(3000);
    pass(1.0);
    for (const json &call : GetParam().byHand) {
        expectRefused(wire::kNotSupported, service_, call[0], call[1]);
    }
    // An invalid position takes precedence over the mode.
    json wrong = GetParam().byHand[0][1];
    wrong[0] = 10001;
    expectRefused(wire::kInvalidArgument, service_, GetParam().byHand[0][0], wrong);
    pass(1.5);
    expectAtRest(service_, 3000);
    expectRefused(wire::kNotSupported, service_, GetParam().byHand[0][0], GetParam().byHand[0][1]);
}

TEST_P(AFocus, InManualModeRefusesARun) {
    ASSERT_EQ(wire::kSuccess, moveByHand());
    expectRefused(wire::kNotSupported, service_, GetParam().run, json::array());
    expectAt(service_, 1000, 1000, 5000);
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
