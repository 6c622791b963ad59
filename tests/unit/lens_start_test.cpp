// SPDX-License-Identifier: Apache-2.0
#include "lens_test.h"
#include "positioning_test.h"
#include "snmp_utils.h"

namespace lens_tests {

namespace {

/** Calls of a start that finds the service in the given number of discoveries. */
Lines startCalls(const Drive &drive, std::size_t discoveries = 1) {
    Lines calls(discoveries, discoverCall(drive.service));
    calls.insert(calls.end(), {openCall(drive.service), drive.readRangeCall()});
    if (drive.opensExposure) {
        calls.insert(calls.end(), {discoverCall("exposure"), openCall("exposure")});
    }
    return calls;
}

/** Log lines of a start: that of the limits, and those of the registrations that the agent takes or refuses. */
std::vector<LogLine> startLines(const Drive &drive, const LogLine &limits, bool taken = true) {
    std::vector<LogLine> lines{limits};
    for (const Object &object : drive.objects) {
        const std::string text = "registerScalar: Registration for "s + object.name;
        lines.push_back(taken ? logs::debug(text + " OID OK") : logs::error(text + " OID not OK"));
        lines.push_back(logs::info(drive.initName + ": registerScalar=" + object.name));
    }
    return lines;
}

class LensStartTest : public LensTest, public testing::WithParamInterface<Drive> {
protected:
    void SetUp() override {
        LensTest::SetUp();
        offer(GetParam());
    }

    static bool init() {
        return GetParam().init(GetIpcCookie());
    }

    static void restart() {
        GetParam().deinit();
        UnregisterAll();
        ASSERT_TRUE(init());
    }

