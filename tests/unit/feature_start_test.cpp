// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Start and end of each feature: its calls, its log lines, and the objects that it registers.
 */
#include "every_call.h"
#include "lens_drives.h"
#include "positioning_test.h"
#include "snmp_utils.h"

namespace {

/** Effect of the end of a feature on its service. */
enum class End {
    kClosesWhatIsOpen,
    kClosesWithoutLooking, ///< also a service that never opened, which the library takes
    kHasNothingToClose,
};

/** Result and objects of a start without the service. */
struct Reduced {
    bool startsWithoutTarget;
    bool startsUnopened;
    std::size_t objects; ///< number of the first ones that are registered all the same
};

struct Feature : Row {
    std::string service;
    bool (*init)(void *ipcCookie);
    void (*deinit)();
    std::string noTarget;  ///< log line of a camera without the service
    std::string notOpened; ///< middle of the log line of a service that does not open
    std::vector<std::string> objects;
    End end = End::kClosesWhatIsOpen;
    bool needsItsObject = false; ///< does not start if the agent refuses the object
    Reduced reduced = {};
    bool registersFirst = false; ///< before it looks for its service
    std::size_t discoveries = 1; ///< of a service that does not come
    Calls furtherCalls = {};     ///< after the service has opened
    std::vector<LogLine> furtherLines = {};
    std::vector<std::string> otherServices = {}; ///< opened after the service, or without it
};

Feature feature(const std::string &name, const std::string &service, bool (*init)(void *), void (*deinit)(),
                const std::string &plural, const std::string &word, const std::vector<std::string> &objects,
                End end = End::kClosesWhatIsOpen) {
    return {{name}, service, init, deinit, "no zorva API " + plural, word, objects, end};
}

Feature identity(const char *name, bool (*init)(void *), void (*deinit)(), const std::vector<std::string> &objects) {
    const std::string service = "zorva_api_device_information_";
    Feature result =
        feature(name, "device_information", init, deinit, "dev info", "dev info", objects, End::kHasNothingToClose);
    result.furtherCalls = {service + "get_static_information_send(device_information, \"device_information/1\", "
                                     "&, &, &, &, &, &, &, &, &)",
                           service + "initiator_deinit(device_information)"};
    return result;
}

Feature deviceInfo() {
    return identity("InitDeviceInfo", InitDeviceInfo, DeinitDeviceInfo,
                    {"modelNumber", "modelName", "serialNumber", "fwVersion", "swVersion", "hwVersion"});
}

Feature moduleInfo() {
    return identity(
        "InitModuleInfo", InitModuleInfo, DeinitModuleInfo,
        {"maxModules", "moduleNumber", "moduleDeviceNode", "moduleMake", "moduleModel", "moduleVersion", "moduleType"});
}

Feature lens(const lens_tests::Drive &drive) {
    Feature result = feature(drive.initName, drive.service, drive.init, drive.deinit, "", drive.initiatorText, {});
    result.noTarget = drive.noTargetText;
    for (const lens_tests::Object &object : drive.objects) {
        result.objects.emplace_back(object.name);
    }
    result.reduced.startsUnopened = drive.name == "ZoomStepper"; // kept, although nothing is registered
    result.discoveries = drive.waits ? 6 : 1;
    result.furtherCalls = {drive.readRangeCall()};
    result.furtherLines = {logs::info(drive.rangeLine({0, 0, 0, 0, 0}))};
    if (drive.opensExposure) {
        result.otherServices = {"exposure"};
    }
    return result;
}

std::vector<Feature> features() {
    Feature alarm = feature("InitAlarm", "alarm", InitAlarm, DeinitAlarm, "alarms", "alarm",
                            {"alarmStatus", "inputStatus", "alarmStatesTable"});
    Feature relay = feature("InitRelay", "relay", InitRelay, DeinitRelay, "relays", "relay",
                            {"outputStatus", "outputControl", "relayStatesTable"}, End::kClosesWithoutLooking);
    const Feature power = feature("InitPower", "power", InitPower, DeinitPower, "power sensors", "power",
                                  {"power", "voltage"}, End::kClosesWithoutLooking);
    Feature temperature = feature("InitTemperature", "temperature", InitTemperature, DeinitTemperature,
                                  "temperature sensors", "temp", {"temperature"}, End::kClosesWithoutLooking);
    temperature.needsItsObject = true;
    // Its lines say "dev info", as those of the identity do.
    Feature reboot = feature("InitRebootInfo", "device_management", InitRebootInfo, DeinitRebootInfo, "dev info",
                             "dev info", {"rebootDevice"});
    reboot.needsItsObject = true;
    Feature presets = feature("InitPresets", "presets_tours", InitPresets, DeinitPresets, "presets", "presets",
                              {"rangeMaximumPreset", "presetGotoPosition", "presetStorePosition"});
    presets.registersFirst = true;
    presets.reduced = {true, true, presets.objects.size()};
    Feature positioning =
        feature("InitPositioning", "positioning", InitPositioning, DeinitPositioning, "positionings", "positioning",
                {"rangePanLeftLimit", "rangePanRightLimit", "rangePanHomePosition", "rangeTrueNorthOffset",
                 "rangeMinimumPanStepAngle", "timeoutPan", "positionPan", "rangeTiltUpLimit", "rangeTiltDownLimit",
                 "rangeMinimumTiltStepAngle", "timeoutTilt", "positionTilt", "rangeZoomLimit", "timeoutZoom",
                 "positionZoomLens"});
    positioning.reduced = {true, true, 12}; // all but those of the zoom, which are left to the zoom stepper
    positioning.furtherCalls = {calls::of(service::kGetTimeout, "&")};
    positioning.furtherLines = {logs::info("InitPositioning: get_velocity_command_timeout, 0 milliseconds")};
    return {alarm,
            relay,
            power,
            temperature,
            reboot,
            presets,
            positioning,
            deviceInfo(),
            moduleInfo(),
            lens(lens_tests::focus()),
            lens(lens_tests::focusStepper()),
            lens(lens_tests::iris()),
            lens(lens_tests::zoomStepper())};
}

/** A camera that answers every call with zeros. */
class FeatureStartTest : public ModuleTest, public testing::WithParamInterface<Feature> {
protected:
    void SetUp() override {
        forgetPositioning();
        openCore();
        for (const std::string &service : scripted::everyService()) {
            core().targets(service, {service + "/1", service + "/2"});
        }
        for (const scripted::Call &call : scripted::everyCall()) {
            core().answer(call.function, call.outputs);
        }
    }
    void TearDown() override {
        forgetPositioning();
    }

