// SPDX-License-Identifier: Apache-2.0
// The state of each shipped camera, as its control socket reports it, and what a picture takes from it.
#include <gmock/gmock.h>

#include "camera_file.h"
#include "camera_state.h"
#include "control_command_handler.h"
#include "fake_service_control.h"
#include "view.h"

using namespace panel;
using nlohmann::json;

namespace {

/** Camera whose control commands are executed in this process. */
class CameraOf {
public:
    explicit CameraOf(const std::string &name)
        : CameraOf(camera::readCameraFile(QUARNSNMP_CAMERAS "/" + name + ".json")) {}

    json answer(const json &command) {
        return json::parse(handler_.execute(command.dump()).line);
    }
    json state() {
        return answer({{"command", "state"}}).at("state");
    }
    void set(const std::string &target, const std::string &field, const json &value) {
        const json reply = answer({{"command", "set"}, {"target", target}, {"field", field}, {"value", value}});
        ASSERT_EQ(json(true), reply.at("ok")) << reply;
    }

private:
    explicit CameraOf(camera::CameraDescription description)
        : model_(description.name, description.description, std::move(description.services), [] { return 0.0; }) {}

    camera::CameraModel model_;
    camera::Faults faults_;
    camera::test::FakeServiceControl services_;
    camera::ServiceSupervisor supervisor_{model_, services_, [](const std::string & /*warning*/) {}};
    camera::ControlCommandHandler handler_{model_, faults_, supervisor_};
};

TEST(CameraStateTest, EveryShippedCameraIsRead) {
    for (const char *name : {"dome", "minimal", "stepper", "twinfocus"}) {
        const CameraState state = readCameraState(CameraOf(name).state());
        EXPECT_EQ(name, state.name);
        EXPECT_FALSE(state.services.empty());
        EXPECT_FALSE(state.restarting);
    }
}

TEST(CameraStateTest, TheDomeHasEverything) {
    CameraOf dome("dome");
    dome.set("relay/2", "state", 1);
    dome.answer({{"command", "fail"}, {"service", "relay"}, {"operation", "*"}, {"status", 1}, {"times", "always"}});
    dome.answer({{"command", "delay"}, {"service", "iris"}, {"operation", "*"}, {"milliseconds", 20}, {"times", 3}});
    dome.set("presets_tours/1", "presets",
             json::parse(R"([{"id": "a", "name": "Gate", "number": 7, "pan": 1000, "tilt": -5, "zoom": 20}])"));
    const CameraState state = readCameraState(dome.state());
    ASSERT_TRUE(state.positioning);
    EXPECT_EQ(359999, state.positioning->pan.maximum);
    EXPECT_TRUE(state.positioning->pan.endless);
    EXPECT_EQ(60000, state.positioning->fieldOfView);
    ASSERT_TRUE(state.lensFocus);
    EXPECT_EQ(5000, state.lensFocus->sharpPosition);
    ASSERT_TRUE(state.iris);
    EXPECT_FALSE(state.iris->manualMode);
    EXPECT_THAT(state.inputs, testing::ElementsAre(0, 0, 0, 0));
    EXPECT_THAT(state.relays, testing::ElementsAre(0, 1));
    EXPECT_THAT(state.temperatures, testing::ElementsAre(31500));
    ASSERT_EQ(1U, state.presets.size());
    EXPECT_EQ("Gate", state.presets.front().name);
    EXPECT_EQ("QN-4000 Dome", state.device.value_or(DeviceState()).model);
    ASSERT_EQ(1U, state.failures.size());
    EXPECT_FALSE(state.failures.front().times);
    ASSERT_EQ(1U, state.delays.size());
    EXPECT_EQ(3, state.delays.front().times.value_or(0));
}

/** Calls a function with the path of each member of the services' targets. */
template <typename Function>
void forEachMember(const json &object, const json::json_pointer &path, Function function) {
    for (const auto &item : object.items()) {
        function(path / item.key());
        if (item.value().is_object()) {
            forEachMember(item.value(), path / item.key(), function);
        }
    }
}

TEST(CameraStateTest, AMissingOrMistypedMemberIsAnErrorOrWithoutMeaning) {
    const json state = CameraOf("dome").state();
    int refused = 0;
    forEachMember(state, json::json_pointer(), [&](const json::json_pointer &path) {
        for (const bool isMissing : {true, false}) {
            json changed = state;
            if (isMissing) {
                changed.at(path.parent_pointer()).erase(path.back());
            } else {
                changed.at(path) = json::array({1, json::object()});
            }
            try {
                readCameraState(changed);
            } catch (const CameraStateError &error) {
                ++refused;
                EXPECT_STRNE("", error.what());
            }
        }
    });
    EXPECT_GT(refused, 150);
    json without = state;
    without["services"]["positioning"]["targets"]["positioning/1"]["pan"].erase("position");
    try {
        readCameraState(without);
        FAIL();
    } catch (const CameraStateError &error) {
        EXPECT_STREQ("services.positioning.targets.positioning/1.pan.position: missing", error.what());
    }
}

TEST(CameraStateTest, OnlyAnAnswerIsParsed) {
    const json state = CameraOf("minimal").state();
    EXPECT_EQ("minimal", parseCameraState(json({{"ok", true}, {"state", state}}).dump() + "\n").name);
    for (const std::string line : {"", "x", "[]", R"({"ok": false})", R"({"ok": true})", R"({"ok": true, "state": 1})",
                                   R"({"event": "changed"})"}) {
        EXPECT_THROW(parseCameraState(line), CameraStateError) << line;
    }
    EXPECT_THROW(parseCameraState(std::string(100000, '[')), CameraStateError);
}

TEST(ViewTest, FollowsTheState) {
    CameraOf dome("dome");
    dome.set("positioning/1", "pan.position", 90500);
    dome.set("positioning/1", "tilt.position", -30000);
    dome.set("positioning/1", "zoom.position", 45);
    dome.set("alarm/2", "state", 1);
    dome.set("relay/1", "state", 3);
    const View view = viewOf(readCameraState(dome.state()));
    EXPECT_EQ("dome", view.name);
    EXPECT_FALSE(view.fixed);
    EXPECT_DOUBLE_EQ(90.5, view.bearing);
    EXPECT_DOUBLE_EQ(-30.0, view.tilt);
    EXPECT_DOUBLE_EQ(4.5, view.zoom);
    EXPECT_DOUBLE_EQ(60.0, view.fieldOfView);
    EXPECT_DOUBLE_EQ(0.0, view.defocus);
    EXPECT_DOUBLE_EQ(1.0, view.exposure);
    EXPECT_THAT(view.inputs, testing::ElementsAre(false, true, false, false));
    EXPECT_THAT(view.relays, testing::ElementsAre(true, false));
}

TEST(ViewTest, TheIrisAndTheFocusChangeThePicture) {
    CameraOf dome("dome");
    dome.set("exposure/1", "manualMode", true);
    dome.set("lens_focus/1", "manualMode", true);
    double exposure = 0.0;
    for (int position = 0; position <= 255; position += 15) {
        dome.set("iris/1", "position", position);
        const double next = viewOf(readCameraState(dome.state())).exposure;
        EXPECT_GT(next, exposure);
        exposure = next;
    }
    dome.set("lens_focus/1", "position", 9000);
    const double wide = viewOf(readCameraState(dome.state())).defocus;
    dome.set("positioning/1", "zoom.position", 100);
    EXPECT_GT(wide, 0.0);
    EXPECT_GT(viewOf(readCameraState(dome.state())).defocus, wide);
}

TEST(ViewTest, AZoomStepperMagnifies) {
    CameraOf stepper("stepper");
    EXPECT_DOUBLE_EQ(1.0, viewOf(readCameraState(stepper.state())).zoom);
    stepper.set("zoom_stepper/1", "position", 6000);
    const View view = viewOf(readCameraState(stepper.state()));
    EXPECT_TRUE(view.fixed);
    EXPECT_DOUBLE_EQ(22.0, view.zoom);
    EXPECT_DOUBLE_EQ(55.0, view.fieldOfView);
}

} // namespace
