// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Services that hang: which reads fail at once, for how long, and what is never held back.
 */
#include <algorithm>
#include <ctime>

#include <sys/syscall.h>
#include <unistd.h>

#include "every_call.h"
#include "gpio_pdu.h"
#include "handler_requests.h"
#include "service_health.h"

namespace {

using Seconds = double;

const char *const kFirstRelay = "1.3.6.1.4.1.99999.1.3.2.1.3.1";

long gNanosecondsAhead = 0;

/** Advances the monotonic clock. */
void pass(Seconds seconds) {
    gNanosecondsAhead += static_cast<long>(seconds * 1e9);
}

} // namespace

/** Replaces the C library's function in this program. */
extern "C" int clock_gettime(clockid_t clock, timespec *time) noexcept {
    const long result = syscall(SYS_clock_gettime, clock, time);
    if (result == 0 && clock == CLOCK_MONOTONIC) {
        constexpr long kSecond = 1'000'000'000;
        const long nanoseconds = time->tv_nsec + gNanosecondsAhead % kSecond;
        time->tv_sec += gNanosecondsAhead / kSecond + nanoseconds / kSecond;
        time->tv_nsec = nanoseconds % kSecond;
    }
    return static_cast<int>(result);
}

namespace {

/** An object whose GET reads from a service. */
struct ReadObject : Row {
    const char *instance;
    const char *service;
    const char *call; ///< the call of its read
};

// clang-format off
const ReadObject kReadObjects[] = {
    {{"rangePanLeftLimit"},       oids::rangePanLeftLimit,       "positioning",   "zorva_api_positioning_get_soft_position_limits_send"},
    {{"rangePanRightLimit"},      oids::rangePanRightLimit,      "positioning",   "zorva_api_positioning_get_soft_position_limits_send"},
    {{"rangeTiltUpLimit"},        oids::rangeTiltUpLimit,        "positioning",   "zorva_api_positioning_get_soft_position_limits_send"},
    {{"rangeTiltDownLimit"},      oids::rangeTiltDownLimit,      "positioning",   "zorva_api_positioning_get_soft_position_limits_send"},
    {{"positionTilt"},            oids::positionTilt,            "positioning",   "zorva_api_positioning_get_position_send"},
    {{"rangeMaximumPreset"},      oids::rangeMaximumPreset,      "presets_tours", "zorva_api_presets_tours_get_max_presets_send"},
    {{"systemLensFeatureStatus"}, oids::systemLensFeatureStatus, "lens_focus",    "zorva_api_lens_focus_get_manual_mode_enable_send"},
    {{"inputStatus"},             oids::inputStatus,             "alarm",         "zorva_api_alarm_get_state_send"},
    {{"alarmStatesTable"},        "1.3.6.1.4.1.99999.1.3.1.1.3.1", "alarm",       "zorva_api_alarm_get_state_send"},
    {{"outputStatus"},            oids::outputStatus,            "relay",         "zorva_api_relay_get_state_send"},
    {{"relayStatesTable"},        kFirstRelay, "relay",       "zorva_api_relay_get_state_send"},
    {{"temperature"},             oids::temperature,             "temperature",   "zorva_api_temperature_get_temperature_send"},
    {{"power"},                   oids::power,                   "power",         "zorva_api_power_get_power_state_send"},
    {{"voltage"},                 oids::voltage,                 "power",         "zorva_api_power_get_voltage_state_send"},
};
// clang-format on

class ServiceHealthTest : public ModuleTest {
protected:
    ServiceHealthTest() {
        for (const scripted::Call &call : scripted::everyCall()) {
            core().answer(call.function, call.outputs);
        }
        for (const std::string &service : scripted::everyService()) {
            core().targets(service, {service + "/1"});
        }
    }
    ~ServiceHealthTest() override {
        deinit_quarnsnmp();
    }

