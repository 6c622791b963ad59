// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The presets: their maximum, the ids of new ones, and the two commands that take a number, phase by phase.
 */
#include <cerrno>
#include <cstring>
#include <set>
#include <tuple>

#include <sys/random.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "fresh_process.h"
#include "handler_requests.h"
#include "snmp_utils.h"

namespace presets {

namespace {

const char *const kInit = "zorva_api_presets_tours_initiator_init";
const char *const kGetMaximum = "zorva_api_presets_tours_get_max_presets_send";
const char *const kFind = "zorva_api_presets_tours_get_preset_id_for_quarnapi_id_send";
const char *const kMove = "zorva_api_presets_tours_move_to_preset_send";
const char *const kStore = "zorva_api_presets_tours_set_preset_with_current_position_send";

/** A call over the open connection to the first target. */
std::string call(const char *function, const std::string &arguments) {
    return std::string(function) + "(presets_tours, \"presets_tours/1\", " + arguments + ")";
}
std::string find(long number) {
    return call(kFind, std::to_string(number) + ", &");
}
std::string move(const std::string &id, long /*number*/) {
    return call(kMove, "\"" + id + "\", 1, 300, 1");
}
std::string store(const std::string &id, long number) {
    const std::string name = "Preset " + std::to_string(static_cast<std::uint32_t>(number));
    return call(kStore, "\"" + id + "\", \"" + name + "\", " + std::to_string(number) + ", 1");
}

/** Differences of the two commands. */
struct Command : Row { // the name is the object's
    const char *instance;
    const char *carryOut; ///< function that does something with the preset
    std::string (*carryOutCall)(const std::string &id, long number);
    const char *doneText; ///< logged when that has succeeded, with the number and a blank after it
    const char *failedFind;
    const char *failedCarryOut;

    std::string handler() const {
        return "handle_" + name;
    }
};

const Command kGoTo{{"presetGotoPosition"},
                    oids::presetGotoPosition,
                    kMove,
                    move,
                    "move_to_preset_by_number, ",
                    "zorva_api_presets_tours_get_preset_id_for_quarnapi_id_send(gApiCookie, "
                    "gPresets[kDefaultIndex].c_str(), newGoToPresetNumber, &preset_id)",
                    "zorva_api_presets_tours_move_to_preset_send(gApiCookie, gPresets[kDefaultIndex].c_str(), "
                    "preset_id, 1.0, kPresetsToursPriorityNormal, 1)"};
const Command kStoreHere{{"presetStorePosition"},
                         oids::presetStorePosition,
                         kStore,
                         store,
                         "set_preset_with_current_position for preset ",
                         "zorva_api_presets_tours_get_preset_id_for_quarnapi_id_send(gApiCookie, "
                         "gPresets[kDefaultIndex].c_str(), newStorePresetNumber, &preset_id)",
                         "zorva_api_presets_tours_set_preset_with_current_position_send(gApiCookie, "
                         "gPresets[kDefaultIndex].c_str(), preset_id, preset_name.c_str(), newStorePresetNumber, 1)"};

class PresetsTest : public ModuleTest {
protected:
    void SetUp() override {
        openCore();
        core().targets("presets_tours", {"presets_tours/1", "presets_tours/2"});
        core().answer(kFind, {"home"});
    }
    /** Makes both numbers 0 again; without the service, so that nothing is called. */
    void TearDown() override {
        DeinitPresets();
        for (const char *instance : {kGoTo.instance, kStoreHere.instance}) {
            requests::Request zero(instance, requests::NewValue::integer(0));
            zero.runOwnHandler(MODE_SET_ACTION);
            zero.runOwnHandler(MODE_SET_COMMIT);
        }
    }

