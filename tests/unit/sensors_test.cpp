// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Power, voltage and temperature: read from the camera for each request, and watched by the poll thread. Power and
 * voltage are states of one service; the temperature comes in thousandths of a degree and is compared in whole ones.
 */
#include <array>
#include <limits>
#include <optional>

#include "fresh_process.h"
#include "handler_requests.h"
#include "sent_traps.h"
#include "trap_sender.h"

namespace {

constexpr std::int64_t kColdest = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kHottest = std::numeric_limits<std::int32_t>::max();

/** A reading of the service, which fails without a value. */
using Reading = std::optional<std::int64_t>;

/** A poll, and the values of its traps. */
struct Poll {
    Reading reading;
    std::vector<long> traps;
};

struct Story {
    const char *name;
    std::vector<Poll> polls;
};

const std::vector<Story> kStateStories = {
    {"a trap for each change, but none for the first state",
     {{1, {}}, {1, {}}, {2, {2}}, {2, {}}, {1, {1}}, {0, {0}}, {254, {254}}}},
    {"a failed poll changes nothing", {{1, {}}, {{}, {}}, {1, {}}, {{}, {}}, {2, {2}}}},
    {"the first state after a failed poll", {{{}, {}}, {1, {}}, {2, {2}}}},
    {"255 stands for no state", {{1, {}}, {255, {255}}, {255, {}}, {3, {}}, {4, {4}}}},
};

const std::vector<Story> kTemperatureStories = {
    {"more than two degrees", {{40000, {40}}, {42000, {}}, {43000, {43}}, {43000, {}}, {41000, {}}, {40000, {40}}}},
    {"a difference of 2.999 degrees, but of 40 and 42", {{40000, {40}}, {42999, {}}}},
    {"a difference of 2.001 degrees, but of 40 and 43", {{40999, {40}}, {43000, {43}}}},
    {"down from zero", {{0, {0}}, {-2999, {}}, {-3000, {4294967293}}}},
    {"through zero", {{1500, {1}}, {-1999, {}}, {-2000, {4294967294}}}},
    {"a slow drift adds up",
     {{40000, {40}}, {41000, {}}, {42000, {}}, {43000, {43}}, {44000, {}}, {45000, {}}, {46000, {46}}}},
    {"a wide step", {{40000, {40}}, {43000, {43}}, {-1500, {4294967295}}}},
    {"the widest step", {{kHottest, {2147483}}, {kColdest, {4292819813}}, {kHottest, {2147483}}}},
    {"a failed poll changes nothing", {{40000, {40}}, {{}, {}}, {42000, {}}, {43000, {43}}}},
};

/** Readings, and the answers of a GET. */
using Answers = std::vector<std::pair<std::int64_t, long>>;

struct Sensor : Row { // the name is the object's
    std::string service;
    bool (*init)(void *ipcCookie);
    void (*deinit)();
    void (*poll)();
    std::string line; ///< beginning of that of a trap
    std::string read;
    const char *otherRead; ///< another value of the same poll
    const Answers *answers;
    std::array<std::int64_t, 3> readings; ///< each a trap after the one before
    const std::vector<Story> *stories;

    const ListedObject &object() const {
        return listedObject(name);
    }
    std::string readCall() const {
        return read + "(" + service + ", \"" + service + "/1\", &)";
    }
    LogLine failureLine() const {
        return logs::error(read + " sensor 0 failed");
    }
    bool isState() const {
        return otherRead != nullptr;
    }
    /** Number that a trap carries. */
    long number(std::int64_t reading) const {
        return isState() ? static_cast<long>(reading) : static_cast<long>(static_cast<std::uint32_t>(reading / 1000));
    }
    /** Line of a trap. That of a state shows the new state twice. */
    LogLine trapLine(std::int64_t before, std::int64_t after) const {
        const std::int64_t unit = isState() ? 1 : 1000;
        return logs::debug(line + std::to_string((isState() ? after : before) / unit) + " -> " +
                           std::to_string(after / unit));
    }
};

const char *const kReadPower = "zorva_api_power_get_power_state_send";
const char *const kReadVoltage = "zorva_api_power_get_voltage_state_send";
const Answers kStateAnswers = {{0, 0}, {1, 1}, {2, 2}, {128, 128}, {254, 254}, {255, 255}};
const Answers kTemperatureAnswers = {{40000, 40},
                                     {40999, 40},
                                     {999, 0},
                                     {0, 0},
                                     {-999, 0},
                                     {-1000, 4294967295},
                                     {-1500, 4294967295},
                                     {-2000, 4294967294},
                                     {-40000, 4294967256},
                                     {2147483647, 2147483},
                                     {-2147483648, 4292819813}};
constexpr std::array<std::int64_t, 3> kStates{1, 2, 3};
constexpr std::array<std::int64_t, 3> kTemperatures{40000, -10000, 43000};

const Sensor kPower =
    row<Sensor>("power", "power", InitPower, DeinitPower, PollPower, "PollPower: trap triggered for power ", kReadPower,
                kReadVoltage, &kStateAnswers, kStates, &kStateStories);
const Sensor kVoltage =
    row<Sensor>("voltage", "power", InitPower, DeinitPower, PollPower, "PollPower: trap triggered for voltage ",
                kReadVoltage, kReadPower, &kStateAnswers, kStates, &kStateStories);
const Sensor kTemperature =
    row<Sensor>("temperature", "temperature", InitTemperature, DeinitTemperature, PollTemperature,
                "PollTemperature: trap triggered for temp ", "zorva_api_temperature_get_temperature_send", nullptr,
                &kTemperatureAnswers, kTemperatures, &kTemperatureStories);

class SensorTest : public ModuleTest, public testing::WithParamInterface<Sensor> {
protected:
    void SetUp() override {
        openCore();
        new QuarnSnmpTrapSend;
        core().targets(GetParam().service, {GetParam().service + "/1", GetParam().service + "/2"});
        ASSERT_TRUE(GetParam().init(GetIpcCookie()));
        core().clearRecord();
    }
    void TearDown() override {
        GetParam().deinit();
        QuarnSnmpTrapSend::DestroyInstance();
    }

