// SPDX-License-Identifier: Apache-2.0
// Presets through the whole chain: stored, moved to, and looked up by their numbers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "camera_agent.h"
#include "eventually.h"
#include "object_oids.h"

namespace {

using namespace harness;
using nlohmann::json;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;

constexpr const char *kPanTarget = "positioning/1";

class Presets : public CameraAgent {
protected:
    explicit Presets(const std::string &camera = "dome") : CameraAgent(camera) {}

    json presets() const {
        return targetState(camera_, "presets_tours/1").at("presets");
    }

    void putPan(int position) const {
        setField(camera_, kPanTarget, "pan.position", position);
    }

    testing::AssertionResult panArrivesAt(int position) const {
        const auto pan = [this] { return targetState(camera_, kPanTarget).at("pan"); };
        const bool there = eventually(std::chrono::seconds(15), [&] {
            const json now = pan();
            return now.at("position") == position && now.at("velocity") == 0;
        });
        return there ? testing::AssertionSuccess() : testing::AssertionFailure() << pan();
    }
};

class FixedCameraPresets : public Presets {
protected:
    FixedCameraPresets() : Presets("minimal") {}
};

} // namespace

TEST_F(Presets, APresetIsStoredAndMovedTo) {
    putPan(90000);
    setInteger(oids::presetStorePosition, 7);
    ASSERT_THAT(presets(), SizeIs(1));
    const json preset = presets().at(0);
    EXPECT_EQ(preset.at("name"), "Preset 7");
    EXPECT_EQ(preset.at("number"), 7);
    EXPECT_EQ(preset.at("pan"), 90000);
    EXPECT_THAT(preset.at("id").get<std::string>(),
                MatchesRegex("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}"));
    putPan(0);
    setInteger(oids::presetGotoPosition, 7);
    EXPECT_TRUE(panArrivesAt(90000));
    EXPECT_EQ(get(oids::presetGotoPosition), "0x07") << "written as a number, read as an octet";
    EXPECT_EQ(get(oids::presetStorePosition), "0x07");
}

TEST_F(Presets, StoringAgainKeepsTheIdentifier) {
    setInteger(oids::presetStorePosition, 12);
    const json before = presets().at(0);
    putPan(45000);
    setInteger(oids::presetStorePosition, 12);
    ASSERT_THAT(presets(), SizeIs(1));
    EXPECT_EQ(presets().at(0).at("id"), before.at("id"));
    EXPECT_EQ(presets().at(0).at("name"), "Preset 12");
    EXPECT_EQ(presets().at(0).at("pan"), 45000);
    setInteger(oids::presetStorePosition, 13);
    EXPECT_THAT(presets(), SizeIs(2));
    EXPECT_NE(presets().at(0).at("id"), presets().at(1).at("id"));
}

TEST_F(Presets, GoingToANumberWithoutAPresetDoesNothing) {
    const CameraEvents events(camera_);
    setInteger(oids::presetGotoPosition, 99);
    EXPECT_EQ(get(oids::presetGotoPosition), "\"c\"");
    EXPECT_THAT(finishedOperations(events), IsEmpty());
}

TEST_F(Presets, AFailureOfTheCameraIsLoggedAndTheCommandAccepted) {
    control("fail", "presets_tours", "set_preset_with_current_position_send", "1");
    setInteger(oids::presetStorePosition, 3);
    EXPECT_THAT(presets(), IsEmpty());
    EXPECT_EQ(logged("Failed zorva api call: zorva_api_presets_tours_set_preset_with_current_position_send("), 1U);
    control("down", "presets_tours");
    setInteger(oids::presetGotoPosition, 3);
    EXPECT_EQ(get(oids::presetGotoPosition), "0x03");
    EXPECT_EQ(get(oids::rangeMaximumPreset), "0");
    control("up", "presets_tours");
    EXPECT_EQ(get(oids::rangeMaximumPreset), "255");
}

TEST_F(Presets, TheNumberOfPresetsIsTheCameras) {
    setField(camera_, "presets_tours/1", "maximumPresets", 16);
    EXPECT_EQ(get(oids::rangeMaximumPreset), "16");
    EXPECT_EQ(logged("handle_rangeMaximumPreset: get_max_presets, 16"), 1U);
}

TEST_F(FixedCameraPresets, HoldsNumbersAndMovesNothing) {
    EXPECT_EQ(get(oids::rangeMaximumPreset), "0");
    setInteger(oids::presetGotoPosition, 5);
    setInteger(oids::presetStorePosition, 6);
    EXPECT_EQ(get(oids::presetGotoPosition), "0x05");
    EXPECT_EQ(get(oids::presetStorePosition), "0x06");
    EXPECT_EQ(logged("no zorva API presets"), 1U);
    EXPECT_EQ(logged("Failed zorva api call"), 0U);
}
