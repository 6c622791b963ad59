// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The feature modules and the table that holds them.
 *
 * Each feature has an Init that finds its service, opens it, reads what it needs and registers its objects (true: the
 * feature is up), a Deinit that closes its service, and where it watches a value a Poll that may send traps.
 */
#ifndef QUARNSNMP_FEATURE_MODULES_H
#define QUARNSNMP_FEATURE_MODULES_H

#include <array>
#include <atomic>

/** One row of the feature table. */
struct FeatureModule {
    bool (*init)(void *ipcCookie);
    void (*deinit)();
    void (*poll)();                ///< null for a feature that watches nothing
    std::atomic<bool> initialised; ///< what the last init returned; the poll thread reads it as well
};

/** The features, in the order in which they start, are polled and end. */
extern std::array<FeatureModule, 13> gFeatureModules;

bool InitAlarm(void *ipcCookie);
void DeinitAlarm();

bool InitDeviceInfo(void *ipcCookie);
void DeinitDeviceInfo();

bool InitFocus(void *ipcCookie);
void DeinitFocus();

bool InitFocusStepper(void *ipcCookie);
void DeinitFocusStepper();

bool InitIris(void *ipcCookie);
void DeinitIris();

bool InitModuleInfo(void *ipcCookie);
void DeinitModuleInfo();

bool InitPositioning(void *ipcCookie);
void DeinitPositioning();

bool InitPower(void *ipcCookie);
void DeinitPower();
void PollPower();

bool InitPresets(void *ipcCookie);
void DeinitPresets();

bool InitRebootInfo(void *ipcCookie);
void DeinitRebootInfo();

bool InitTemperature(void *ipcCookie);
void DeinitTemperature();
void PollTemperature();

bool InitRelay(void *ipcCookie);
void DeinitRelay();

bool InitZoomStepper(void *ipcCookie);
void DeinitZoomStepper();

#endif
