// SPDX-License-Identifier: Apache-2.0
#include "lens_features_test.h"

namespace lens_tests {

namespace {

class LensFeatureControlTest : public FeatureSetTest {
protected:
    static const Object &object() {
        return GetParam().control();
    }

    static std::string info(const std::string &text) {
        return line(said(object(), 6, text));
    }

    static Lines focusStory(bool automatic) {
        const Drive &drive = GetParam().drive;
        if (!automatic) {
            return {drive.call(kSetManual, "1"), info("disabling auto-focus")};
        }
        return {drive.call(kSetManual, "0"), info(GetParam().startText), drive.call(GetParam().startOperation, "")};
    }

    static Lines irisStory(bool automatic) {
        return {exposureCall(kSetManual, automatic ? "0" : "1"),
                info(automatic ? "starting auto-iris" : "stopping auto-iris")};
    }

    static void expectStory(const std::string &value, const Lines &first, const Lines &second = {}) {
        EXPECT_THAT(commit(object(), value), isOctets(value));
        Lines expected{line(enter(object()))};
        expected.insert(expected.end(), first.begin(), first.end());
        expected.insert(expected.end(), second.begin(), second.end());
        expected.push_back(line(done(object(), 6)));
        EXPECT_EQ(story(), expected) << testing::PrintToString(value);
        EXPECT_EQ(get(object().instance()).octets, value);
    }
};

INSTANTIATE_TEST_SUITE_P(Sets, LensFeatureControlTest, testing::ValuesIn(featureSets()), setTitleOf);

} // namespace

TEST_P(LensFeatureControlTest, TakesEightOfAllValues) {
    DirtyRequest request(object().instance(), NewValue::text(octets({0, 0})));
    const std::vector<LogLine> lines{enter(object()), done(object(), 6)};
    int taken = 0;
    for (unsigned int value = 0; value <= 0xFFFF; ++value) {
        core().clearRecord();
        request.info()->status = SNMP_ERR_NOERROR;
        request.info()->requestvb->val.string[0] = static_cast<unsigned char>(value >> 8U);
        request.info()->requestvb->val.string[1] = static_cast<unsigned char>(value & 0xFFU);
        const Answer answer = request.runOwnHandler(MODE_SET_RESERVE2);
        const bool good = (value & 0x3F7FU) == 0;
        const int expected = good ? SNMP_ERR_NOERROR : SNMP_ERR_WRONGVALUE;
        taken += good ? 1 : 0;
        ASSERT_EQ(answer.returned, expected) << value;
        ASSERT_EQ(answer.requestError, expected) << value;
        ASSERT_EQ(core().logs(), lines) << value;
    }
    EXPECT_EQ(taken, 8);
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_P(LensFeatureControlTest, WithoutAFeatureNothingIsSwitched) {
    expectStory(octets({0x00, 0x00}), {});
    expectStory(octets({0x00, 0x80}), {});
}

TEST_P(LensFeatureControlTest, SwitchesTheFocus) {
    expectStory(octets({0x40, 0x80}), focusStory(true));
    expectStory(octets({0x40, 0x00}), focusStory(false));
}

TEST_P(LensFeatureControlTest, SwitchesTheIris) {
    expectStory(octets({0x80, 0x80}), irisStory(true));
    expectStory(octets({0x80, 0x00}), irisStory(false));
}

TEST_P(LensFeatureControlTest, SwitchesTheFocusBeforeTheIris) {
    expectStory(octets({0xC0, 0x80}), focusStory(true), irisStory(true));
    expectStory(octets({0xC0, 0x00}), focusStory(false), irisStory(false));
}

TEST_P(LensFeatureControlTest, WhatTheServicesRefuseIsNotNoticed) {
    core().fail(GetParam().drive.function(kSetManual), kRefused);
    core().fail(GetParam().drive.function(GetParam().startOperation), kRefused);
    core().fail(std::string("zorva_api_exposure_") + kSetManual, kRefused);
    expectStory(octets({0xC0, 0x80}), focusStory(true), irisStory(true));
    expectStory(octets({0xC0, 0x00}), focusStory(false), irisStory(false));
}

TEST_P(LensFeatureControlTest, WithoutAnExposureServiceTheFocusAloneIsSwitched) {
    restartWithoutExposure();
    expectStory(octets({0xC0, 0x80}), focusStory(true));
    expectStory(octets({0xC0, 0x00}), focusStory(false));
    expectStory(octets({0x80, 0x80}), {});
    expectStory(octets({0x80, 0x00}), {});
}

TEST_P(LensFeatureControlTest, AnExposureServiceThatIsClosedIsLoggedLikeOneThatRefuses) {
    restartWithClosedExposure();
    for (const bool automatic : {true, false}) {
        expectStory(octets({0xC0, automatic ? 0x80U : 0U}), focusStory(automatic), {irisStory(automatic).back()});
    }
}

TEST_P(LensFeatureControlTest, ACommitSwitchesByTheRequestAndKeepsThePendingCommand) {
    phase(object(), MODE_SET_ACTION, octets({0x80, 0x80}));
    const Answer answer = phase(object(), MODE_SET_COMMIT, octets({0x40, 0x00}));
    EXPECT_THAT(core().calls(), ElementsAre(GetParam().drive.call(kSetManual, "1")));
    EXPECT_EQ(answer.octets, octets({0x40, 0x00}));
    EXPECT_EQ(get(object().instance()).octets, octets({0x80, 0x80}));
}

TEST_P(LensFeatureControlTest, AnswersTheLastCommandEvenIfTheDeviceHasSinceChanged) {
    set(object().instance(), NewValue::text(octets({0xC0, 0x80})));
    core().answer(GetParam().drive.function(kGetManual), {std::int64_t{1}});
    core().answer(std::string("zorva_api_exposure_") + kGetManual, {std::int64_t{1}});
    EXPECT_EQ(get(GetParam().status().instance()).octets, octets({0x00}));
    forget();
    EXPECT_EQ(get(object().instance()).octets, octets({0xC0, 0x80}));
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_P(LensFeatureControlTest, AWrongLengthIsReportedAsAnIrisPositionOnPurpose) {
    phase(object(), MODE_SET_RESERVE1, "abc");
    EXPECT_EQ(core().logs(3), (Lines{std::string(object().handler) + ": iris position not 2-bytes, val_len=3"}));
}

TEST_P(LensFeatureControlTest, DoneIsLoggedAtInfoLevelUnlikeAnywhereElse) {
    const std::string done = std::string(object().handler) + ": Done.";
    for (const int mode : Modes{MODE_GET, MODE_GETNEXT, MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION,
                                MODE_SET_COMMIT, MODE_SET_FREE, MODE_SET_UNDO}) {
        phase(object(), mode, octets({0, 0}));
        EXPECT_EQ(core().logs(6), (Lines{done})) << mode;
        phase(GetParam().equipped(), mode, octets({0}));
        EXPECT_THAT(core().logs(6), IsEmpty()) << mode;
    }
}

} // namespace lens_tests
