// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * How the features start and end that need one service and no retries.
 */
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "handler_requests.h"
#include "snmp_utils.h"

using requests::registeredName;

namespace {

struct Named {
    const char *name;
    const char *identifier;
};

/** What the end of a feature does with its service. */
enum class End {
    kClosesWhatIsOpen,
    kClosesWithoutLooking, ///< also a service that never opened, which the library takes
    kHasNothingToClose,
};

struct Feature {
    const char *initName;
    const char *service;
    bool (*init)(void *ipcCookie);
    void (*deinit)();
    const char *noTarget;  ///< log line of a camera without the service
    const char *notOpened; ///< log line of a service that does not open
    std::vector<Named> scalars;
    std::optional<Named> table = {};
    bool namesObjects = false;   ///< whether each object is logged a second time, at info level
    bool needsItsObject = false; ///< whether the start fails when the agent refuses the object
    bool startsWithoutService = false;
    End end = End::kClosesWhatIsOpen;
    std::vector<std::string> furtherCalls = {}; ///< of a start, after the service has opened
};

void PrintTo(const Feature &each, std::ostream *stream) {
    *stream << each.initName;
}

const char *const kIdentityRead = "zorva_api_device_information_get_static_information_send";

std::vector<Feature> features() {
    Feature alarm{"InitAlarm",
                  "alarm",
                  InitAlarm,
                  DeinitAlarm,
                  "no zorva API alarms",
                  "InitAlarm: failed alarm initiator init",
                  {{"alarmStatus", "1.3.6.1.4.1.1206.4.2.7.6.1.0"}, {"inputStatus", "1.3.6.1.4.1.1206.4.2.7.7.1"}}};
    alarm.table = Named{"alarmStatesTable", "1.3.6.1.4.1.99999.1.3.1"};
    alarm.namesObjects = true;

    Feature relay{"InitRelay",
                  "relay",
                  InitRelay,
                  DeinitRelay,
                  "no zorva API relays",
                  "InitRelay: failed relay initiator init",
                  {{"outputStatus", "1.3.6.1.4.1.1206.4.2.7.8.1"}, {"outputControl", "1.3.6.1.4.1.1206.4.2.7.8.2"}}};
    relay.table = Named{"relayStatesTable", "1.3.6.1.4.1.99999.1.3.2"};
    relay.namesObjects = true;
    relay.end = End::kClosesWithoutLooking;

    Feature power{"InitPower",
                  "power",
                  InitPower,
                  DeinitPower,
                  "no zorva API power sensors",
                  "InitPower: failed power initiator init",
                  {{"power", "1.3.6.1.4.1.99999.1.1.8.0"}, {"voltage", "1.3.6.1.4.1.99999.1.1.9.0"}}};
    power.end = End::kClosesWithoutLooking;

    Feature temperature{"InitTemperature",
                        "temperature",
                        InitTemperature,
                        DeinitTemperature,
                        "no zorva API temperature sensors",
                        "InitTemperature: failed temp initiator init",
                        {{"temperature", "1.3.6.1.4.1.99999.1.1.7.0"}}};
    temperature.needsItsObject = true;
    temperature.end = End::kClosesWithoutLooking;

    // Its lines say "dev info", as those of the identity do.
    Feature reboot{"InitRebootInfo",
                   "device_management",
                   InitRebootInfo,
                   DeinitRebootInfo,
                   "no zorva API dev info",
                   "InitRebootInfo: failed dev info initiator init",
                   {{"rebootDevice", "1.3.6.1.4.1.99999.1.1.100.0"}}};
    reboot.needsItsObject = true;

    Feature presets{"InitPresets",
                    "presets_tours",
                    InitPresets,
                    DeinitPresets,
                    "no zorva API presets",
                    "InitPresets: failed presets initiator init",
                    {{"rangeMaximumPreset", "1.3.6.1.4.1.1206.4.2.7.1.1"},
                     {"presetGotoPosition", "1.3.6.1.4.1.1206.4.2.7.3.1"},
                     {"presetStorePosition", "1.3.6.1.4.1.1206.4.2.7.3.2"}}};
    presets.namesObjects = true;
    presets.startsWithoutService = true;

    Feature moduleInfo{"InitModuleInfo",
                       "device_information",
                       InitModuleInfo,
                       DeinitModuleInfo,
                       "no zorva API dev info",
                       "InitModuleInfo: failed dev info initiator init",
                       {{"maxModules", "1.3.6.1.4.1.1206.4.2.6.1.2"},
                        {"moduleNumber", "1.3.6.1.4.1.1206.4.2.6.1.3.1.1"},
                        {"moduleDeviceNode", "1.3.6.1.4.1.1206.4.2.6.1.3.1.2"},
                        {"moduleMake", "1.3.6.1.4.1.1206.4.2.6.1.3.1.3"},
                        {"moduleModel", "1.3.6.1.4.1.1206.4.2.6.1.3.1.4"},
                        {"moduleVersion", "1.3.6.1.4.1.1206.4.2.6.1.3.1.5"},
                        {"moduleType", "1.3.6.1.4.1.1206.4.2.6.1.3.1.6"}}};
    moduleInfo.end = End::kHasNothingToClose;
    moduleInfo.furtherCalls = {std::string(kIdentityRead) +
                                   "(device_information, \"device_information/1\", &, &, &, &, &, &, &, &, &)",
                               "zorva_api_device_information_initiator_deinit(device_information)"};

    return {alarm, relay, power, temperature, reboot, presets, moduleInfo};
}

class FeatureStartTest : public ModuleTest, public testing::WithParamInterface<Feature> {
protected:
    void SetUp() override {
        openCore();
        offer();
        core().answer(kIdentityRead,
                      {"QN-4000", "1.4.2-20200512", "B7", "SN0042", "five", nullptr, "seven", "", std::int64_t{1}});
    }