    static bool start() {
        return GetParam().init(GetIpcCookie());
    }
    static void end() {
        GetParam().deinit();
        UnregisterAll();
        forgetPositioning();
        core().clearRecord();
    }
    static std::string initiator(const char *operation) {
        return "zorva_api_" + GetParam().service + "_initiator_" + operation;
    }

    /** Calls of a start, of which `calls` are made to the service. */
    static Calls withOtherServices(Calls calls) {
        for (const std::string &other : GetParam().otherServices) {
            calls.push_back(discoverCall(other));
            calls.push_back(openCall(other));
        }
        return calls;
    }
    /** Lines of the registration of the first objects. A table that the agent accepts has no line. */
    static std::vector<LogLine> registrations(bool taken, std::size_t count = GetParam().objects.size()) {
        std::vector<LogLine> lines;
        for (std::size_t i = 0; i < count; ++i) {
            const std::string &object = GetParam().objects[i];
            if (listedObject(object).instance == nullptr) {
                if (!taken) {
                    lines.insert(lines.begin(),
                                 logs::error("RegisterTable: Registration for " + object + " OID not OK"));
                }
                continue;
            }
            const std::string text = "registerScalar: Registration for " + object;
            lines.push_back(taken ? logs::debug(text + " OID OK") : logs::error(text + " OID not OK"));
            if (!GetParam().needsItsObject) {
                lines.push_back(logs::info(GetParam().name + ": registerScalar=" + object));
            }
        }
        return lines;
    }
    static std::vector<LogLine> startLines(bool taken) {
        std::vector<LogLine> lines = GetParam().furtherLines;
        for (const LogLine &line : registrations(taken)) {
            lines.push_back(line);
        }
        return lines;
    }
    static void expectRegistered(std::size_t count) {
        for (std::size_t i = 0; i < GetParam().objects.size(); ++i) {
            const std::string &object = GetParam().objects[i];
            EXPECT_EQ(requests::registeredName(listedObject(object).oid), i < count ? object : "");
        }
    }

