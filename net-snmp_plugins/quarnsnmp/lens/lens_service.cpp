// SPDX-License-Identifier: Apache-2.0
#include "lens_service.h"

#include <unistd.h>

#include "core_utils.h"
#include "service_health.h"
#include "zorva_api_exception.h"

namespace lens {

namespace {

constexpr int kRetries = 5;
constexpr unsigned int kSecondsBetween = 2;

} // namespace

void WaitForTargets(const Service &service) {
    service.cookie = nullptr; // closed when the feature ended
    service.targets.clear();
    bool found = DiscoverTargets(service.name, service.targets);
    for (int retry = 0; !found && retry < kRetries; ++retry) {
        sleep(kSecondsBetween); // NOLINT(concurrency-mt-unsafe): nobody here uses alarms
        found = DiscoverTargets(service.name, service.targets);
    }
}

bool StartLens(const char *function, void *ipcCookie, const LensFeature &feature) {
    if (!OpenService(function, ipcCookie, feature.service)) {
        return false;
    }
    feature.readRange(function);
    RegisterScalars(function, feature.objects, feature.objectCount);
    return true;
}

void ReadStepperLimits(const char *function, void (*read)(), const StepperLimits &limits) {
    try {
        read();
        zorva_core_logging_log(GetLogCookie(), kLogInfo,
                               "%s: get_limits, minPos=%d, maxPos=%d, minSpeed=%d, maxSpeed=%d", function,
                               limits.minPosition, limits.maxPosition, limits.minSpeed, limits.maxSpeed);
    } catch (const std::exception &failure) {
        LogFailure(failure);
        limits.minPosition = 0;
        limits.maxPosition = 0;
        limits.minSpeed = 0;
        limits.maxSpeed = 0;
    }
}

void StopLens(const LensFeature &feature) {
    if (feature.service.cookie != nullptr) {
        feature.closeInitiator(feature.service.cookie);
    }
}

void OpenExposure(const char *function, void *ipcCookie, Exposure &exposure) {
    exposure.cookie = nullptr;
    exposure.targets.clear();
    if (!DiscoverTargets("exposure", exposure.targets)) {
        exposure.targets.clear();
        zorva_core_logging_log(GetLogCookie(), kLogError, "no zorva API exposures");
        return;
    }
    if (exposure.targets.empty()) {
        return;
    }
    exposure.openStatus = zorva_api_exposure_initiator_init(ipcCookie, GetLogCookie(), &exposure.cookie, 0, nullptr);
    if (exposure.openStatus != 0) {
        exposure.cookie = nullptr;
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: failed exposure initiator init", function);
    }
}

void CloseExposure(const Exposure &exposure) {
    if (exposure.cookie != nullptr) {
        zorva_api_exposure_initiator_deinit(exposure.cookie);
    }
}

} // namespace lens
