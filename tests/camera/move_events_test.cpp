// SPDX-License-Identifier: Apache-2.0
// Events of moves, and the announced times of events.
#include "moving_camera.h"

using namespace camera;
using nlohmann::json;

namespace {

class MoveEvents : public test::MovingCamera {};

json moveEvent(const std::string &kind, const std::string &axis, int position) {
    return {{"event", kind}, {"target", "positioning/1"}, {"axis", axis}, {"position", position}};
}

TEST_F(MoveEvents, FollowTheCommandAndItsChanges) {
    ASSERT_EQ(wire::kSuccess, move("zoom", 110));
    json started = moveEvent("move_started", "zoom", 10);
    started["to"] = 110;
    const json fields = {{"zoom.target", 110}, {"zoom.moving", true}, {"zoom.priority", 5}, {"zoom.velocity", 100}};
    ASSERT_EQ(3U, events_.seen().size());
    EXPECT_EQ("command", events_.seen()[0]["event"]);
    EXPECT_EQ((json{{"event", "changed"}, {"target", "positioning/1"}, {"fields", fields}}), events_.seen()[1]);
    EXPECT_EQ(started, events_.seen()[2]);
}

TEST_F(MoveEvents, HaveTheTimeWhenItHappenedHoweverLateTheCameraIsAsked) {
    ASSERT_EQ(wire::kSuccess, run("tilt", 10000));
    ASSERT_EQ(wire::kSuccess, run("pan", 100000, 1500));
    ASSERT_EQ(wire::kSuccess, move("zoom", 110));
    events_.clear();
    pass(100.0);
    ASSERT_EQ(wire::kSuccess, call("get_position_send", json::array()));
    EXPECT_THAT(events_.seen(), testing::ElementsAre(
                                    moveEvent("move_stopped", "zoom", 110), moveEvent("move_timed_out", "pan", 100000),
                                    moveEvent("move_stopped", "pan", 150000), moveEvent("limit_reached", "tilt", 20000),
                                    moveEvent("move_stopped", "tilt", 20000)));
    EXPECT_EQ((std::vector<double>{1.0, 1.5, 2.5, 3.0, 3.0}), events_.times());
}

TEST_F(MoveEvents, ComeBeforeThoseOfALaterCommand) {
    ASSERT_EQ(wire::kSuccess, move("zoom", 110));
    events_.clear();
    pass(5.0);
    ASSERT_EQ(wire::kSuccess, move("zoom", 10));
    ASSERT_LT(1U, events_.seen().size());
    EXPECT_EQ("move_stopped", events_.seen()[0]["event"]);
    EXPECT_EQ("command", events_.seen()[1]["event"]);
}

TEST_F(MoveEvents, RunsItsScripts) {
    runMoves({
        {"report a move to the present position",
         "move tilt 0; moves move_started tilt move_stopped tilt; rest tilt 0"},
        {"come without a request",
         "run tilt 10000; awake 10.0; moves move_started tilt limit_reached tilt move_stopped tilt"},
        {"have no time in a camera at rest", "next never; move pan 100000; next 2.0; awake 10.0; next never"},
    });
}

TEST_F(MoveEvents, DoNotNameAPassingPositionAChange) {
    ASSERT_EQ(wire::kSuccess, move("pan", 100000));
    pass(0.5);
    events_.clear();
    set("tilt.position", 7);
    ASSERT_EQ(wire::kSuccess, run("zoom", 20));
    pass(0.5);
    ASSERT_FALSE(camera_->set("presets_tours/1", "maximumPresets", 3));
    std::vector<json> changed;
    for (const json &event : events_.seen()) {
        if (event["event"] == "changed") {
            changed.push_back(event["fields"]);
        }
    }
    EXPECT_THAT(changed, testing::ElementsAre(json{{"tilt.position", 7}},
                                              json{{"zoom.velocity", 20}, {"zoom.moving", true}, {"zoom.priority", 5}},
                                              json{{"maximumPresets", 3}}));
}

TEST_F(MoveEvents, AreNotToldOfCommandsThatAreRefused) {
    EXPECT_EQ(wire::kInvalidArgument, move("tilt", 20001));
    EXPECT_THAT(events_.moves(), testing::IsEmpty());
    EXPECT_EQ(kNever, camera_->nextTime());
}

TEST_F(MoveEvents, ChangeTheTimeOfTheNextOneOnlyWhenItIsAnother) {
    int changes = 0;
    camera_->onNextTimeChange([&] { ++changes; });
    ASSERT_EQ(wire::kSuccess, move("pan", 100000));
    EXPECT_EQ(1, changes);
    pass(0.5);
    axis("pan");
    ASSERT_EQ(wire::kSuccess, call("get_position_send", json::array()));
    ASSERT_EQ(wire::kSuccess, run("tilt", 100));
    set("velocityCommandTimeout", 5);
    EXPECT_EQ(1, changes);
    ASSERT_EQ(wire::kSuccess, move("zoom", 15));
    EXPECT_EQ(2, changes);
    EXPECT_DOUBLE_EQ(0.55, camera_->nextTime());
    passAwake(0.5);
    EXPECT_EQ(3, changes);
    camera_->onNextTimeChange(nullptr);
    ASSERT_EQ(wire::kSuccess, move("zoom", 20));
    EXPECT_EQ(3, changes);
}

TEST(EventTimes, AreMicrosecondsAndNeverGoBack) {
    double now = 1.23456789;
    Events events([&] { return now; });
    const test::EventRecorder recorder(events);
    events.publish("fault", json::object());
    events.publishAt(0.5, "move_stopped", json::object());
    now = 2.0;
    events.publishAt(1.5, "move_stopped", json::object());
    EXPECT_EQ((std::vector<double>{1.234568, 1.234568, 1.5}), recorder.times());
}

TEST(Moves, OfSeveralTargetsAreToldInTheOrderInWhichTheyHappen) {
    double now = 0.0;
    const std::string target = R"({"zoom": {"maximum": 100, "maximumSpeed": 10}})";
    const auto camera = test::makeCamera(R"({"name": "two", "services": {"positioning": {"targets": [)" + target + "," +
                                             target + "]}}}",
                                         [&] { return now; });
    const auto send = [&](const char *id, int zoom) {
        camera->call("positioning",
                     {"move_to_position_with_speed_percentage_send", id, 0, 0, 0.0, 0, 0, 0.0, 1, zoom, 1.0, 1});
    };
    send("positioning/1", 20);
    send("positioning/2", 10);
    EXPECT_EQ(1.0, camera->nextTime());
    std::vector<json> targets;
    const auto subscription =
        camera->events().subscribe([&](const json &event) { targets.push_back(event["target"]); });
    now = 5.0;
    camera->advance();
    EXPECT_THAT(targets, testing::ElementsAre("positioning/2", "positioning/1"));
}

} // namespace