    /** Checks where a move to the minimum goes. */
    static void expectMinimum(const std::string &call) {
        forget();
        commit(GetParam().position(), command(2, 0, 0));
        EXPECT_THAT(core().calls(), ElementsAre(call));
    }
};

/** The exposure service, which both kinds of focus open for the automatic iris. */
class LensExposureStartTest : public LensStartTest {
protected:
    static void expectUpWithout(const Lines &exposureCalls, const std::vector<LogLine> &exposureLines) {
        EXPECT_TRUE(init());
        Lines calls{discoverCall(GetParam().service), openCall(GetParam().service), GetParam().readRangeCall()};
        calls.insert(calls.end(), exposureCalls.begin(), exposureCalls.end());
        EXPECT_EQ(core().calls(), calls);
        std::vector<LogLine> lines = startLines(GetParam(), logs::info(GetParam().rangeLine(kLens)));
        lines.insert(lines.end(), exposureLines.begin(), exposureLines.end());
        EXPECT_EQ(core().logs(), lines);
        EXPECT_THAT(core().sleeps(), IsEmpty());
        expectEnd({closeCall(GetParam().service)});
        UnregisterAll();
        core().clearRecord();
    }
    static void expectEnd(const Lines &calls) {
        forget();
        GetParam().deinit();
        EXPECT_EQ(core().calls(), calls);
    }
    static LogLine failedLine() {
        return logs::error(GetParam().initName + ": failed exposure initiator init");
    }
};

INSTANTIATE_TEST_SUITE_P(Drives, LensExposureStartTest, testing::Values(focus(), focusStepper()), nameOf<Drive>);
/** Features that want the same objects: the two kinds of focus, and the zoom of positioning and the zoom stepper. */
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

INSTANTIATE_TEST_SUITE_P(Drives, LensStartTest, testing::ValuesIn(allDrives()), nameOf<Drive>);

} // namespace

TEST_P(LensStartTest, LogsLimitsOfAnySize) {
    const Lens lens = GetParam().isUnsigned ? Lens{4294967295, 2147483648, 4000000000}
                                            : Lens{-2147483648, 2147483647, -1, -7, -2147483648};
    answer(GetParam(), lens);
    EXPECT_TRUE(init());
    EXPECT_EQ(core().logs().front(), logs::info(GetParam().rangeLine(lens)));
}

TEST_P(LensStartTest, UnreadableLimitsAreLoggedAndNotThoseOfAnEarlierStart) {
    ASSERT_TRUE(init());
    core().fail(GetParam().function(GetParam().readRange), kRefused);
    core().clearRecord();
    restart();
    EXPECT_EQ(core().logs(), startLines(GetParam(), logs::failed(GetParam().readRangeText)));
    expectMinimum(GetParam().moveCall(0, 0));
}

TEST_P(LensStartTest, AFeatureThatWaitsFindsAServiceThatComesLate) {
    for (std::size_t late = 1; late <= 5; ++late) {
        SCOPED_TRACE(late);
        core().reset();
        openCore();
        offer(GetParam());
        for (std::size_t i = 0; i < late; ++i) {
            core().targetsOnce(GetParam().service, {false, {}});
        }
        EXPECT_EQ(init(), GetParam().waits);
        if (GetParam().waits) {
            EXPECT_EQ(core().calls(), startCalls(GetParam(), late + 1));
            EXPECT_EQ(core().logs(), startLines(GetParam(), logs::info(GetParam().rangeLine(kLens))));
            EXPECT_EQ(core().sleeps(), std::vector<unsigned int>(late, 2));
        } else {
            EXPECT_EQ(core().calls(), Lines{discoverCall(GetParam().service)});
            EXPECT_THAT(core().logs(), ElementsAre(logs::error(GetParam().noTargetText)));
            EXPECT_THAT(core().sleeps(), IsEmpty());
        }
        UnregisterAll();
    }
}

TEST_P(LensStartTest, ASecondStartUsesItsOwnConnectionAndTargets) {
    ASSERT_TRUE(init());
    core().targets(GetParam().service, {"another"});
    restart();
    const std::string service = GetParam().service;
    std::string expected = GetParam().moveCall(kLens.min);
    expected.replace(expected.find(service + "/1"), service.size() + 2, "another");
    expectMinimum(expected);
}

TEST_P(LensExposureStartTest, TheFocusStartsWithoutIt) {
    const LogLine none = logs::error("no zorva API exposures");
    core().targetsOnce("exposure", {false, {}});
    expectUpWithout({discoverCall("exposure")}, {none});
    core().targetsOnce("exposure", {false, {"exposure/1"}}); // the result of the discovery decides, not the list
    expectUpWithout({discoverCall("exposure")}, {none});
    core().targetsOnce("exposure", {true, {}});
    expectUpWithout({discoverCall("exposure")}, {});
    core().fail("zorva_api_exposure_initiator_init", kRefused);
    expectUpWithout({discoverCall("exposure"), openCall("exposure")}, {failedLine()});
}

TEST_P(LensExposureStartTest, ItIsOpenedEvenWithoutAFocus) {
    core().targets(GetParam().service, {});
    EXPECT_FALSE(init());
    EXPECT_THAT(core().calls(),
                ElementsAre(discoverCall(GetParam().service), discoverCall("exposure"), openCall("exposure")));
    expectEnd({closeCall("exposure")});

    core().targetsOnce("exposure", {false, {}});
    EXPECT_FALSE(init());
    EXPECT_THAT(core().logs(),
                ElementsAre(logs::error(GetParam().noTargetText), logs::error("no zorva API exposures")));
    expectEnd({});
}

TEST_P(LensExposureStartTest, FocusAndExposureThatDoNotOpenAreLoggedInTurn) {
    core().fail(GetParam().function("initiator_init"), kRefused);
    core().fail("zorva_api_exposure_initiator_init", kRefused);
    EXPECT_FALSE(init());
    EXPECT_THAT(core().logs(), ElementsAre(logs::error(GetParam().initName + ": failed " + GetParam().initiatorText +
                                                       " initiator init"),
                                           failedLine()));
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