    static void offer() {
        const std::string service = GetParam().service;
        core().targets(service, {service + "/1", service + "/2"});
    }
    static bool start() {
        return GetParam().init(GetIpcCookie());
    }
    static std::string initiator(const char *operation) {
        return std::string("zorva_api_") + GetParam().service + "_initiator_" + operation;
    }
    static std::string discovery() {
        return std::string("getTargetIds(\"") + GetParam().service + "\")";
    }
    static std::string opening() {
        return initiator("init") + "(ipc, log, &, 0, null)";
    }
    static std::string closing(const std::string &handle) {
        return initiator("deinit") + "(" + handle + ")";
    }

    static std::vector<Named> objects() {
        std::vector<Named> all = GetParam().scalars;
        if (GetParam().table) {
            all.push_back(*GetParam().table);
        }
        return all;
    }
    /** Lines of the registration of all objects. A table that the agent takes has none. */
    static std::vector<LogLine> registrations(bool taken) {
        std::vector<LogLine> lines;
        if (GetParam().table && !taken) {
            lines.push_back(
                logs::error(std::string("RegisterTable: Registration for ") + GetParam().table->name + " OID not OK"));
        }
        for (const Named &object : GetParam().scalars) {
            const std::string text = std::string("registerScalar: Registration for ") + object.name;
            lines.push_back(taken ? logs::debug(text + " OID OK") : logs::error(text + " OID not OK"));
            if (GetParam().namesObjects) {
                lines.push_back(logs::info(std::string(GetParam().initName) + ": registerScalar=" + object.name));
            }
        }
        return lines;
    }

    /** What a start without its service leaves behind. */
    static void expectWithoutService(bool result, const char *line) {
        std::vector<LogLine> lines;
        if (GetParam().startsWithoutService) {
            lines = registrations(true);
        }
        lines.push_back(logs::error(line));
        EXPECT_EQ(result, GetParam().startsWithoutService);
        EXPECT_EQ(core().logs(), lines);
        for (const Named &object : objects()) {
            EXPECT_EQ(registeredName(object.identifier), GetParam().startsWithoutService ? object.name : "");
        }
    }
};

INSTANTIATE_TEST_SUITE_P(Features, FeatureStartTest, testing::ValuesIn(features()),
                         [](const auto &each) { return std::string(each.param.initName); });

} // namespace

