// SPDX-License-Identifier: Apache-2.0
#include "lens_features_test.h"

namespace lens_tests {

namespace {

/** What a service answers about its manual mode. */
enum class Mode { kAutomatic, kManual, kManual255, kFailed, kClosed, kAbsent };

class LensFeatureStatusTest : public FeatureSetTest {
protected:
    static const Object &object() {
        return GetParam().status();
    }

    static void script(const std::string &function, Mode mode) {
        if (mode == Mode::kFailed) {
            core().fail(function, kRefused);
        } else {
            const std::int64_t manual = mode == Mode::kManual255 ? 255 : 1;
            core().answer(function, {mode == Mode::kAutomatic ? std::int64_t{0} : manual});
        }
    }

    static void device(Mode focusMode, Mode exposureMode) {
        script(GetParam().drive.function(kGetManual), focusMode);
        script(std::string("zorva_api_exposure_") + kGetManual, exposureMode);
    }

    static Lines expectedStory(Mode focusMode, Mode exposureMode) {
        const Drive &drive = GetParam().drive;
        Lines expected{line(enter(object())), drive.call(kGetManual, "&")};
        if (focusMode == Mode::kFailed) {
            expected.push_back("3 Failed zorva api call: " + drive.function(kGetManual) + "( gFocusApiCookie, " +
                               GetParam().targetsText + "[kDefaultIndex].c_str(), &manualMode) (status 17)");
        }
        if (exposureMode != Mode::kAbsent && exposureMode != Mode::kClosed) {
            expected.push_back(exposureCall(kGetManual, "&"));
        }
        if (exposureMode == Mode::kFailed || exposureMode == Mode::kClosed) {
            expected.emplace_back("3 Failed zorva api call: zorva_api_exposure_get_manual_mode_enable_send( "
                                  "gExposureApiCookie, gExposures[kDefaultIndex].c_str(), &manualMode) (status 17)");
        }
        const char *const flags[] = {"FALSE", "TRUE"};
        expected.push_back(line(said(object(), 6,
                                     std::string("autoIris=") + flags[exposureMode == Mode::kAutomatic ? 1 : 0] +
                                         ",autoFocus=" + flags[focusMode == Mode::kAutomatic ? 1 : 0])));
        expected.push_back(line(done(object())));
        return expected;
    }

    static void expectStatus(int mode, Mode focusMode, Mode exposureMode) {
        device(focusMode, exposureMode);
        // Another value to start with, which the answer has to replace.
        const Answer answer = phase(object(), mode, octets({0xFF, 0xFF}));
        EXPECT_EQ(story(), expectedStory(focusMode, exposureMode));
        EXPECT_THAT(answer, isAccepted());
        EXPECT_EQ(answer.type, ASN_OCTET_STR);
        EXPECT_EQ(answer.octets, octets({(exposureMode == Mode::kAutomatic ? 0x80U : 0U) |
                                         (focusMode == Mode::kAutomatic ? 0x40U : 0U)}));
    }
};

constexpr Mode kModes[] = {Mode::kAutomatic, Mode::kManual, Mode::kManual255, Mode::kFailed};

INSTANTIATE_TEST_SUITE_P(Sets, LensFeatureStatusTest, testing::ValuesIn(featureSets()), setTitleOf);

} // namespace

TEST_P(LensFeatureStatusTest, ShowsWhatIsAutomaticNow) {
    for (const int mode : Modes{MODE_GET, MODE_GETNEXT}) {
        for (const Mode focusMode : kModes) {
            for (const Mode exposureMode : kModes) {
                SCOPED_TRACE(static_cast<int>(focusMode) * 10 + static_cast<int>(exposureMode));
                expectStatus(mode, focusMode, exposureMode);
            }
        }
    }
}

TEST_P(LensFeatureStatusTest, WithoutAnExposureServiceTheIrisIsNotAutomatic) {
    restartWithoutExposure();
    for (const Mode focusMode : kModes) {
        expectStatus(MODE_GET, focusMode, Mode::kAbsent);
    }
}

TEST_P(LensFeatureStatusTest, AnExposureServiceThatIsClosedIsLoggedLikeOneThatRefuses) {
    restartWithClosedExposure();
    for (const Mode focusMode : kModes) {
        expectStatus(MODE_GET, focusMode, Mode::kClosed);
    }
}

TEST_P(LensFeatureStatusTest, TheIrisIsAskedForWithTheFlagOfTheFocus) {
    for (const Mode focusMode : {Mode::kAutomatic, Mode::kManual}) {
        device(focusMode, Mode::kAutomatic);
        core().answer(std::string("zorva_api_exposure_") + kGetManual, {nullptr});
        EXPECT_EQ(get(object().instance()).octets, octets({focusMode == Mode::kAutomatic ? 0xC0U : 0U}));
    }
}

TEST_P(LensFeatureStatusTest, AutomaticFocusAndManualIrisReadAsBitSix) {
    device(Mode::kAutomatic, Mode::kManual);
    const Answer answer = get(object().instance());
    EXPECT_THAT(answer, isAccepted());
    EXPECT_EQ(answer.octets, octets({0x40}));
    EXPECT_EQ(core().logs(6), (Lines{std::string(object().handler) + ": autoIris=FALSE,autoFocus=TRUE"}));
}

TEST_P(LensFeatureStatusTest, AsksTheDeviceEveryTime) {
    for (const Mode mode : {Mode::kAutomatic, Mode::kManual, Mode::kAutomatic}) {
        device(mode, mode);
        EXPECT_EQ(get(object().instance()).octets, octets({mode == Mode::kAutomatic ? 0xC0U : 0U}));
    }
}

} // namespace lens_tests
