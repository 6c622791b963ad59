// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The features of the lens, which both kinds of focus serve: their control, their status, and the equipment.
 */
#include "lens_test.h"
#include "snmp_utils.h"

namespace lens_tests {

namespace {

struct FeatureSet : Row {
    Drive drive;
    const char *targetsText; ///< name of the list of targets, in the text of a failed call
    const char *startText;
    const char *startOperation;

    const Object &control() const {
        return drive.objects.at(3);
    }
    const Object &status() const {
        return drive.objects.at(4);
    }
    const Object &equipped() const {
        return drive.objects.at(5);
    }
};

std::vector<FeatureSet> featureSets() {
    return {
        row<FeatureSet>("Focus", focus(), "gFocuses", "starting auto-focus", "do_auto_focus_send"),
        row<FeatureSet>("FocusStepper", focusStepper(), "gFocusSteppers", "starting quick auto-focus",
                        "start_quick_auto_focus_send"),
    };
}

/** A call to the exposure service. */
std::string exposureCall(const std::string &operation, const std::string &arguments) {
    return "zorva_api_exposure_" + operation + "(exposure, \"exposure/1\", " + arguments + ")";
}

const char *const kSetManual = "set_manual_mode_enable_send";
const char *const kGetManual = "get_manual_mode_enable_send";

/** A camera with an exposure service and a drive that is up; all writable objects are 0 at the start of each test. */
class FeatureSetTest : public LensTest, public testing::WithParamInterface<FeatureSet> {
protected:
    void SetUp() override {
        LensTest::SetUp();
        start(GetParam().drive);
        for (const char *operation : {kSetManual, kGetManual, GetParam().startOperation}) {
            watch(GetParam().drive.function(operation));
        }
        watch("zorva_api_exposure_"s + kSetManual);
        watch("zorva_api_exposure_"s + kGetManual);
    }
    void TearDown() override {
        commit(GetParam().control(), octets({0, 0}));
        commit(GetParam().equipped(), octets({0}));
    }

    static void restart() {
        GetParam().drive.deinit();
        UnregisterAll();
        start(GetParam().drive);
    }
    /** Starts anew on a camera without an exposure service. */
    static void restartWithoutExposure() {
        core().targetsOnce("exposure", {false, {}});
        restart();
    }
    /** Starts anew on a camera whose exposure service does not open. */
    static void restartWithClosedExposure() {
        core().once("zorva_api_exposure_initiator_init", {kRefused, {}});
        restart();
    }