TEST_P(FeatureStartTest, OpensTheServiceAndRegistersItsObjects) {
    std::size_t linesBeforeOpening = 0;
    core().during(initiator("init"), [&linesBeforeOpening] { linesBeforeOpening = core().logs().size(); });
    EXPECT_TRUE(start());
    std::vector<std::string> calls{discovery(), opening()};
    calls.insert(calls.end(), GetParam().furtherCalls.begin(), GetParam().furtherCalls.end());
    EXPECT_EQ(core().calls(), calls);
    EXPECT_EQ(core().logs(), registrations(true));
    EXPECT_EQ(linesBeforeOpening, GetParam().startsWithoutService ? core().logs().size() : 0U);
    for (const Named &object : objects()) {
        EXPECT_EQ(registeredName(object.identifier), object.name);
    }
    GetParam().deinit();
}

TEST_P(FeatureStartTest, WithoutATargetTheServiceIsNotOpened) {
    const std::string stale = std::string(GetParam().service) + "/1";
    for (const scripted::Targets &none :
         {scripted::Targets{false, {}}, scripted::Targets{true, {}}, scripted::Targets{false, {stale}}}) {
        UnregisterAll();
        core().clearRecord();
        core().targetsOnce(GetParam().service, none);
        const bool result = start();
        EXPECT_THAT(core().calls(), ElementsAre(discovery()));
        expectWithoutService(result, GetParam().noTarget);
    }
}

TEST_P(FeatureStartTest, AServiceThatDoesNotOpenIsLogged) {
    core().fail(initiator("init"), kRefused);
    const bool result = start();
    EXPECT_THAT(core().calls(), ElementsAre(discovery(), opening()));
    expectWithoutService(result, GetParam().notOpened);
}

TEST_P(FeatureStartTest, ObjectsThatTheAgentRefusesAreLogged) {
    std::vector<std::vector<oid>> taken;
    for (const Named &object : objects()) {
        std::vector<oid> &name = taken.emplace_back(requests::identifier(object.identifier));
        ASSERT_TRUE(registerScalar(
            {"before", nullptr, name.data(), static_cast<std::int32_t>(name.size()), HANDLER_CAN_GETANDGETNEXT}));
    }
    core().clearRecord();
    EXPECT_EQ(start(), !GetParam().needsItsObject);
    EXPECT_EQ(core().logs(), registrations(false));
    for (const Named &object : objects()) {
        EXPECT_EQ(registeredName(object.identifier), "before");
    }
    GetParam().deinit();
}

TEST_P(FeatureStartTest, TheEndClosesTheService) {
    ASSERT_TRUE(start());
    core().clearRecord();
    GetParam().deinit();
    if (GetParam().end == End::kHasNothingToClose) {
        EXPECT_THAT(core().calls(), IsEmpty());
    } else {
        EXPECT_THAT(core().calls(), ElementsAre(closing(GetParam().service)));
    }
    EXPECT_THAT(core().logs(), IsEmpty());
}

TEST_P(FeatureStartTest, TheEndAfterAServiceThatDidNotOpen) {
    ASSERT_TRUE(start());
    GetParam().deinit();
    core().fail(initiator("init"), kRefused);
    start();
    core().clearRecord();
    GetParam().deinit();
    if (GetParam().end == End::kClosesWithoutLooking) {
        EXPECT_THAT(core().calls(), ElementsAre(closing("null")));
    } else {
        EXPECT_THAT(core().calls(), IsEmpty());
    }
}

TEST_P(FeatureStartTest, StartsAnewAfterAnEnd) {
    for (int i = 0; i < 3; ++i) {
        core().clearRecord();
        ASSERT_TRUE(start());
        EXPECT_EQ(core().logs(), registrations(true));
        GetParam().deinit();
        UnregisterAll();
        for (const Named &object : objects()) {
            EXPECT_EQ(registeredName(object.identifier), "");
        }
    }
}
