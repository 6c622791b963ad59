// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Features that want the same objects: the two kinds of focus, and the zoom of positioning and of the zoom stepper.
 */
#include <algorithm>

#include "lens_start_lines.h"
#include "positioning_test.h"

namespace lens_tests {

namespace {

class LensRivalsTest : public LensTest {
protected:
    static void expectRefused(const Drive &drive) {
        EXPECT_TRUE(drive.init(GetIpcCookie()));
        EXPECT_EQ(core().logs(), startLines(drive, logs::info(drive.rangeLine(kLens)), false));
        EXPECT_EQ(core().logs(3).size(), drive.objects.size());
        forget();
    }
};

class ZoomRivalsTest : public PositioningTest {
protected:
    void SetUp() override {
        PositioningTest::SetUp();
        const Drive zoom = zoomStepper();
        core().targets(zoom.service, {zoom.service + "/1"});
        core().answer(zoom.function(zoom.readRange), {kLens.min, kLens.max, kLens.minSpeed, kLens.maxSpeed});
    }
};

std::size_t rowOf(bool (*init)(void *)) {
    const auto *row = std::find_if(gFeatureModules.begin(), gFeatureModules.end(),
                                   [init](const FeatureModule &each) { return each.init == init; });
    return static_cast<std::size_t>(row - gFeatureModules.begin());
}

} // namespace

TEST_F(LensRivalsTest, TheMotorDrivenFocusComesFirst) {
    EXPECT_LT(rowOf(InitFocus), rowOf(InitFocusStepper));
    EXPECT_LT(rowOf(InitFocusStepper), gFeatureModules.size());
}

TEST_F(LensRivalsTest, PositioningComesBeforeTheZoomStepperWhichIsLast) {
    EXPECT_LT(rowOf(InitPositioning), rowOf(InitZoomStepper));
    EXPECT_EQ(rowOf(InitZoomStepper), gFeatureModules.size() - 1);
}

TEST_F(LensRivalsTest, TheSecondFocusIsRefusedSixTimesAndSaysThatItIsUp) {
    start(focus());
    offer(focusStepper());
    expectRefused(focusStepper());
}

TEST_F(LensRivalsTest, TheFirstFocusServesEveryObject) {
    start(focus());
    start(focusStepper());
    core().answer("zorva_api_lens_focus_get_manual_mode_enable_send", {std::int64_t{0}});
    core().answer("zorva_api_exposure_get_manual_mode_enable_send", {std::int64_t{0}});
    for (const Object &object : focus().objects) {
        forget();
        EXPECT_THAT(get(object.instance()), isAccepted());
        EXPECT_EQ(core().logs().front(), enter(object));
    }
    forget();
    set(focus().position().instance(), NewValue::text(command(2, 0, 0)));
    set(focus().objects.at(3).instance(), NewValue::text(octets({0x40, 0x00})));
    EXPECT_THAT(core().calls(),
                ElementsAre(focus().moveCall(kLens.min), focus().call("set_manual_mode_enable_send", "1")));
    for (const std::size_t index : {2U, 3U}) {
        commit(focus().objects.at(index), std::string(index == 2 ? 4 : 2, '\0'));
    }
}

TEST_F(LensRivalsTest, TheSecondFocusServesWithoutTheFirst) {
    offer(focusStepper());
    EXPECT_FALSE(InitFocus(GetIpcCookie()));
    forget();
    EXPECT_TRUE(InitFocusStepper(GetIpcCookie()));
    EXPECT_EQ(core().logs(), startLines(focusStepper(), logs::info(focusStepper().rangeLine(kLens))));
    DeinitFocus();
    DeinitFocusStepper();
}

TEST_F(LensRivalsTest, EachFocusHasAnExposureConnectionOfItsOwn) {
    start(focus());
    start(focusStepper());
    DeinitFocus();
    DeinitFocusStepper();
    EXPECT_THAT(core().calls(), ElementsAre(closeCall("lens_focus"), closeCall("exposure"), closeCall("focus_stepper"),
                                            closeCall("exposure")));
}

TEST_F(ZoomRivalsTest, TheZoomOfPositioningStays) {
    connect();
    EXPECT_TRUE(InitZoomStepper(GetIpcCookie()));
    EXPECT_EQ(core().logs(), startLines(zoomStepper(), logs::info(zoomStepper().rangeLine(kLens)), false));
    const char *const handlers[] = {"handle_rangeZoomLimit", "handle_timeoutZoom", "handle_positionZoomLens"};
    for (std::size_t i = 0; i < 3; ++i) {
        core().clearRecord();
        get(zoomStepper().objects.at(i).instance());
        EXPECT_EQ(core().logs().front(), logs::debug(std::string(handlers[i]) + ": Enter."));
    }
}

TEST_F(ZoomRivalsTest, WithoutAPositioningServiceTheZoomStepperServes) {
    startWithoutService();
    EXPECT_TRUE(InitZoomStepper(GetIpcCookie()));
    EXPECT_EQ(core().logs(), startLines(zoomStepper(), logs::info(zoomStepper().rangeLine(kLens))));
    for (const Object &object : zoomStepper().objects) {
        core().clearRecord();
        get(object.instance());
        EXPECT_EQ(core().logs().front(), enter(object));
    }
}

} // namespace lens_tests
