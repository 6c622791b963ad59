// SPDX-License-Identifier: Apache-2.0
// Manual moves of the lens drives.
#include <limits>

#include "lens_camera.h"

using namespace camera;
using nlohmann::json;
using testing::ElementsAre;

namespace {

/** Lens drive, and its operation for a move to a position. */
struct LensDriveCalls {
    const char *service;
    const char *move;
};

void PrintTo(const LensDriveCalls &drive, std::ostream *out) {
    *out << drive.service;
}

class ALensDrive : public test::LensCamera, public testing::WithParamInterface<LensDriveCalls> {
protected:
    const std::string service_ = GetParam().service;

    wire::Status move(int position) {
        return callService(service_, GetParam().move, {position});
    }
    wire::Status run(int direction, int run = 1) {
        return callService(service_, "set_velocity_send", {direction, run});
    }
};

INSTANTIATE_TEST_SUITE_P(All, ALensDrive,
                         testing::Values(LensDriveCalls{"lens_focus", "set_manual_focus_position_send"},
                                         LensDriveCalls{"iris", "set_position_send"}),
                         [](const auto &test) { return std::string(test.param.service); });

TEST_P(ALensDrive, RunsItsScripts) {
    const std::vector<test::Script> scripts = {
        {"approaches a position at its speed",
         "move 3000; at 1000 1000 3000; after 0.5 at 1500 1000 3000; after 1.5 rest 3000; move 0; "
         "after 1.25 at 1750 -1000 0; after 10.0 rest 0"},
        {"runs to its ends", "run 0 1; at 1000 1000 null; after 8.5 at 9500 1000 null; after 1.0 rest 10000; run 1 1; "
                             "after 8.5 at 1500 -1000 null; after 10.0 rest 0; "
                             "events 0.0 move_started 1000 9.0 limit_reached 10000 9.0 move_stopped 10000 9.5 "
                             "move_started 10000 19.5 limit_reached 0 19.5 move_stopped 0"},
        {"does not run beyond its end", "set position 10000; run 0 1; rest 10000; "
                                        "events 0.0 move_started 10000 0.0 limit_reached 10000 0.0 move_stopped 10000"},
        {"obeys the last command",
         "run 0 1; pass 2.0; move 2000; at 3000 -1000 2000; pass 0.5; run 0 1; at 2500 1000 null; pass 0.5; run 1 1; "
         "after 0.5 at 2500 -1000 null; "
         "events 0.0 move_started 1000 2.0 move_started 3000 2.5 move_started 2500 3.0 move_started 3000"},
        {"goes on with another speed and range",
         "move 9000; pass 1.0; set speed 250; at 2000 250 9000; pass 2.0; set maximum 2600; at 2500 250 2600; "
         "after 1.0 rest 2600; run 1 1; pass 1.0; set speed 500; at 2350 -500 null"},
        {"rests at a position that is set",
         "run 0 1; pass 0.5; set position 7000; rest 7000; events 0.0 move_started 1000 0.5 move_stopped 7000"},
        {"is halted where it is by a stop upwards",
         "run 0 1; pass 0.5; run 0 0; after 10.0 rest 1500; move 0; pass 0.5; run 0 0; after 10.0 rest 1000; "
         "next never"},
        {"is halted where it is by a stop downwards",
         "run 0 1; pass 0.5; run 1 0; after 10.0 rest 1500; move 0; pass 0.5; run 1 0; after 10.0 rest 1000; "
         "next never"},
        {"loses its move in a restart", "run 0 1; pass 0.5; reboot; awake 20.0; rest 1500"},
    };
    runDrive(service_, scripts);
}

TEST_P(ALensDrive, AnswersWhereItIsOnItsWay) {
    ASSERT_EQ(wire::kSuccess, move(3000));
    pass(0.25);
    const bool isFocus = service_ == "lens_focus";
    EXPECT_EQ(wire::kSuccess,
              callService(service_, isFocus ? "get_manual_focus_position_send" : "get_position_send", json::array()));
    EXPECT_EQ((json{1250, 0, 10000}), answer_.results);
}

TEST_P(ALensDrive, AtRestDoesNotNoticeAHalt) {
    ASSERT_EQ(wire::kSuccess, run(0, 0));
    EXPECT_THAT(happened(service_), testing::IsEmpty());
    EXPECT_EQ(1U, events_.seen().size());
}

TEST_P(ALensDrive, TellsOfItsMovesAsAnAxisDoes) {
    ASSERT_EQ(wire::kSuccess, move(3000));
    const std::string target = service_ + "/1";
    const json changed = {{"target", 3000}, {"velocity", 1000}, {"moving", true}};
    ASSERT_EQ(3U, events_.seen().size());
    EXPECT_EQ("command", events_.seen()[0]["event"]);
    EXPECT_EQ((json{{"event", "changed"}, {"target", target}, {"fields", changed}}), events_.seen()[1]);
    EXPECT_EQ((json{{"event", "move_started"}, {"target", target}, {"position", 1000}, {"to", 3000}}),
              events_.seen()[2]);
    events_.clear();
    passAwake(10.0);
    EXPECT_THAT(happened(service_), ElementsAre("2.0 move_stopped 3000"));
    ASSERT_EQ(wire::kSuccess, run(1));
    EXPECT_EQ((json{{"event", "move_started"}, {"target", target}, {"position", 3000}, {"velocity", -1000}}),
              events_.seen().back());
}

TEST_P(ALensDrive, RefusesInvalidPositionsAndRuns) {
    ASSERT_EQ(wire::kSuccess, move(3000));
    for (const int position : {-1, 10001}) {
        expectRefused(wire::kInvalidArgument, service_, GetParam().move, {position});
    }
    for (const auto &[direction, run] : {std::pair{-1, 1}, {2, 1}, {0, -1}, {1, 2}, {2, 0}}) {
        expectRefused(wire::kInvalidArgument, service_, "set_velocity_send", {direction, run});
    }
    expectAt(service_, 1000, 1000, 3000);
}

TEST(Iris, HasAllPositionsThatItsCallsCanSay) {
    double now = 0.0;
    const auto camera = test::makeCamera(R"({"name": "wide", "services": {"iris": {"targets": [{"maximum": 4294967295,
            "speed": 2147483647}]}}})",
                                         [&] { return now; });
    ASSERT_EQ(wire::kSuccess, camera->call("iris", {"set_position_send", "iris/1", 4294967295U}).status);
    now = 1.0;
    EXPECT_EQ(2147483647U, camera->state("iris/1")["position"]);
    now = 3.0;
    EXPECT_EQ(4294967295U, camera->state("iris/1")["position"]);
}