    /** Checks the lengths that an object takes. */
    static void expectLength(const Object &object, std::size_t good, int doneLevel, const std::string &text) {
        for (const std::size_t length : {0U, 1U, 2U, 3U, 4U, 5U, 300U}) {
            SCOPED_TRACE(length);
            const Answer answer = phase(object, MODE_SET_RESERVE1, std::string(length, '\0'));
            std::vector<LogLine> lines{enter(object), done(object, doneLevel)};
            if (length != good) {
                lines.insert(lines.begin() + 1, said(object, 3, text + std::to_string(length)));
            }
            const int expected = length == good ? SNMP_ERR_NOERROR : SNMP_ERR_WRONGVALUE;
            EXPECT_THAT(answer, isRefused(expected, expected));
            EXPECT_EQ(core().logs(), lines);
            EXPECT_THAT(core().calls(), IsEmpty());
        }
    }
    /** Checks the value before any SET, and that a COMMIT has nothing to keep. */
    static void expectZero(const Object &object, const std::string &zero) {
        EXPECT_THAT(get(object.instance()), isOctets(zero));
        phase(object, MODE_SET_COMMIT, zero);
        EXPECT_THAT(get(object.instance()), isOctets(zero));
    }
};

class LensEquippedTest : public FeatureSetTest {};

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

INSTANTIATE_TEST_SUITE_P(Sets, LensFeatureControlTest, testing::ValuesIn(featureSets()), nameOf<FeatureSet>);

/** Answers of a service about its manual mode. */
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
        script("zorva_api_exposure_"s + kGetManual, exposureMode);
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

INSTANTIATE_TEST_SUITE_P(Sets, LensFeatureStatusTest, testing::ValuesIn(featureSets()), nameOf<FeatureSet>);

INSTANTIATE_TEST_SUITE_P(Sets, LensEquippedTest, testing::ValuesIn(featureSets()), nameOf<FeatureSet>);

} // namespace

TEST_P(LensEquippedTest, IsZeroBeforeAnySet) {
    expectZero(GetParam().equipped(), octets({0}));
}

TEST_P(LensEquippedTest, TakesOneOctet) {
    expectLength(GetParam().equipped(), 1, 7, "systemLensEquipped not 1-bytes, val_len=");
}

TEST_P(LensEquippedTest, TakesTheTwoUpperBitsOnly) {
    const Object &equipped = GetParam().equipped();
    for (unsigned int value = 0; value <= 0xFF; ++value) {
        const int expected = (value & 0x3FU) == 0 ? SNMP_ERR_NOERROR : SNMP_ERR_WRONGVALUE;
        EXPECT_THAT(phase(equipped, MODE_SET_RESERVE2, octets({value})), isRefused(expected, expected)) << value;
        EXPECT_EQ(core().logs(), logs::from(equipped.handler));
    }
}

// The reply has eight octets on purpose. They begin with the value of the ACTION.
TEST_P(LensEquippedTest, TheReplyToASetHasEightOctets) {
    for (const unsigned int value : {0x00U, 0x40U, 0x80U, 0xC0U}) {
        EXPECT_THAT(commit(GetParam().equipped(), octets({value})), isOctets(octets({value, 0, 0, 0, 0, 0, 0, 0})));
        EXPECT_THAT(core().calls(), IsEmpty());
        EXPECT_EQ(get(GetParam().equipped().instance()).octets, octets({value}));
    }
    phase(GetParam().equipped(), MODE_SET_ACTION, octets({0x40}));
    EXPECT_EQ(phase(GetParam().equipped(), MODE_SET_COMMIT, octets({0x80})).octets,
              octets({0x40, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_P(LensFeatureControlTest, IsZeroBeforeAnySet) {
    expectZero(object(), octets({0, 0}));
}

// The text names an iris position on purpose.
TEST_P(LensFeatureControlTest, TakesTwoOctets) {
    expectLength(object(), 2, 6, "iris position not 2-bytes, val_len=");
}

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

TEST_P(LensFeatureControlTest, SwitchesTheNamedFeaturesTheFocusBeforeTheIris) {
    for (const bool automatic : {true, false}) {
        const unsigned int state = automatic ? 0x80 : 0;
        expectStory(octets({0x00, state}), {});
        expectStory(octets({0x40, state}), focusStory(automatic));
        expectStory(octets({0x80, state}), irisStory(automatic));
        expectStory(octets({0xC0, state}), focusStory(automatic), irisStory(automatic));
    }
}

TEST_P(LensFeatureControlTest, RefusalsOfTheServicesAreIgnored) {
    core().fail(GetParam().drive.function(kSetManual), kRefused);
    core().fail(GetParam().drive.function(GetParam().startOperation), kRefused);
    core().fail("zorva_api_exposure_"s + kSetManual, kRefused);
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
    core().answer("zorva_api_exposure_"s + kGetManual, {std::int64_t{1}});
    EXPECT_EQ(get(GetParam().status().instance()).octets, octets({0x00}));
    forget();
    EXPECT_EQ(get(object().instance()).octets, octets({0xC0, 0x80}));
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_P(LensFeatureControlTest, AClosedExposureServiceIsLoggedLikeOneThatRefuses) {
    restartWithClosedExposure();
    for (const bool automatic : {true, false}) {
        expectStory(octets({0xC0, automatic ? 0x80U : 0U}), focusStory(automatic), {irisStory(automatic).back()});
    }
}

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

TEST_P(LensFeatureStatusTest, AClosedExposureServiceIsLoggedLikeOneThatRefuses) {
    restartWithClosedExposure();
    for (const Mode focusMode : kModes) {
        expectStatus(MODE_GET, focusMode, Mode::kClosed);
    }
}

// The service leaves the output alone.
TEST_P(LensFeatureStatusTest, TheIrisIsReadWithTheFlagOfTheFocus) {
    for (const Mode focusMode : {Mode::kAutomatic, Mode::kManual}) {
        device(focusMode, Mode::kAutomatic);
        core().answer("zorva_api_exposure_"s + kGetManual, {nullptr});
        EXPECT_EQ(get(object().instance()).octets, octets({focusMode == Mode::kAutomatic ? 0xC0U : 0U}));
    }
}

} // namespace lens_tests
