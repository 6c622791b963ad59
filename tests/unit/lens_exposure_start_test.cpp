// SPDX-License-Identifier: Apache-2.0
#include "lens_start_lines.h"
#include "snmp_utils.h"

namespace lens_tests {

namespace {

/** The exposure service, which both kinds of focus open for the automatic iris. */
class LensExposureStartTest : public LensTest, public testing::WithParamInterface<Drive> {
protected:
    void SetUp() override {
        LensTest::SetUp();
        offer(GetParam());
    }

    static bool init() {
        return GetParam().init(GetIpcCookie());
    }

    static void expectUpWithout(const Lines &exposureCalls, const std::vector<LogLine> &exposureLines) {
        EXPECT_TRUE(init());
        Lines calls{discoverCall(GetParam()), openCall(GetParam().service), GetParam().readRangeCall()};
        calls.insert(calls.end(), exposureCalls.begin(), exposureCalls.end());
        EXPECT_EQ(core().calls(), calls);
        std::vector<LogLine> lines = startLines(GetParam(), logs::info(GetParam().rangeLine(kLens)));
        lines.insert(lines.end(), exposureLines.begin(), exposureLines.end());
        EXPECT_EQ(core().logs(), lines);
        EXPECT_THAT(core().sleeps(), IsEmpty());
        forget();
        GetParam().deinit();
        EXPECT_THAT(core().calls(), ElementsAre(closeCall(GetParam().service)));
    }

    static LogLine failedLine() {
        return logs::error(std::string(GetParam().initName) + ": failed exposure initiator init");
    }
};

INSTANTIATE_TEST_SUITE_P(Drives, LensExposureStartTest, testing::Values(focus(), focusStepper()), titleOf);

} // namespace

TEST_P(LensExposureStartTest, NoExposureServiceIsLoggedAfterOneDiscovery) {
    core().targetsOnce("exposure", {false, {}});
    expectUpWithout({kDiscoverExposure}, {logs::error("no zorva API exposures")});
}

TEST_P(LensExposureStartTest, TheResultOfTheDiscoveryDecidesNotTheList) {
    core().targetsOnce("exposure", {false, {"exposure/1"}});
    expectUpWithout({kDiscoverExposure}, {logs::error("no zorva API exposures")});
}

TEST_P(LensExposureStartTest, AnEmptyListIsPassedOverWithoutAWord) {
    core().targets("exposure", {});
    expectUpWithout({kDiscoverExposure}, {});
}

TEST_P(LensExposureStartTest, AnExposureServiceThatDoesNotOpenDoesNotMatter) {
    core().fail("zorva_api_exposure_initiator_init", kRefused);
    expectUpWithout({kDiscoverExposure, openCall("exposure")}, {failedLine()});
}

TEST_P(LensExposureStartTest, ExposureIsOpenedEvenWithoutAFocusToUseIt) {
    core().targets(GetParam().service, {});
    EXPECT_FALSE(init());
    EXPECT_THAT(core().calls(), ElementsAre(discoverCall(GetParam()), kDiscoverExposure, openCall("exposure")));
    forget();
    GetParam().deinit();
    EXPECT_THAT(core().calls(), ElementsAre(closeCall("exposure")));
}

TEST_P(LensExposureStartTest, NeitherFocusNorExposureIsLoggedTwice) {
    core().targets(GetParam().service, {});
    core().targetsOnce("exposure", {false, {}});
    EXPECT_FALSE(init());
    EXPECT_THAT(core().logs(),
                ElementsAre(logs::error(GetParam().noTargetText), logs::error("no zorva API exposures")));
    forget();
    GetParam().deinit();
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_P(LensExposureStartTest, FocusAndExposureThatDoNotOpenAreLoggedInTurn) {
    core().fail(GetParam().function("initiator_init"), kRefused);
    core().fail("zorva_api_exposure_initiator_init", kRefused);
    EXPECT_FALSE(init());
    EXPECT_THAT(core().logs(), ElementsAre(logs::error(std::string(GetParam().initName) + ": failed " +
                                                       GetParam().initiatorText + " initiator init"),
                                           failedLine()));
}

} // namespace lens_tests