    /** Checks the record of a start without its service. */
    static void expectReduced(const std::string &line) {
        std::vector<LogLine> lines = registrations(true, GetParam().reduced.objects);
        lines.insert(GetParam().registersFirst ? lines.end() : lines.begin(), logs::error(line));
        EXPECT_EQ(core().logs(), lines);
        expectRegistered(GetParam().reduced.objects);
    }
};

class IdentityStartTest : public FeatureStartTest {};

INSTANTIATE_TEST_SUITE_P(Features, FeatureStartTest, testing::ValuesIn(features()), nameOf<Feature>);
INSTANTIATE_TEST_SUITE_P(Features, IdentityStartTest, testing::Values(deviceInfo(), moduleInfo()), nameOf<Feature>);

} // namespace

TEST(FeatureStart, EveryFeatureOfTheTableHasARow) {
    std::vector<bool (*)(void *)> started;
    for (const Feature &each : features()) {
        started.push_back(each.init);
    }
    for (const FeatureModule &each : gFeatureModules) {
        EXPECT_THAT(started, Contains(each.init))
            << "feature_start_test.cpp lacks a row for a feature of gFeatureModules";
    }
    EXPECT_EQ(started.size(), gFeatureModules.size());
}

TEST_P(FeatureStartTest, OpensTheServiceAndRegistersItsObjects) {
    std::size_t linesBeforeOpening = 0;
    core().during(initiator("init"), [&linesBeforeOpening] { linesBeforeOpening = core().logs().size(); });
    EXPECT_TRUE(start());
    Calls calls{discoverCall(GetParam().service), openCall(GetParam().service)};
    calls.insert(calls.end(), GetParam().furtherCalls.begin(), GetParam().furtherCalls.end());
    EXPECT_EQ(core().calls(), withOtherServices(calls));
    EXPECT_EQ(core().logs(), startLines(true));
    EXPECT_EQ(linesBeforeOpening, GetParam().registersFirst ? core().logs().size() : 0U);
    EXPECT_THAT(core().sleeps(), IsEmpty());
    expectRegistered(GetParam().objects.size());
    GetParam().deinit();
}

TEST_P(FeatureStartTest, WithoutATargetTheServiceIsNotOpened) {
    ASSERT_TRUE(start());
    for (const bool listIsEmpty : {false, true}) {
        end();
        for (std::size_t i = 0; i < GetParam().discoveries; ++i) {
            core().targetsOnce(GetParam().service, {listIsEmpty, {}});
        }
        EXPECT_EQ(start(), GetParam().reduced.startsWithoutTarget);
        const std::size_t discoveries = listIsEmpty ? 1 : GetParam().discoveries;
        EXPECT_EQ(core().calls(), withOtherServices(Calls(discoveries, discoverCall(GetParam().service))));
        EXPECT_EQ(core().sleeps(), std::vector<unsigned int>(discoveries - 1, 2));
        expectReduced(GetParam().noTarget);
        core().targets(GetParam().service, {});
    }
    end();
}

TEST_P(FeatureStartTest, TargetsOfAFailedDiscoveryDoNotCountUnlessTheFeatureWaits) {
    core().targetsOnce(GetParam().service, {false, {GetParam().service + "/1"}});
    for (std::size_t i = 1; i < GetParam().discoveries; ++i) {
        core().targetsOnce(GetParam().service, {false, {}});
    }
    const bool waits = GetParam().discoveries > 1;
    EXPECT_EQ(start(), waits || GetParam().reduced.startsWithoutTarget);
    if (waits) {
        expectRegistered(GetParam().objects.size());
        EXPECT_EQ(core().sleeps().size(), GetParam().discoveries - 1);
    } else {
        EXPECT_EQ(core().calls(), withOtherServices({discoverCall(GetParam().service)}));
        expectReduced(GetParam().noTarget);
    }
    end();
}