    static void script(const std::string &function, const Reading &reading) {
        if (reading) {
            core().answer(function, {*reading});
        } else {
            core().fail(function, kRefused);
        }
    }

    /** Runs a poll, with the record of this poll only. @return values of its traps, as the agent's thread sent them */
    static std::vector<long> poll() {
        core().clearRecord();
        traps::gSent.clear();
        GetParam().poll();
        EXPECT_THAT(traps::gSent, IsEmpty()) << "sent by the poll itself";
        gPollLines = core().logs();
        if (traps::turnEventLoop() > 0) {
            EXPECT_EQ(traps::turnEventLoop(), 0);
        }
        return traps::sentValues();
    }
    /** A poll in which only the value under test can change. */
    static std::vector<long> poll(const Reading &reading) {
        if (GetParam().isState()) {
            script(GetParam().otherRead, 9);
        }
        script(GetParam().read, reading);
        return poll();
    }
    /** Makes the next poll one that has nothing before it, or an extreme. @return what is before it */
    static std::int64_t forget(const Reading &next) {
        const std::int64_t before = GetParam().isState() ? 255 : next.value_or(0) < 0 ? kHottest : kColdest;
        if (GetParam().isState()) {
            script(GetParam().otherRead, before);
        }
        script(GetParam().read, before);
        poll();
        return before;
    }
    /** Makes the first of the readings the last one that counted. */
    static void pollFirst() {
        forget(GetParam().readings[0]);
        poll(GetParam().readings[0]);
    }

    static inline std::vector<LogLine> gPollLines;
};

class PowerTest : public SensorTest {};
class SensorFreshTest : public SensorTest {};
class TemperatureFreshTest : public SensorTest {};

INSTANTIATE_TEST_SUITE_P(Sensors, SensorTest, testing::Values(kPower, kVoltage, kTemperature), nameOf<Sensor>);
INSTANTIATE_TEST_SUITE_P(Sensors, PowerTest, testing::Values(kPower), nameOf<Sensor>);
INSTANTIATE_TEST_SUITE_P(Sensors, SensorFreshTest, testing::Values(kPower, kTemperature), nameOf<Sensor>);
INSTANTIATE_TEST_SUITE_P(Sensors, TemperatureFreshTest, testing::Values(kTemperature), nameOf<Sensor>);

} // namespace

TEST_P(SensorTest, AGetReadsTheValue) {
    for (const auto &[reading, answered] : *GetParam().answers) {
        SCOPED_TRACE(reading);
        core().clearRecord();
        script(GetParam().read, reading);
        EXPECT_THAT(get(GetParam().object().instance),
                    isInteger(answered, GetParam().isState() ? ASN_INTEGER : ASN_UNSIGNED));
        EXPECT_THAT(core().calls(), ElementsAre(GetParam().readCall()));
        EXPECT_THAT(core().logs(), IsEmpty());
    }
}

TEST_P(SensorTest, AGetOfAnUnreadableValueIsAnError) {
    script(GetParam().read, {});
    const Answer answer = get(GetParam().object().instance);
    EXPECT_THAT(answer, isRefused(SNMP_ERR_GENERR, SNMP_ERR_GENERR));
    EXPECT_EQ(answer.type, ASN_NULL);
    EXPECT_THAT(core().logs(), ElementsAre(GetParam().failureLine()));
}

