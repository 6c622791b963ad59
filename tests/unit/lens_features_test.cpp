// SPDX-License-Identifier: Apache-2.0
#include "lens_features_test.h"

#include <ostream>

#include "snmp_utils.h"

namespace lens_tests {

const Object &FeatureSet::control() const {
    return drive.objects.at(3);
}

const Object &FeatureSet::status() const {
    return drive.objects.at(4);
}

const Object &FeatureSet::equipped() const {
    return drive.objects.at(5);
}

void PrintTo(const FeatureSet &set, std::ostream *stream) {
    PrintTo(set.drive, stream);
}

std::vector<FeatureSet> featureSets() {
    return {{focus(), "gFocuses", "starting auto-focus", "do_auto_focus_send"},
            {focusStepper(), "gFocusSteppers", "starting quick auto-focus", "start_quick_auto_focus_send"}};
}

std::string exposureCall(const std::string &operation, const std::string &arguments) {
    return "zorva_api_exposure_" + operation + "(exposure, \"exposure/1\", " + arguments + ")";
}

void FeatureSetTest::SetUp() {
    LensTest::SetUp();
    start(GetParam().drive);
    for (const char *operation : {kSetManual, kGetManual, GetParam().startOperation}) {
        watch(GetParam().drive.function(operation));
    }
    watch(std::string("zorva_api_exposure_") + kSetManual);
    watch(std::string("zorva_api_exposure_") + kGetManual);
}

void FeatureSetTest::TearDown() {
    commit(GetParam().control(), octets({0, 0}));
    commit(GetParam().equipped(), octets({0}));
}

void FeatureSetTest::restartWithoutExposure() {
    GetParam().drive.deinit();
    UnregisterAll();
    core().targetsOnce("exposure", {false, {}});
    start(GetParam().drive);
}

void FeatureSetTest::restartWithClosedExposure() {
    GetParam().drive.deinit();
    UnregisterAll();
    core().once("zorva_api_exposure_initiator_init", {kRefused, {}});
    start(GetParam().drive);
}

std::string setTitleOf(const testing::TestParamInfo<FeatureSet> &info) {
    return info.param.drive.title;
}

namespace {

/** What both writable objects do in the same way. */
struct Writable {
    const Object &object;
    int doneLevel;
    std::size_t length;
    std::string one, two; ///< two values
};

class LensFeatureValueTest : public FeatureSetTest {
protected:
    static std::vector<Writable> both() {
        return {{GetParam().equipped(), 7, 1, octets({0x40}), octets({0xC0})},
                {GetParam().control(), 6, 2, octets({0, 0x80}), octets({0x40, 0x80})}};
    }

    static void expectQuiet(const Writable &each, const Answer &answer) {
        EXPECT_THAT(answer, isAccepted());
        EXPECT_THAT(core().logs(), ElementsAre(enter(each.object), done(each.object, each.doneLevel)));
        EXPECT_THAT(core().calls(), IsEmpty());
    }

    /** The pending value, which becomes the committed one; the request asks for nothing. */
    static std::string pending(const Writable &each) {
        phase(each.object, MODE_SET_COMMIT, std::string(each.length, '\0'));
        return get(each.object.instance()).octets;
    }
};

INSTANTIATE_TEST_SUITE_P(Sets, LensFeatureValueTest, testing::ValuesIn(featureSets()), setTitleOf);

} // namespace

TEST_P(LensFeatureValueTest, IsZeroBeforeAnyWrite) {
    for (const Writable &each : both()) {
        EXPECT_THAT(get(each.object.instance()), isOctets(std::string(each.length, '\0')));
        EXPECT_EQ(pending(each), std::string(each.length, '\0'));
    }
}

TEST_P(LensFeatureValueTest, OnlyOneLengthIsTaken) {
    const char *const texts[] = {"systemLensEquipped not 1-bytes, val_len=", "iris position not 2-bytes, val_len="};
    for (std::size_t i = 0; i < 2; ++i) {
        const Writable each = both().at(i);
        for (const std::size_t length : {0U, 1U, 2U, 3U, 4U, 5U, 300U}) {
            const Answer answer = phase(each.object, MODE_SET_RESERVE1, std::string(length, '\0'));
            if (length == each.length) {
                expectQuiet(each, answer);
            } else {
                EXPECT_THAT(answer, isRefused(SNMP_ERR_WRONGVALUE, SNMP_ERR_WRONGVALUE)) << length;
                EXPECT_THAT(core().logs(),
                            ElementsAre(enter(each.object), said(each.object, 3, texts[i] + std::to_string(length)),
                                        done(each.object, each.doneLevel)));
            }
        }
    }
}

TEST_P(LensFeatureValueTest, EquippedTakesTheTwoUpperBitsOnly) {
    const Writable equipped = both().front();
    for (unsigned int value = 0; value <= 0xFF; ++value) {
        const Answer answer = phase(equipped.object, MODE_SET_RESERVE2, octets({value}));
        const bool good = value == 0x00 || value == 0x40 || value == 0x80 || value == 0xC0;
        const int expected = good ? SNMP_ERR_NOERROR : SNMP_ERR_WRONGVALUE;
        EXPECT_THAT(answer, isRefused(expected, expected)) << value;
        EXPECT_THAT(core().logs(), ElementsAre(enter(equipped.object), done(equipped.object)));
    }
}

TEST_P(LensFeatureValueTest, TheReplyToAWriteOfEquippedHasEightOctetsOnPurpose) {
    for (const unsigned int value : {0x00U, 0x40U, 0x80U, 0xC0U}) {
        EXPECT_THAT(commit(GetParam().equipped(), octets({value})), isOctets(octets({value, 0, 0, 0, 0, 0, 0, 0})));
        EXPECT_THAT(core().calls(), IsEmpty());
        EXPECT_EQ(get(GetParam().equipped().instance()).octets, octets({value}));
    }
}

TEST_P(LensFeatureValueTest, TheEightOctetsBeginWithTheCommittedOne) {
    phase(GetParam().equipped(), MODE_SET_ACTION, octets({0x40}));
    EXPECT_EQ(phase(GetParam().equipped(), MODE_SET_COMMIT, octets({0x80})).octets,
              octets({0x40, 0, 0, 0, 0, 0, 0, 0}));
}

} // namespace lens_tests