TEST_P(FeatureStartTest, AServiceThatDoesNotOpenIsLogged) {
    core().fail(initiator("init"), kRefused);
    EXPECT_EQ(start(), GetParam().reduced.startsUnopened);
    EXPECT_EQ(core().calls(), withOtherServices({discoverCall(GetParam().service), openCall(GetParam().service)}));
    expectReduced(GetParam().name + ": failed " + GetParam().notOpened + " initiator init");
    EXPECT_THAT(core().sleeps(), IsEmpty());
    end();
}

TEST_P(FeatureStartTest, ObjectsThatTheAgentRefusesAreLogged) {
    std::vector<std::vector<oid>> taken;
    for (const std::string &object : GetParam().objects) {
        std::vector<oid> &name = taken.emplace_back(requests::parseOid(listedObject(object).oid));
        ASSERT_TRUE(registerScalar(
            {"before", nullptr, name.data(), static_cast<std::int32_t>(name.size()), HANDLER_CAN_GETANDGETNEXT}));
    }
    core().clearRecord();
    EXPECT_EQ(start(), !GetParam().needsItsObject);
    EXPECT_EQ(core().logs(), startLines(false));
    for (const std::string &object : GetParam().objects) {
        EXPECT_EQ(requests::registeredName(listedObject(object).oid), "before");
    }
    end();
}

TEST_P(FeatureStartTest, TheEndClosesTheService) {
    ASSERT_TRUE(start());
    core().clearRecord();
    GetParam().deinit();
    Calls calls;
    if (GetParam().end != End::kHasNothingToClose) {
        calls.push_back(closeCall(GetParam().service));
    }
    for (const std::string &other : GetParam().otherServices) {
        calls.push_back(closeCall(other));
    }
    EXPECT_EQ(core().calls(), calls);
    EXPECT_THAT(core().logs(), IsEmpty());
}

TEST_P(FeatureStartTest, TheEndAfterAServiceThatDidNotOpen) {
    ASSERT_TRUE(start());
    end();
    core().fail(initiator("init"), kRefused);
    for (const std::string &other : GetParam().otherServices) {
        core().targets(other, {});
    }
    start();
    core().clearRecord();
    GetParam().deinit();
    if (GetParam().end == End::kClosesWithoutLooking) {
        EXPECT_THAT(core().calls(), ElementsAre(initiator("deinit") + "(null)"));
    } else {
        EXPECT_THAT(core().calls(), IsEmpty());
    }
    EXPECT_THAT(core().logs(), IsEmpty());
}

TEST_P(FeatureStartTest, StartsAgainAfterItsEnd) {
    for (int i = 0; i < 3; ++i) {
        core().clearRecord();
        ASSERT_TRUE(start());
        EXPECT_EQ(core().logs(), startLines(true));
        GetParam().deinit();
        UnregisterAll();
        expectRegistered(0);
    }
}

TEST_P(IdentityStartTest, AFailedReadClosesTheServiceAndRegistersNothing) {
    core().fail("zorva_api_device_information_get_static_information_send", kRefused);
    EXPECT_FALSE(start());
    EXPECT_THAT(core().logs(), ElementsAre(logs::error(GetParam().name + ": failed dev info:get_static_information")));
    Calls calls{discoverCall(GetParam().service), openCall("device_information")};
    calls.insert(calls.end(), GetParam().furtherCalls.begin(), GetParam().furtherCalls.end());
    EXPECT_EQ(core().calls(), calls);
    expectRegistered(0);
}

TEST_P(IdentityStartTest, AnEndWithoutAStartMakesNoCall) {
    GetParam().deinit();
    EXPECT_THAT(core().calls(), IsEmpty());
}
