// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The features and their table.
 *
 * Init finds and opens the feature's service, reads initial values and registers the objects; it returns true if the
 * feature is up. Deinit closes the service. Poll reads a watched value and may send a trap; most features have none.
 */
#ifndef QUARNSNMP_FEATURE_MODULES_H
#define QUARNSNMP_FEATURE_MODULES_H

#include <array>
#include <atomic>

/** One row of the feature table. */
struct FeatureModule {
    bool (*init)(void *ipcCookie);
    void (*deinit)();
    void (*poll)();                ///< null for a feature without a watched value
    std::atomic<bool> initialised; ///< result of the last init; the poll thread reads it too
};

/** The features, in their order of start, poll and end. */
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