    static void start() {
        ASSERT_EQ(init_quarnsnmp(), 0);
        core().clearRecord();
    }

    /** From now on each of the service's calls fails after so long. */
    static void failAfter(Seconds seconds, const std::string &service) {
        script(service, seconds, kRefused);
    }
    /** From now on each of the service's calls succeeds at once. */
    static void recover(const std::string &service) {
        script(service, 0, 0);
    }

    /** Calls of a GET, with the outputs taken away. */
    static std::vector<std::string> callsOf(const char *instance) {
        core().clearRecord();
        get(instance);
        return core().calls();
    }
    static std::vector<std::string> callsOfASet(const char *instance, const NewValue &value) {
        core().clearRecord();
        set(instance, value);
        return core().calls();
    }

private:
    static void script(const std::string &service, Seconds seconds, zorva_core_status status) {
        for (const scripted::Call &call : scripted::everyCall()) {
            if (call.function.rfind("zorva_api_" + service + "_", 0) != 0) {
                continue;
            }
            core().during(call.function, [seconds] { pass(seconds); });
            if (status == 0) {
                core().answer(call.function, call.outputs);
            } else {
                core().fail(call.function, status);
            }
        }
    }
};

class HeldReadTest : public ServiceHealthTest, public testing::WithParamInterface<ReadObject> {};

INSTANTIATE_TEST_SUITE_P(Objects, HeldReadTest, testing::ValuesIn(kReadObjects), nameOf<ReadObject>);

/** An answer as far as a manager sees it. */
std::string textOf(const Answer &answer) {
    return std::to_string(answer.returned) + " " + std::to_string(answer.type) + " " + std::to_string(answer.integer) +
           " " + answer.octets;
}

} // namespace

TEST_P(HeldReadTest, AfterASlowFailureAReadFailsAtOnceForTenSeconds) {
    start();
    failAfter(2, GetParam().service);
    const std::string slow = textOf(get(GetParam().instance));
    const std::vector<LogLine> slowLogs = core().logs();
    EXPECT_THAT(core().calls(), Contains(testing::HasSubstr(GetParam().call)));

    pass(9.9);
    core().clearRecord();
    EXPECT_EQ(textOf(get(GetParam().instance)), slow);
    EXPECT_THAT(core().calls(), Not(Contains(testing::HasSubstr(GetParam().call))));
    // A position is read once only, whether that succeeds or not.
    if (GetParam().name != "positionTilt") {
        EXPECT_EQ(core().logs(), slowLogs);
        pass(0.2);
        EXPECT_THAT(callsOf(GetParam().instance), Contains(testing::HasSubstr(GetParam().call)));
        EXPECT_THAT(callsOf(GetParam().instance), Not(Contains(testing::HasSubstr(GetParam().call)))) << "held again";
    }
}

TEST_P(HeldReadTest, QuickFailuresHoldNothingBack) {
    start();
    failAfter(0.5, GetParam().service);
    const std::vector<std::string> calls = callsOf(GetParam().instance);
    EXPECT_THAT(calls, Contains(testing::HasSubstr(GetParam().call)));
    if (GetParam().name != "positionTilt") {
        EXPECT_EQ(callsOf(GetParam().instance), calls);
    }
}

TEST_F(ServiceHealthTest, ServicesAreHeldBackOneByOne) {
    start();
    failAfter(2, "temperature");
    get(oids::temperature);
    EXPECT_THAT(callsOf(oids::temperature), IsEmpty());
    EXPECT_THAT(callsOf(oids::power), SizeIs(1));
    EXPECT_THAT(callsOf(oids::rangePanLeftLimit), SizeIs(1));
}

TEST_F(ServiceHealthTest, AnyCallThatSucceedsEndsTheHold) {
    start();
    failAfter(2, "positioning");
    get(oids::rangePanLeftLimit);
    EXPECT_THAT(callsOf(oids::rangePanLeftLimit), IsEmpty());
    recover("positioning");
    callsOfASet(oids::positionPan, NewValue::text(command(0, 0, 0)));
    EXPECT_THAT(callsOf(oids::rangePanLeftLimit), SizeIs(1));
}

