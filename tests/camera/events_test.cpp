// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "event_recorder.h"
#include "test_cameras.h"

using namespace camera;
using nlohmann::json;

namespace {

/** Events of the dome, with a relay/1 that is ready for commands. */
class DomeEvents : public testing::Test {
protected:
    DomeEvents() {
        dome_->set("presets_tours/1", "presets", R"([{"id": "a", "number": 1, "pan": 5, "tilt": 0, "zoom": 20}])"_json);
        recorder_.clear();
    }

    /** Returns the event of a call without arguments, or with one, of a relay. */
    static json command(const json &target, const char *operation, const json &arguments, wire::Status status) {
        return {{"event", "command"},     {"service", "relay"},     {"target", target},
                {"operation", operation}, {"arguments", arguments}, {"status", status}};
    }

    std::unique_ptr<CameraModel> dome_ = [] {
        auto dome = test::shippedCamera("dome");
        test::setUpRelay(*dome, "relay/1");
        return dome;
    }();
    test::EventRecorder recorder_{dome_->events()};
};

TEST_F(DomeEvents, ReportCommandsAndTheirChanges) {
    dome_->call("relay", {"set_state_send", "relay/1", 1});
    dome_->call("relay", {"set_state_send", "relay/1", 1});
    EXPECT_THAT(recorder_.seen(),
                testing::ElementsAre(command("relay/1", "set_state_send", {1}, wire::kSuccess),
                                     R"({"event": "changed", "target": "relay/1", "fields": {"state": 1}})"_json,
                                     command("relay/1", "set_state_send", {1}, wire::kSuccess)));
}

TEST_F(DomeEvents, ReportRefusedCommands) {
    dome_->call("relay", {"set_state_send", "relay/9", 1});
    dome_->call("relay", {"set_state_send", "relay/1", 2});
    dome_->call("relay", {"frob", nullptr});
    EXPECT_THAT(recorder_.seen(),
                testing::ElementsAre(command("relay/9", "set_state_send", {1}, wire::kUnknownTarget),
                                     command("relay/1", "set_state_send", {2}, wire::kInvalidArgument),
                                     command(nullptr, "frob", json::array(), wire::kUnknownOperation)));
}

TEST_F(DomeEvents, DoNotReportReadRequests) {
    dome_->call("relay", {"get_state_send", "relay/1"});
    dome_->call("relay", {"get_state_send", "relay/9"});
    EXPECT_THAT(recorder_.seen(), testing::IsEmpty());
}

TEST_F(DomeEvents, ReportChangesInOtherServices) {
    ASSERT_EQ(wire::kSuccess,
              dome_->call("presets_tours", {"move_to_preset_send", "presets_tours/1", "a", 1.0, 1, 1}).status);
    ASSERT_LT(1U, recorder_.seen().size());
    EXPECT_EQ(R"({"event": "changed", "target": "positioning/1", "fields": {
                  "pan.target": 5, "pan.moving": true, "pan.priority": 1, "tilt.priority": 1,
                  "zoom.target": 20, "zoom.moving": true, "zoom.priority": 1}})"_json,
              recorder_.seen()[1]);
}

TEST_F(DomeEvents, ReportSetFields) {
    ASSERT_FALSE(dome_->set("alarm/3", "state", 1));
    ASSERT_TRUE(dome_->set("alarm/3", "state", "x"));
    EXPECT_THAT(recorder_.seen(),
                testing::ElementsAre(R"({"event": "changed", "target": "alarm/3", "fields": {"state": 1}})"_json));
}

TEST_F(DomeEvents, ReportRestarts) {
    dome_->call("device_management", {"reboot_send", "device_management/1", 2});
    EXPECT_THAT(
        recorder_.seen(),
        testing::Contains(R"({"event": "reboot", "target": "device_management/1", "kind": 2, "seconds": 5})"_json));
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