class AStepper : public test::LensCamera, public testing::WithParamInterface<const char *> {
protected:
    const std::string service_ = GetParam();

    wire::Status move(int position, int speed) {
        return callService(service_, "set_position_send", {position, speed});
    }
};

INSTANTIATE_TEST_SUITE_P(All, AStepper, testing::Values("focus_stepper", "zoom_stepper"),
                         [](const auto &test) { return std::string(test.param); });

TEST_P(AStepper, RunsItsScripts) {
    const std::vector<test::Script> scripts = {
        {"moves at the speed of its command",
         "move 3000 500; field speed 500; after 1.0 at 1500 500 3000; after 3.0 rest 3000; "
         "events 0.0 move_started 1000 4.0 move_stopped 3000"},
        {"does not move without speed",
         "move 3000 0; events; next never; move 3000 500; pass 1.0; move 0 0; after 10.0 rest 1500; field speed 0"},
        {"obeys the last command",
         "move 10000 1000; pass 2.0; move 0 100; at 3000 -100 0; after 10.0 at 2000 -100 0; after 20.0 rest 0"},
        {"loses its move in a restart", "move 3000 500; pass 1.0; reboot; awake 20.0; rest 1500"},
    };
    runDrive(service_, scripts);
}

TEST_P(AStepper, IsAsSlowAndAsFastAsItCanBe) {
    for (const auto &[wanted, speed] :
         {std::pair{1, 10}, {10, 10}, {11, 11}, {1000, 1000}, {1001, 1000}, {std::numeric_limits<int>::max(), 1000}}) {
        setField(service_, "position", 1000);
        ASSERT_EQ(wire::kSuccess, move(3000, wanted));
        expectAt(service_, 1000, speed, 3000);
        EXPECT_EQ(speed, state(service_)["speed"]) << wanted;
        pass(1.0);
        expectAt(service_, 1000 + speed, speed, 3000);
    }
}

TEST_P(AStepper, RefusesInvalidPositionsAndSpeeds) {
    ASSERT_EQ(wire::kSuccess, move(3000, 500));
    for (const auto &[position, speed] : {std::pair{-1, 100}, {10001, 100}, {10001, 0}, {100, -1}}) {
        expectRefused(wire::kInvalidArgument, service_, "set_position_send", {position, speed});
    }
    expectAt(service_, 1000, 500, 3000);
}

class TheFocusStepper : public test::LensCamera {};

TEST_F(TheFocusStepper, LeavesItsSecondPositionAlone) {
    ASSERT_EQ(wire::kSuccess, callService("focus_stepper", "set_position_send", {3000, 500}));
    pass(1.0);
    ASSERT_EQ(wire::kSuccess, callService("focus_stepper", "get_position_send", json::array()));
    EXPECT_EQ((json{1500, 77}), answer_.results);
    setField("focus_stepper", "secondPosition", -5);
    ASSERT_EQ(wire::kSuccess, callService("focus_stepper", "get_position_send", json::array()));
    EXPECT_EQ((json{1500, -5}), answer_.results);
}

} // namespace