TEST_F(ServiceHealthTest, CommandsAreNeverHeldBackAndHoldNothingBack) {
    start();
    get(oids::positionPan); // its first read
    failAfter(2, "positioning");
    const NewValue stop = NewValue::text(command(0, 0, 0));
    const std::vector<std::string> calls = callsOfASet(oids::positionPan, stop);
    EXPECT_THAT(calls, Not(IsEmpty()));
    EXPECT_THAT(callsOf(oids::rangePanLeftLimit), SizeIs(1)) << "the first read after it";
    EXPECT_EQ(callsOfASet(oids::positionPan, stop), calls) << "while reads are held back";

    failAfter(2, "relay");
    get(oids::outputStatus);
    EXPECT_THAT(callsOf(oids::outputStatus), IsEmpty());
    core().clearRecord();
    EXPECT_EQ((Pdu{{kFirstRelay, NewValue::integer(1)}}.set()), SNMP_ERR_GENERR);
    EXPECT_THAT(core().calls(), SizeIs(1)) << "the read that checks a SET";
}

TEST_F(ServiceHealthTest, ACommandDoesNotWaitForTheFirstReadOfItsPosition) {
    start();
    failAfter(2, "positioning");
    get(oids::rangePanLeftLimit);
    EXPECT_THAT(callsOfASet(oids::positionPan, NewValue::text(command(0, 0, 0))),
                Not(Contains(testing::HasSubstr("get_position_send"))));
}

TEST_F(ServiceHealthTest, PollsAreNeverHeldBack) {
    start();
    failAfter(2, "temperature");
    get(oids::temperature);
    core().clearRecord();
    PollTemperature();
    EXPECT_THAT(core().calls(), SizeIs(1));
    recover("temperature");
    PollTemperature();
    EXPECT_THAT(callsOf(oids::temperature), SizeIs(1)) << "the poll has ended the hold";
}

TEST_F(ServiceHealthTest, ANewStartForgetsTheHolds) {
    start();
    failAfter(2, "temperature");
    get(oids::temperature);
    deinit_quarnsnmp();
    recover("temperature");
    start();
    EXPECT_THAT(callsOf(oids::temperature), SizeIs(1));
}

namespace {

/** Seconds of the monotonic clock. */
Seconds now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<Seconds>(time.tv_sec) + static_cast<Seconds>(time.tv_nsec) / 1e9;
}

/** The start of the module, by the clock. */
class HangingDirectoryTest : public ServiceHealthTest {
protected:
    HangingDirectoryTest() {
        core().during("sleep", [] { pass(2); });
    }
    /** Starts the module. @return seconds that it took */
    static Seconds timeOfStart() {
        const Seconds before = now();
        init_quarnsnmp();
        return now() - before;
    }
    /** From now on the service is found only after so long, or not at all. */
    static void delayDiscovery(const std::string &service, Seconds seconds, bool found) {
        core().during(recordOf(service), [seconds] { pass(seconds); });
        if (!found) {
            core().loseTargets(service);
        }
    }
    static std::string recordOf(const std::string &service) {
        return "getTargetIds(\"" + service + "\")";
    }
    static std::ptrdiff_t discoveries(const std::string &service) {
        const std::vector<std::string> calls = core().calls();
        return std::count(calls.begin(), calls.end(), recordOf(service));
    }
    static bool discover(const char *service) {
        std::vector<std::string> targets;
        return DiscoverTargets(service, targets);
    }
    static bool isUp(const FeatureModule &feature) {
        return feature.initialised;
    }
};

constexpr Seconds kTick = 0.5; // more than the test itself takes

} // namespace

