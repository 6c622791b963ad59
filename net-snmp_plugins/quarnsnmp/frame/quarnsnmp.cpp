// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The module's entry points and its table of features.
 */
#include <exception>

#include "core_utils.h"
#include "feature_modules.h"
#include "poll_thread.h"
#include "snmp_utils.h"
#include "trap_sender.h"

extern "C" {
/** Called by the agent after it has loaded the module. @return 0 when a feature is up, 1 when none is */
int init_quarnsnmp(void);
/** Called by the agent before it unloads the module. @return 0 */
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

/** Starts one feature. A feature that runs out of memory on its way is a feature that is not up. */
bool InitFeature(const FeatureModule &feature) {
    try {
        return feature.init(GetIpcCookie());
    } catch (const std::exception &error) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: %s", __func__, error.what());
        return false;
    }
}

} // namespace

int init_quarnsnmp(void) {
    InitUtils();
    new QuarnSnmpTrapSend;          // keeps itself, as the singleton
    if (!gTimerThread.joinable()) { // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): see above
        // Only when the code stayed mapped since a former deinit_quarnsnmp().
        gTimerThread = StartPollThread();
    }

    bool anyInitialised = false;
    for (FeatureModule &feature : gFeatureModules) {
        feature.initialised = InitFeature(feature);
        anyInitialised = anyInitialised || feature.initialised;
    }
    if (anyInitialised) {
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