    static void start() {
        ASSERT_TRUE(InitPresets(GetIpcCookie()));
        core().clearRecord();
    }
    /** Brings the feature up on a camera whose service does not open. */
    static void startWithoutService() {
        core().fail(kInit, kRefused);
        start();
    }
};

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

class PresetCommandTest : public PresetsTest, public testing::WithParamInterface<Command> {
protected:
    static LogLine carriedOut(long number) {
        return logs::info(GetParam().handler() + ": " + GetParam().doneText + std::to_string(number) + " ");
    }
    static Calls commandCalls(long number) {
        return {find(number), GetParam().carryOutCall("home", number)};
    }
    /** One phase on the object's own handler, with the record of this phase only. */
    static Answer phase(int mode, long value) {
        core().clearRecord();
        return DirtyRequest(GetParam().instance, NewValue::integer(value)).runOwnHandler(mode);
    }
    /** An ACTION and a COMMIT without a check, with the record of the COMMIT only. */
    static void commit(long number) {
        EXPECT_THAT(phase(MODE_SET_ACTION, number), isAccepted());
        EXPECT_THAT(phase(MODE_SET_COMMIT, number), isAccepted());
    }
    static void expectLines(const std::vector<LogLine> &between) {
        EXPECT_EQ(core().logs(), logs::from(GetParam().handler(), between));
    }
    static void expectNumber(unsigned int number) {
        core().clearRecord();
        EXPECT_THAT(get(GetParam().instance), isOctets(octets({number})));
        EXPECT_THAT(core().calls(), IsEmpty());
        expectLines({});
    }
};

class PresetCommandFreshTest : public PresetCommandTest {};

INSTANTIATE_TEST_SUITE_P(Commands, PresetCommandTest, testing::Values(kGoTo, kStoreHere), nameOf<Command>);
INSTANTIATE_TEST_SUITE_P(Commands, PresetCommandFreshTest, testing::Values(kGoTo, kStoreHere), nameOf<Command>);

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

TEST_P(PresetCommandTest, ASetLooksTheNumberUpCarriesItOutAndKeepsItsLowOctet) {
    start();
    for (const auto &[number, kept] :
         {std::pair(0L, 0U), std::pair(1L, 1U), std::pair(7L, 7U), std::pair(12L, 12U), std::pair(255L, 255U),
          std::pair(-1L, 255U), std::pair(-256L, 0U), std::pair(-251L, 5U), std::pair(-2147483648L, 0U)}) {
        core().clearRecord();
        set(GetParam().instance, NewValue::integer(number));
        EXPECT_EQ(core().calls(), commandCalls(number));
        EXPECT_THAT(core().logs(6), ElementsAre(carriedOut(number).text));
        expectNumber(kept);
        commit(number);
        expectLines({carriedOut(number)});
    }
}

TEST_P(PresetCommandFreshTest, TheNumberIsZeroUntilTheFirstCommand) {
    expectInFreshProcess([] {
        start();
        expectNumber(0);
    });
}

TEST_P(PresetCommandTest, ANumberAbove255IsRefused) {
    start();
    commit(3);
    for (const long number : {256L, 257L, 511L, 65536L, 2147483647L}) {
        EXPECT_THAT(phase(MODE_SET_RESERVE2, number), isRefused(SNMP_ERR_GENERR, SNMP_ERR_WRONGVALUE));
        expectLines({logs::error(GetParam().handler() + ": preset number (" + std::to_string(number) +
                                 ") outside range 0-255")});
        EXPECT_THAT(core().calls(), IsEmpty());
    }
    for (const long number : {0L, 255L, -1L, -2147483648L}) {
        EXPECT_THAT(phase(MODE_SET_RESERVE2, number), isAccepted()) << number;
        expectLines({});
        EXPECT_THAT(core().calls(), IsEmpty());
    }
    expectNumber(3);
}

TEST_P(PresetCommandTest, ACommitCarriesOutThePendingNumberNotTheRequests) {
    start();
    phase(MODE_SET_ACTION, 9);
    EXPECT_THAT(phase(MODE_SET_COMMIT, 4), isAccepted());
    EXPECT_EQ(core().calls(), commandCalls(9));
    expectNumber(9);
}

TEST_P(PresetCommandTest, AnUndoRestoresTheCommittedNumber) {
    start();
    for (const auto &[committed, kept] : {std::pair(6L, 6L), std::pair(-1L, 255L)}) {
        commit(committed);
        core().clearRecord();
        setAndUndo(GetParam().instance, NewValue::integer(200));
        EXPECT_THAT(core().calls(), IsEmpty());
        expectNumber(static_cast<unsigned int>(kept));
        phase(MODE_SET_COMMIT, 200);
        EXPECT_EQ(core().calls().front(), find(kept));
    }
}

TEST_P(PresetCommandTest, ACommandThatTheServiceRefusesIsAnsweredAllTheSame) {
    start();
    core().fail(GetParam().carryOut, kRefused);
    commit(5);
    EXPECT_EQ(core().calls(), commandCalls(5));
    expectLines({logs::failed(GetParam().failedCarryOut)});
    expectNumber(5);
    core().fail(kFind, kRefused);
    commit(6);
    EXPECT_THAT(core().calls(), ElementsAre(find(6)));
    expectLines({logs::failed(GetParam().failedFind)});
    expectNumber(6);
}

TEST_P(PresetCommandTest, WithoutTheServiceANumberIsOnlyKept) {
    for (const bool hasTarget : {true, false}) {
        if (!hasTarget) {
            core().targets("presets_tours", {});
        }
        startWithoutService();
        set(GetParam().instance, NewValue::integer(5));
        EXPECT_THAT(core().calls(), IsEmpty());
        EXPECT_THAT(core().logs(3), IsEmpty());
        EXPECT_THAT(core().logs(6), IsEmpty());
        expectNumber(5);
        set(GetParam().instance, NewValue::integer(0));
        DeinitPresets();
        UnregisterAll();
    }
}

} // namespace presets
