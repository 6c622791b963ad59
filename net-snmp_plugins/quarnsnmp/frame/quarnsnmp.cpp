// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The entry points of the module and the table of its features.
 */
#include <exception>

#include "core_utils.h"
#include "feature_modules.h"
#include "poll_thread.h"
#include "service_health.h"
#include "snmp_utils.h"
#include "trap_sender.h"

extern "C" {
/** Starts the module. The agent calls it after the load. @return 0 if at least one feature is up, otherwise 1 */
int init_quarnsnmp(void);
/** Ends the module. The agent calls it before the unload. @return 0 */
int deinit_quarnsnmp(void);
}

// clang-format off
std::array<FeatureModule, 13> gFeatureModules = {{
    {InitAlarm,        DeinitAlarm,        nullptr,         false},
    {InitDeviceInfo,   DeinitDeviceInfo,   nullptr,         false},
    {InitFocus,        DeinitFocus,        nullptr,         false},
    {InitFocusStepper, DeinitFocusStepper, nullptr,         false},
    {InitIris,         DeinitIris,         nullptr,         false},
    {InitModuleInfo,   DeinitModuleInfo,   nullptr,         false},
    {InitPositioning,  DeinitPositioning,  nullptr,         false},
    {InitPower,        DeinitPower,        PollPower,       false},
    {InitPresets,      DeinitPresets,      nullptr,         false},
    {InitRebootInfo,   DeinitRebootInfo,   nullptr,         false},
    {InitTemperature,  DeinitTemperature,  PollTemperature, false},
    {InitRelay,        DeinitRelay,        nullptr,         false},
    {InitZoomStepper,  DeinitZoomStepper,  nullptr,         false},
}};
// clang-format on

namespace {

boost::thread gTimerThread = StartPollThread();
const bool gForkHandled = (RestartPollThreadAfterFork(gTimerThread), true);

/** Starts one feature. An exception, such as a lack of memory, is logged and leaves the feature down. */
bool InitFeature(const FeatureModule &feature) {
    try {
        return feature.init(GetIpcCookie());
    } catch (const std::exception &error) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: %s", __func__, error.what());
        return false;
    }
}

/** Starts all features in their order. @return whether one is up */
bool InitFeatures() {
    std::array<bool, std::tuple_size_v<decltype(gFeatureModules)>> notAskedFor{};
    bool anyInitialised = false;
    for (std::size_t row = 0; row < gFeatureModules.size(); ++row) {
        FeatureModule &feature = gFeatureModules.at(row);
        feature.initialised = InitFeature(feature);
        notAskedFor.at(row) = !feature.initialised && LastDiscoveryHeld();
        anyInitialised = anyInitialised || feature.initialised;
    }
    // A directory that hung at first and answered later has not been asked for these.
    for (std::size_t row = 0; row < gFeatureModules.size() && DirectoryAnswers(); ++row) {
        FeatureModule &feature = gFeatureModules.at(row);
        if (notAskedFor.at(row)) {
            feature.initialised = InitFeature(feature);
            anyInitialised = anyInitialised || feature.initialised;
        }
    }
    return anyInitialised;
}

} // namespace

int init_quarnsnmp(void) {
    InitUtils();
    new QuarnSnmpTrapSend;          // the singleton owns itself
    if (!gTimerThread.joinable()) { // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): see above
        // The code stayed mapped since a former deinit_quarnsnmp().
        gTimerThread = StartPollThread();
    }

    if (InitFeatures()) {
        return 0;
    }
    deinit_quarnsnmp();
    return 1;
}

int deinit_quarnsnmp(void) {
    for (const FeatureModule &feature : gFeatureModules) {
        if (feature.initialised) {
            feature.deinit();
        }
    }
    gTimerThread.interrupt();
    gTimerThread.join();
    QuarnSnmpTrapSend::DestroyInstance();
    DeinitUtils();
    UnregisterAll();
    return 0;
}