TEST_F(HangingDirectoryTest, AStartAsksAHangingDirectoryOnceInTenSeconds) {
    for (const std::string &service : scripted::everyService()) {
        delayDiscovery(service, 2, false);
    }
    const Seconds time = timeOfStart();
    EXPECT_NEAR(time, 38, kTick) << "fifteen sleeps and four discoveries";
    EXPECT_THAT(core().sleeps(), SizeIs(15));
    EXPECT_EQ(discoveries("alarm"), 1);
    EXPECT_EQ(discoveries("device_information"), 0);
}

TEST_F(HangingDirectoryTest, AServiceWhoseDiscoveryHangsCostsNoOtherItsObjects) {
    for (const std::string &service : scripted::everyService()) {
        SCOPED_TRACE(service);
        delayDiscovery(service, 2, false);
        timeOfStart();
        const auto up = std::count_if(gFeatureModules.begin(), gFeatureModules.end(), isUp);
        const std::ptrdiff_t lost = service == "exposure" || service == "positioning" || service == "presets_tours" ? 0
                                    : service == "device_information"                                               ? 2
                                                                                                                    : 1;
        EXPECT_EQ(up, static_cast<std::ptrdiff_t>(gFeatureModules.size()) - lost);
        deinit_quarnsnmp();
        delayDiscovery(service, 0, true);
        core().targets(service, {service + "/1"});
    }
}

TEST_F(HangingDirectoryTest, AnAnswerOfTheDirectoryStartsTheFeaturesThatTheHoldLeftOut) {
    emptyFeatureTable();
    delayDiscovery("alarm", 2, false);
    gFeatureModules.at(0).init = [](void *) { return discover("alarm"); };
    gFeatureModules.at(1).init = [](void *) { return discover("relay") && discover("alarm"); };
    gFeatureModules.at(2).init = [](void *) { return discover("relay"); };
    gFeatureModules.at(2).deinit = [] {};
    gFeatureModules.at(3).init = [](void *) { return pass(10), !discover("power"); };
    EXPECT_EQ(init_quarnsnmp(), 0);
    EXPECT_EQ(discoveries("relay"), 2);
    EXPECT_EQ(std::count_if(gFeatureModules.begin(), gFeatureModules.end(), isUp), 1);
    EXPECT_TRUE(isUp(gFeatureModules.at(2)));
}

TEST_F(HangingDirectoryTest, AServiceOfAnUnknownNameIsHeldBackWithTheDirectory) {
    openCore();
    ASSERT_TRUE(discover("relay"));
    delayDiscovery("unknown", 2, false);
    EXPECT_FALSE(discover("unknown"));
    EXPECT_FALSE(discover("unknown"));
    EXPECT_EQ(discoveries("unknown"), 1);
    EXPECT_TRUE(discover("relay"));
}

TEST_F(HangingDirectoryTest, ASlowDiscoveryThatSucceedsHoldsNothingBack) {
    for (const std::string &service : scripted::everyService()) {
        delayDiscovery(service, 1.5, true);
    }
    timeOfStart();
    EXPECT_TRUE(std::all_of(gFeatureModules.begin(), gFeatureModules.end(), isUp));
    EXPECT_THAT(core().sleeps(), IsEmpty());
}

TEST_F(HangingDirectoryTest, RetriesFindAServiceThatComesUpLate) {
    core().targetsOnce("lens_focus", {false, {}});
    core().targetsOnce("lens_focus", {false, {}});
    EXPECT_NEAR(timeOfStart(), 4, kTick);
    EXPECT_EQ(discoveries("lens_focus"), 3);
}

TEST_F(HangingDirectoryTest, ReadsOfTheStartHoldNothingBack) {
    failAfter(2, "positioning");
    failAfter(2, "device_information");
    EXPECT_NEAR(timeOfStart(), 6, kTick) << "two features read from the latter";
    recover("positioning");
    EXPECT_THAT(callsOf(oids::rangePanLeftLimit), SizeIs(1));
}
