// SPDX-License-Identifier: Apache-2.0
#include "lens_start_lines.h"
#include "snmp_utils.h"

namespace lens_tests {

namespace {

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
        Lines calls{discoverCall(GetParam()), openCall(GetParam().service), GetParam().readRangeCall()};
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

INSTANTIATE_TEST_SUITE_P(Drives, LensExposureStartTest, testing::Values(focus(), focusStepper()), titleOf);
INSTANTIATE_TEST_SUITE_P(Drives, LensStartTest, testing::ValuesIn(allDrives()), titleOf);

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
            EXPECT_EQ(core().calls(), Lines{discoverCall(GetParam())});
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
    expectUpWithout({kDiscoverExposure}, {none});
    core().targetsOnce("exposure", {false, {"exposure/1"}}); // the result of the discovery decides, not the list
    expectUpWithout({kDiscoverExposure}, {none});
    core().targetsOnce("exposure", {true, {}});
    expectUpWithout({kDiscoverExposure}, {});
    core().fail("zorva_api_exposure_initiator_init", kRefused);
    expectUpWithout({kDiscoverExposure, openCall("exposure")}, {failedLine()});
}

TEST_P(LensExposureStartTest, ItIsOpenedEvenWithoutAFocus) {
    core().targets(GetParam().service, {});
    EXPECT_FALSE(init());
    EXPECT_THAT(core().calls(), ElementsAre(discoverCall(GetParam()), kDiscoverExposure, openCall("exposure")));
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

} // namespace lens_tests
