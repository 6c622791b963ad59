// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * How the lens features find, open and close their services.
 */
#ifndef QUARNSNMP_LENS_SERVICE_H
#define QUARNSNMP_LENS_SERVICE_H

#include "service.h"
#include "snmp_utils.h"

namespace lens {

/** One lens feature: its service, and what it registers when the service is open. */
struct LensFeature {
    Service service;
    zorva_core_status (*closeInitiator)(void *apiCookie);
    void (*readRange)(const char *function); ///< reads and logs what the drive can do; logs a failure
    const snmp_variable *objects;
    std::size_t objectCount;
};

/**
 * Finds a service's targets. A lens homes at power-up and its service comes late, so a service that is not there is
 * waited for: at most 6 discoveries, 2 seconds apart. It blocks for as long.
 */
void WaitForTargets(const Service &service);

/**
 * Opens the service of a feature whose targets are known, reads its range and registers its objects.
 * @return whether the objects were registered
 */
bool StartLens(const char *function, void *ipcCookie, const LensFeature &feature);

/** What a stepper can do: positions in steps, speeds in steps per second. */
struct StepperLimits {
    int32_t &minPosition;
    int32_t &maxPosition;
    int32_t &minSpeed;
    int32_t &maxSpeed;
};

/**
 * Reads and logs the limits of a stepper. After a failure, which is logged, all of them are 0.
 * @param read  reads them; throws when the service fails
 */
void ReadStepperLimits(const char *function, void (*read)(), const StepperLimits &limits);

/**
 * Checks the type and length of an OCTET STRING that a manager sets. A wrong length is logged and refused with
 * wrongValue.
 * @param name,noun  name of the object in the log, in two parts
 * @return SNMP_ERR_NOERROR, or the error that the request is marked with
 */
int CheckOctets(const char *function, const char *name, const char *noun, std::size_t length,
                netsnmp_request_info *request);

/** Closes the service if it was opened. The handle stays as it is: the next start sets it. */
void StopLens(const LensFeature &feature);

/** A connection to the exposure service, which switches the automatic iris. */
struct Exposure {
    std::vector<std::string> targets;
    void *cookie = nullptr; ///< null while the service is not open
};

/** Opens the exposure service, which a camera need not have; a failure is logged under the function's name. */
void OpenExposure(const char *function, void *ipcCookie, Exposure &exposure);

/** Closes the exposure service if it was opened. The handle stays as it is. */
void CloseExposure(const Exposure &exposure);

} // namespace lens

#endif