TEST_P(SensorTest, PollsSendTrapsOfChanges) {
    for (const Story &story : *GetParam().stories) {
        SCOPED_TRACE(story.name);
        std::int64_t last = forget(story.polls.front().reading);
        for (const auto &[reading, traps] : story.polls) {
            SCOPED_TRACE(reading.value_or(-1));
            EXPECT_EQ(poll(reading), traps);
            EXPECT_THAT(core().calls(), Contains(GetParam().readCall()).Times(1));
            if (!reading) {
                EXPECT_THAT(gPollLines, ElementsAre(GetParam().failureLine()));
            } else if (traps.empty()) {
                EXPECT_THAT(gPollLines, IsEmpty());
            } else {
                EXPECT_THAT(gPollLines, ElementsAre(GetParam().trapLine(last, *reading)));
                last = *reading;
            }
        }
    }
}

TEST_P(SensorTest, ATrapNamesItsObjectAndCarriesAGauge) {
    pollFirst();
    EXPECT_THAT(poll(GetParam().readings[1]), ElementsAre(GetParam().number(GetParam().readings[1])));
    ASSERT_THAT(traps::gSent, SizeIs(1));
    EXPECT_EQ(traps::gSent[0].trapOid, requests::parseOid(GetParam().object().oid));
    EXPECT_EQ(traps::gSent[0].valueName, requests::parseOid(GetParam().object().oid));
    EXPECT_EQ(traps::gSent[0].valueType, ASN_UNSIGNED);
}

TEST_P(SensorTest, AGetDoesNotAffectThePolls) {
    pollFirst();
    script(GetParam().read, GetParam().readings[1]);
    EXPECT_EQ(get(GetParam().object().instance).integer, GetParam().number(GetParam().readings[1]));
    EXPECT_THAT(poll(GetParam().readings[0]), IsEmpty());
    EXPECT_THAT(poll(GetParam().readings[1]), SizeIs(1));
}

TEST_P(SensorTest, ATrapThatCannotBeSentCountsAsSent) {
    pollFirst();
    const auto &[first, second, third] = GetParam().readings;
    QuarnSnmpTrapSend::DestroyInstance();
    EXPECT_THAT(poll(second), IsEmpty());
    EXPECT_THAT(gPollLines, ElementsAre(GetParam().trapLine(first, second)));
    new QuarnSnmpTrapSend;
    EXPECT_THAT(poll(second), IsEmpty());
    EXPECT_THAT(poll(third), ElementsAre(GetParam().number(third)));
}

TEST_P(SensorTest, APollOfAServiceThatDidNotOpenDoesNothing) {
    GetParam().deinit();
    core().fail("zorva_api_" + GetParam().service + "_initiator_init", kRefused);
    EXPECT_FALSE(GetParam().init(GetIpcCookie()));
    EXPECT_THAT(poll(), IsEmpty());
    EXPECT_THAT(core().calls(), IsEmpty());
    EXPECT_THAT(gPollLines, IsEmpty());
}

TEST_P(SensorFreshTest, TheFirstPollThatSucceedsSendsNothing) {
    expectInFreshProcess([] {
        for (const Reading &reading : {Reading(), Reading(GetParam().readings[0]), Reading(GetParam().readings[0])}) {
            EXPECT_THAT(poll(reading), IsEmpty());
        }
        EXPECT_THAT(gPollLines, IsEmpty());
        EXPECT_THAT(poll(GetParam().readings[1]), ElementsAre(GetParam().number(GetParam().readings[1])));
    });
}

TEST_P(TemperatureFreshTest, TheLowestReadingStandsForNone) {
    expectInFreshProcess([] {
        EXPECT_THAT(poll(kColdest), IsEmpty());
        EXPECT_THAT(poll(0), ElementsAre(0));
    });
}

TEST_P(PowerTest, APollReadsPowerThenVoltage) {
    for (const Reading &reading : {Reading(255), Reading(1), Reading(3), Reading()}) {
        script(kReadPower, reading);
        script(kReadVoltage, reading ? *reading + 1 : reading);
        poll();
        EXPECT_THAT(core().calls(), ElementsAre(kPower.readCall(), kVoltage.readCall()));
    }
    EXPECT_THAT(gPollLines, ElementsAre(kPower.failureLine(), kVoltage.failureLine()));
}

TEST_P(PowerTest, BothStatesMayChangeInOnePoll) {
    for (const std::int64_t state : {255, 3}) {
        script(kReadPower, state);
        script(kReadVoltage, state == 255 ? 255 : 4);
        poll();
    }
    script(kReadPower, 1);
    script(kReadVoltage, 2);
    EXPECT_THAT(poll(), ElementsAre(1, 2));
    EXPECT_EQ(traps::gSent.at(0).trapOid, requests::parseOid(kPower.object().oid));
    EXPECT_EQ(traps::gSent.at(1).trapOid, requests::parseOid(kVoltage.object().oid));
    EXPECT_THAT(gPollLines, ElementsAre(kPower.trapLine(3, 1), kVoltage.trapLine(4, 2)));
}
