// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "event_recorder.h"
#include "test_cameras.h"

using namespace camera;
using nlohmann::json;

namespace {

TEST(Events, TellOfCommandsAndTheirChanges) {
    const auto dome = test::shippedCamera("dome");
    test::setUpRelay(*dome, "relay/2");
    const test::EventRecorder recorder(dome->events());
    dome->call("relay", {"set_state_send", "relay/2", 1});
    EXPECT_THAT(recorder.seen(),
                testing::ElementsAre(R"({"event": "command", "service": "relay", "target": "relay/2", "operation":
                                        "set_state_send", "arguments": [1], "status": 0})"_json,
                                     json{{"event", "changed"}, {"target", "relay/2"}, {"fields", {{"state", 1}}}}));
}

TEST(Events, TellOfCommandsThatWereRefused) {
    const auto dome = test::shippedCamera("dome");
    const test::EventRecorder recorder(dome->events());
    dome->call("relay", {"set_state_send", "relay/9", 1});
    dome->call("relay", {"set_state_send", "relay/1", 2});
    dome->call("relay", {"frob", nullptr});
    ASSERT_EQ(3U, recorder.seen().size());
    EXPECT_EQ(wire::kUnknownTarget, recorder.seen()[0]["status"]);
    EXPECT_EQ(wire::kInvalidArgument, recorder.seen()[1]["status"]);
    EXPECT_EQ((json{{"event", "command"},
                    {"service", "relay"},
                    {"target", nullptr},
                    {"operation", "frob"},
                    {"arguments", json::array()},
                    {"status", wire::kUnknownOperation}}),
              recorder.seen()[2]);
}

TEST(Events, DoNotTellOfReading) {
    const auto dome = test::shippedCamera("dome");
    const test::EventRecorder recorder(dome->events());
    dome->call("relay", {"get_state_send", "relay/1"});
    dome->call("relay", {"get_state_send", "relay/9"});
    EXPECT_THAT(recorder.seen(), testing::IsEmpty());
}

TEST(Events, DoNotTellOfCommandsWithoutChangeAsChanges) {
    const auto dome = test::shippedCamera("dome");
    test::setUpRelay(*dome, "relay/1");
    const test::EventRecorder recorder(dome->events());
    dome->call("relay", {"set_state_send", "relay/1", 0});
    ASSERT_EQ(1U, recorder.seen().size());
    EXPECT_EQ("command", recorder.seen()[0]["event"]);
}

TEST(Events, TellOfChangesInOtherServices) {
    const auto dome = test::shippedCamera("dome");
    ASSERT_FALSE(dome->set("presets_tours/1", "presets",
                           json::array({{{"id", "a"}, {"number", 1}, {"pan", 5}, {"tilt", 0}, {"zoom", 20}}})));
    const test::EventRecorder recorder(dome->events());
    ASSERT_EQ(wire::kSuccess,
              dome->call("presets_tours", {"move_to_preset_send", "presets_tours/1", "a", 1.0, 1, 1}).status);
    ASSERT_LT(1U, recorder.seen().size());
    const json fields = {{"pan.target", 5},   {"pan.moving", true},  {"pan.priority", 1}, {"tilt.priority", 1},
                         {"zoom.target", 20}, {"zoom.moving", true}, {"zoom.priority", 1}};
    EXPECT_EQ((json{{"event", "changed"}, {"target", "positioning/1"}, {"fields", fields}}), recorder.seen()[1]);
}

TEST(Events, TellOfSetFields) {
    const auto dome = test::shippedCamera("dome");
    const test::EventRecorder recorder(dome->events());
    ASSERT_FALSE(dome->set("alarm/3", "state", 1));
    ASSERT_TRUE(dome->set("alarm/3", "state", "x"));
    EXPECT_THAT(recorder.seen(),
                testing::ElementsAre(json{{"event", "changed"}, {"target", "alarm/3"}, {"fields", {{"state", 1}}}}));
}

TEST(Events, TellOfRestarts) {
    const auto dome = test::shippedCamera("dome");
    const test::EventRecorder recorder(dome->events());
    dome->call("device_management", {"reboot_send", "device_management/1", 2});
    EXPECT_THAT(
        recorder.seen(),
        testing::Contains(json{{"event", "reboot"}, {"target", "device_management/1"}, {"kind", 2}, {"seconds", 5}}));
}

TEST(Subscriptions, EndWithTheirObjects) {
    Events events;
    int first = 0;
    int second = 0;
    auto kept = events.subscribe([&](const json & /*event*/) { ++first; });
    {
        const auto brief = events.subscribe([&](const json & /*event*/) { ++second; });
        events.publish("fault", json::object());
    }
    events.publish("fault", json::object());
    EXPECT_EQ(2, first);
    EXPECT_EQ(1, second);
    kept = Events::Subscription();
    EXPECT_FALSE(events.heard());
}

TEST(Subscriptions, CanBeEndedByAListener) {
    Events events;
    int calls = 0;
    Events::Subscription own;
    Events::Subscription other;
    own = events.subscribe([&](const json & /*event*/) {
        ++calls;
        own = Events::Subscription();
        other = Events::Subscription();
    });
    other = events.subscribe([&](const json & /*event*/) { ++calls; });
    events.publish("fault", json::object());
    events.publish("fault", json::object());
    EXPECT_EQ(1, calls);
}

} // namespace
