// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Discovery, start and end of the lens services.
 */
#ifndef QUARNSNMP_LENS_SERVICE_H
#define QUARNSNMP_LENS_SERVICE_H

#include "service.h"
#include "snmp_utils.h"

namespace lens {

/** A lens feature: its service, and the objects to register once the service is open. */
struct LensFeature {
    Service service;
    zorva_core_status (*closeInitiator)(void *apiCookie);
    void (*readRange)(const char *function); ///< reads and logs the range of the drive; logs a failure
    const snmp_variable *objects;
    std::size_t objectCount;
};

/**
 * Finds the targets of a service. A lens homes at power-up, so its service starts late: there are up to 6 discoveries,
 * 2 seconds apart. Blocks the caller for up to 10 seconds.
 */
void WaitForTargets(const Service &service);

/**
 * Opens the service of a feature whose targets are known, reads its range and registers its objects.
 * @return true if the objects were registered
 */
bool StartLens(const char *function, void *ipcCookie, const LensFeature &feature);

/** Limits of a stepper: positions in steps, speeds in steps per second. */
struct StepperLimits {
    int32_t &minPosition;
    int32_t &maxPosition;
    int32_t &minSpeed;
    int32_t &maxSpeed;
};

/**
 * Reads and logs the limits of a stepper. After a failed call, which is logged, all limits are 0.
 * @param read  reads the limits; throws zorva::core::ZorvaApiException
 */
void ReadStepperLimits(const char *function, void (*read)(), const StepperLimits &limits);

/** Closes the service if it is open. The handle is unchanged; the next start sets it. */
void StopLens(const LensFeature &feature);

/** Connection to the exposure service, which switches the automatic iris. */
struct Exposure {
    std::vector<std::string> targets;
    void *cookie = nullptr;           ///< null while the service is not open
    zorva_core_status openStatus = 0; ///< result of opening it
};

/** Opens the exposure service, which is optional. A failure is logged with the name `function`. */
void OpenExposure(const char *function, void *ipcCookie, Exposure &exposure);

/** Closes the exposure service if it is open. The handle is unchanged. */
void CloseExposure(const Exposure &exposure);

} // namespace lens

#endif
