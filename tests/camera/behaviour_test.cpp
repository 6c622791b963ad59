// SPDX-License-Identifier: Apache-2.0
// Behaviour of operations beyond the storage of values.
#include "steered_camera.h"

using namespace camera;
using nlohmann::json;

namespace {

class Dome : public test::SteeredCamera {
protected:
    Dome() {
        // Nobody reads the events, and those of 255 presets would take seconds.
        events_.stop();
    }

    wire::Status call(const std::string &service, const std::string &operation, const json &arguments) {
        return callService(service, operation, arguments);
    }

    /** Moves all axes and waits until the end of the moves. */
    wire::Status move(int pan, int tilt, int zoom) {
        const wire::Status status = call("positioning", "move_to_position_with_speed_percentage_send",
                                         {1, pan, 1.0, 1, tilt, 1.0, 1, zoom, 1.0, 1});
        now_ += kLongestMove;
        return status;
    }

    wire::Status store(const json &id, const json &name, int number) {
        return call("presets_tours", "set_preset_with_current_position_send", json::array({id, name, number, 1}));
    }

    json position() {
        const json state = camera_->state("positioning/1");
        return {state["pan"]["position"], state["tilt"]["position"], state["zoom"]["position"]};
    }

    static constexpr double kLongestMove = 60.0;
};

TEST_F(Dome, ComesRoundOnAnEndlessAxis) {
    const std::vector<std::pair<int, int>> ways = {
        {360000, 0}, {-1, 359999}, {719999, 359999}, {-720001, 359999}, {-2147483647 - 1, 276352}};
    for (const auto &[wanted, reached] : ways) {
        ASSERT_EQ(wire::kSuccess, move(wanted, 0, 10));
        EXPECT_EQ(reached, position()[0]) << wanted;
    }
}

TEST_F(Dome, RefusesAPositionBeyondItsReachAndMovesNoAxis) {
    const json before = position();
    EXPECT_EQ(wire::kInvalidArgument, move(5, 20001, 10));
    EXPECT_EQ(wire::kInvalidArgument, move(5, -90001, 10));
    EXPECT_EQ(wire::kInvalidArgument, move(5, 0, 301));
    EXPECT_EQ(wire::kInvalidArgument, move(5, 0, 9));
    EXPECT_EQ(before, position());
}

TEST_F(Dome, ZoomsOnDigitallyOnlyWhenThatIsEnabled) {
    EXPECT_EQ(wire::kInvalidArgument, move(0, 0, 3600));
    setField("positioning", "digitalZoom.enabled", true);
    EXPECT_EQ(wire::kSuccess, move(0, 0, 3600));
    EXPECT_EQ(wire::kInvalidArgument, move(0, 0, 3601));
}

TEST_F(Dome, StopsAtASoftPositionLimit) {
    setField("positioning", "tilt.softPosition", {{"enabled", true}, {"minimum", -1000}, {"maximum", 1000}});
    ASSERT_EQ(wire::kSuccess, move(0, -50000, 10));
    EXPECT_EQ(-1000, position()[1]);
    ASSERT_EQ(wire::kSuccess, move(0, 20000, 10));
    EXPECT_EQ(1000, position()[1]);
}

TEST_F(Dome, RunsNoFasterThanItCanAndMay) {
    ASSERT_EQ(wire::kSuccess, call("positioning", "set_velocity_send", {1, -2147483647 - 1, 1, -999999, 0, 0, 1}));
    now_ += 0.5;
    EXPECT_EQ(-280000, camera_->state("positioning/1")["pan"]["velocity"]);
    EXPECT_EQ(-120000, camera_->state("positioning/1")["tilt"]["velocity"]);
    ASSERT_EQ(wire::kSuccess, call("positioning", "set_soft_velocity_limits_send", {1, 0, 1000, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(-280000, camera_->state("positioning/1")["pan"]["velocity"]);
    now_ += 0.5;
    EXPECT_EQ(-1000, camera_->state("positioning/1")["pan"]["velocity"]);
}

TEST_F(Dome, RefusesInvalidSoftVelocityLimits) {
    const json before = camera_->state("positioning/1");
    for (const json &arguments : {json{1, -1, 1000, 0, 0, 0, 0, 0, 0}, json{1, 60, 50, 0, 0, 0, 0, 0, 0},
                                  json{1, 60, 280001, 0, 0, 0, 0, 0, 0}, json{1, 60, 70, 0, 0, 0, 1, 9, 8}}) {
        EXPECT_EQ(wire::kInvalidArgument, call("positioning", "set_soft_velocity_limits_send", arguments));
    }
    EXPECT_EQ(before, camera_->state("positioning/1"));
}

TEST_F(Dome, EndsAVelocityWhenItMovesToAPosition) {
    ASSERT_EQ(wire::kSuccess, call("positioning", "set_velocity_send", {1, 5000, 1, -6000, 0, 0, 1}));
    now_ += 1.0;
    ASSERT_EQ(wire::kSuccess, call("positioning", "move_to_position_with_speed_percentage_send",
                                   {1, 90000, 1.0, 0, 0, 0.0, 0, 0, 0.0, 1}));
    now_ += 10.0;
    EXPECT_EQ(90000, position()[0]);
    EXPECT_EQ(0, camera_->state("positioning/1")["pan"]["velocity"]);
    EXPECT_EQ(-6000, camera_->state("positioning/1")["tilt"]["velocity"]);
}

TEST_F(Dome, KeepsPresetsAndComesBackToThem) {
    ASSERT_EQ(wire::kSuccess, move(90000, -45000, 100));
    ASSERT_EQ(wire::kSuccess, store("gate", "Gate", 7));
    ASSERT_EQ(wire::kSuccess, move(0, 0, 10));
    ASSERT_EQ(wire::kSuccess, call("presets_tours", "get_preset_id_for_quarnapi_id_send", {7}));
    EXPECT_EQ(json::array({"gate"}), answer_.results);
    ASSERT_EQ(wire::kSuccess, call("presets_tours", "move_to_preset_send", {"gate", 0.5, 1, 1}));
    now_ += kLongestMove;
    EXPECT_EQ((json{90000, -45000, 100}), position());
}

TEST_F(Dome, HasNoIdentifierForANumberWithoutPreset) {
    for (const int number : {-1, 0, 1, 300}) {
        ASSERT_EQ(wire::kSuccess, call("presets_tours", "get_preset_id_for_quarnapi_id_send", {number}));
        EXPECT_EQ(json::array({""}), answer_.results);
    }
}

TEST_F(Dome, PutsAPresetInThePlaceOfThoseWithItsNumberOrIdentifier) {
    ASSERT_EQ(wire::kSuccess, store("a", "A", 9));
    ASSERT_EQ(wire::kSuccess, store("b", "B", 2));
    ASSERT_EQ(wire::kSuccess, store("c", nullptr, 5));
    ASSERT_EQ(wire::kSuccess, store("a", "A again", 2));
    const json presets = camera_->state("presets_tours/1")["presets"];
    ASSERT_EQ(2U, presets.size());
    EXPECT_EQ("a", presets[0]["id"]);
    EXPECT_EQ("A again", presets[0]["name"]);
    EXPECT_EQ(2, presets[0]["number"]);
    EXPECT_EQ("c", presets[1]["id"]);
    EXPECT_EQ("", presets[1]["name"]);
}

TEST_F(Dome, MakesAnIdentifierForAPresetWithoutOne) {
    ASSERT_EQ(wire::kSuccess, store("preset-3", "", 1));
    ASSERT_EQ(wire::kSuccess, store("", "", 3));
    ASSERT_EQ(wire::kSuccess, store(nullptr, "", 4));
    const json presets = camera_->state("presets_tours/1")["presets"];
    EXPECT_EQ("preset-3", presets.at(0)["id"]);
    EXPECT_EQ("preset-3-new", presets.at(1)["id"]);
    EXPECT_EQ("preset-4", presets.at(2)["id"]);
}

TEST_F(Dome, HoldsAllItsPresetsAndNoMore) {
    for (int number = 1; number <= 255; ++number) {
        ASSERT_EQ(wire::kSuccess, store("", "", number));
    }
    const json before = camera_->state("presets_tours/1");
    ASSERT_EQ(255U, before["presets"].size());
    for (const int number : {-1, 256}) {
        EXPECT_EQ(wire::kInvalidArgument, store("", "", number));
    }
    EXPECT_EQ(wire::kFailed, store("", "", 0));
    EXPECT_EQ(before, camera_->state("presets_tours/1"));
    // A full camera still puts presets in the place of others.
    EXPECT_EQ(wire::kSuccess, store("new", "", 255));
    ASSERT_FALSE(camera_->set("presets_tours/1", "presets", json::array()));
}

TEST_F(Dome, TakesAnyNumberHoweverFewPresetsItHolds) {
    setField("presets_tours", "maximumPresets", 2);
    for (const int number : {255, 0}) {
        ASSERT_EQ(wire::kSuccess, store("", "", number));
        ASSERT_EQ(wire::kSuccess, call("presets_tours", "get_preset_id_for_quarnapi_id_send", {number}));
        EXPECT_EQ(json::array({"preset-" + std::to_string(number)}), answer_.results);
    }
    EXPECT_EQ(wire::kFailed, store("", "", 1));
    const std::optional<Problem> problem = camera_->set("presets_tours/1", "maximumPresets", 1);
    ASSERT_TRUE(problem);
    EXPECT_EQ("presets_tours/1 presets: expected at most 1 presets (maximumPresets), found 2", toString(*problem));
}

TEST_F(Dome, RefusesAPresetThatItDoesNotHave) {
    EXPECT_EQ(wire::kInvalidArgument, call("presets_tours", "move_to_preset_send", {"gate", 1.0, 1, 1}));
    EXPECT_EQ(wire::kInvalidArgument, call("presets_tours", "move_to_preset_send", {nullptr, 1.0, 1, 1}));
}

TEST(Presets, NeedSomethingToPosition) {
    const auto camera = test::makeCameraOf(
        "presets_tours", {{"maximumPresets", 3}, {"presets", {{{"id", "a"}, {"name", "A"}, {"number", 1}}}}});
    const json before = camera->state("presets_tours/1");
    EXPECT_EQ(wire::kNotSupported,
              camera->call("presets_tours", {"move_to_preset_send", "presets_tours/1", "a", 1.0, 1, 1}).status);
    EXPECT_EQ(
        wire::kNotSupported,
        camera->call("presets_tours", {"set_preset_with_current_position_send", "presets_tours/1", "b", "B", 2, 1})
            .status);
    EXPECT_EQ(before, camera->state("presets_tours/1"));
}

TEST_F(Dome, SwitchesNoRelayThatHasNotBeenSetUp) {
    EXPECT_EQ(wire::kNotSupported, call("relay", "set_state_send", {1}));
    EXPECT_EQ(0, camera_->state("relay/1")["state"]);
    ASSERT_EQ(wire::kSuccess, call("relay", "set_configuration_send", {1, 0, 1, 0, 1, 1, 1}));
    EXPECT_EQ(wire::kSuccess, call("relay", "set_state_send", {1}));
    EXPECT_EQ(1, camera_->state("relay/1")["state"]);
    ASSERT_EQ(wire::kSuccess, call("relay", "set_configuration_send", {0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(wire::kNotSupported, call("relay", "set_state_send", {0}));
    EXPECT_EQ(1, camera_->state("relay/1")["state"]);
}

TEST_F(Dome, RefusesInvalidRelayStatesAndRestarts) {
    setField("relay", "configuration.c1", 1);
    EXPECT_EQ(wire::kInvalidArgument, call("relay", "set_state_send", {2}));
    EXPECT_EQ(wire::kNotSupported, call("device_management", "reboot_send", {1}));
    EXPECT_EQ(0, camera_->state("device_management/1")["reboots"]);
}

} // namespace
