// SPDX-License-Identifier: Apache-2.0
#include "presets_test.h"

#include <cerrno>
#include <cstring>
#include <set>
#include <tuple>

#include <sys/random.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "snmp_utils.h"

namespace presets {

namespace {

/** The next random octets. An octet of -1 draws them as usual; an errno value makes the call fail. */
struct Randomness {
    int octet = -1;
    int failure = 0;
    std::vector<std::size_t> drawn; ///< how many octets, in each call
};
Randomness gRandomness;

class PresetStoreTest : public PresetsTest {
protected:
    void SetUp() override {
        PresetsTest::SetUp();
        gRandomness = {};
        core().answer(kFind, {""});
        start();
    }

    /** Stores a number that has no preset yet. @return the id of the new preset */
    static std::string newId() {
        core().clearRecord();
        set(kStoreHere.instance, NewValue::integer(7));
        const std::vector<std::string> calls = core().calls();
        const std::string before = std::string(kStore) + "(presets_tours, \"presets_tours/1\", \"";
        EXPECT_EQ(calls.size(), 2U);
        EXPECT_EQ(calls.back().substr(0, before.size()), before);
        std::string id = calls.back().substr(before.size(), calls.back().find('"', before.size()) - before.size());
        EXPECT_EQ(calls.back(), store(id, 7));
        return id;
    }
};

} // namespace

/** In place of the C library's function, which cannot be made to fail. */
extern "C" int getentropy(void *buffer, std::size_t length) {
    gRandomness.drawn.push_back(length);
    if (gRandomness.failure != 0) {
        errno = gRandomness.failure;
        return -1;
    }
    if (gRandomness.octet < 0) {
        return syscall(SYS_getrandom, buffer, length, 0) == static_cast<long>(length) ? 0 : -1;
    }
    std::memset(buffer, gRandomness.octet, length);
    return 0;
}

TEST_F(PresetsTest, TheMaximumIsAtMost255) {
    const auto expectMaximum = [](long answered, const Calls &calls, const LogLine &line) {
        core().clearRecord();
        EXPECT_THAT(get(oids::rangeMaximumPreset), isInteger(answered));
        EXPECT_EQ(core().calls(), calls);
        EXPECT_EQ(core().logs(), logs::from("handle_rangeMaximumPreset", {line}));
    };
    const std::string logged = "handle_rangeMaximumPreset: get_max_presets, ";
    start();
    for (const auto &[offered, answered, shown] :
         {std::tuple(0L, 0L, "0"), std::tuple(1L, 1L, "1"), std::tuple(255L, 255L, "255"),
          std::tuple(256L, 255L, "256"), std::tuple(1000L, 255L, "1000"), std::tuple(2147483648L, 255L, "-2147483648"),
          std::tuple(4294967295L, 255L, "-1")}) {
        core().answer(kGetMaximum, {offered});
        expectMaximum(answered, {call(kGetMaximum, "&")}, logs::info(logged + shown));
    }
    core().fail(kGetMaximum, kRefused);
    expectMaximum(0, {call(kGetMaximum, "&")},
                  logs::failed("zorva_api_presets_tours_get_max_presets_send( gApiCookie, "
                               "gPresets[kDefaultIndex].c_str(), &maxPresets)"));
    DeinitPresets();
    UnregisterAll();
    startWithoutService();
    expectMaximum(0, {}, logs::info(logged + "0"));
}

TEST_F(PresetsTest, GoingToANumberWithoutAPresetMovesNothing) {
    start();
    for (const scripted::Value &none : {scripted::Value(""), scripted::Value(nullptr)}) {
        core().clearRecord();
        core().answer(kFind, {none});
        set(kGoTo.instance, NewValue::integer(5));
        EXPECT_THAT(core().calls(), ElementsAre(find(5)));
        EXPECT_THAT(core().logs(3), IsEmpty());
        EXPECT_THAT(core().logs(6), IsEmpty());
        EXPECT_EQ(get(kGoTo.instance).octets, octets({5}));
    }
}

TEST_F(PresetsTest, TheCommandsKeepTheirNumbersApart) {
    start();
    set(kGoTo.instance, NewValue::integer(5));
    set(kStoreHere.instance, NewValue::integer(9));
    EXPECT_EQ(get(kGoTo.instance).octets, octets({5}));
    EXPECT_EQ(get(kStoreHere.instance).octets, octets({9}));
}

TEST_F(PresetStoreTest, ANewNumberGetsARandomId) {
    std::set<std::string> found;
    std::set<char> variants;
    for (int i = 0; i < 200; ++i) {
        std::string id = newId();
        EXPECT_THAT(id, testing::MatchesRegex("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}"));
        found.insert(id);
        variants.insert(id.at(19));
    }
    EXPECT_EQ(found.size(), 200U);
    EXPECT_THAT(variants, ElementsAre('8', '9', 'a', 'b'));
}

TEST_F(PresetStoreTest, OfTheRandomOctetsOnlyVersionAndVariantAreSet) {
    for (const auto &[octet, id] : {std::pair(0x00, "00000000-0000-4000-8000-000000000000"),
                                    std::pair(0xFF, "ffffffff-ffff-4fff-bfff-ffffffffffff"),
                                    std::pair(0x5A, "5a5a5a5a-5a5a-4a5a-9a5a-5a5a5a5a5a5a")}) {
        gRandomness = {octet, 0, {}};
        EXPECT_EQ(newId(), id);
        EXPECT_THAT(gRandomness.drawn, ElementsAre(16));
    }
}

TEST_F(PresetStoreTest, ATextThatIsLeftOutIsANewNumberToo) {
    core().answer(kFind, {nullptr});
    gRandomness.octet = 0;
    EXPECT_EQ(newId(), "00000000-0000-4000-8000-000000000000");
}

TEST_F(PresetStoreTest, ThePresetIsNamedByItsNumberWithoutASign) {
    gRandomness.octet = 0;
    const std::string begin = "\"00000000-0000-4000-8000-000000000000\", ";
    for (const auto &[number, arguments] :
         {std::pair(0L, "\"Preset 0\", 0, 1"), std::pair(7L, "\"Preset 7\", 7, 1"),
          std::pair(12L, "\"Preset 12\", 12, 1"), std::pair(255L, "\"Preset 255\", 255, 1"),
          std::pair(-1L, "\"Preset 4294967295\", -1, 1"),
          std::pair(-2147483648L, "\"Preset 2147483648\", -2147483648, 1")}) {
        core().clearRecord();
        set(kStoreHere.instance, NewValue::integer(number));
        EXPECT_THAT(core().calls(), ElementsAre(find(number), call(kStore, begin + arguments)));
    }
}

TEST_F(PresetStoreTest, AStoredNumberKeepsItsIdAndGetsItsNameAgain) {
    core().answer(kFind, {"made elsewhere"});
    set(kStoreHere.instance, NewValue::integer(12));
    EXPECT_THAT(core().calls(), ElementsAre(find(12), call(kStore, "\"made elsewhere\", \"Preset 12\", 12, 1")));
    EXPECT_THAT(gRandomness.drawn, IsEmpty());
}

TEST_F(PresetStoreTest, WithoutRandomnessNothingIsStored) {
    gRandomness.failure = EIO;
    set(kStoreHere.instance, NewValue::integer(12));
    EXPECT_THAT(core().calls(), ElementsAre(find(12)));
    EXPECT_THAT(core().logs(3), ElementsAre("getentropy"));
    EXPECT_THAT(core().logs(6), IsEmpty());
    EXPECT_EQ(get(kStoreHere.instance).octets, octets({12}));
}

} // namespace presets
