// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Temperature of the camera. A change by more than two degrees is sent as a trap.
 */
#include <cstdlib>
#include <limits>

#include <boost/thread/mutex.hpp>

#include "core_utils.h"
#include "feature_modules.h"
#include "oids.h"
#include "service.h"
#include "service_calls.h"
#include "snmp_utils.h"
#include "trap_sender.h"

namespace {

constexpr int32_t kNotSeenYet = std::numeric_limits<int32_t>::min();
constexpr int32_t kThousandths = 1000;
constexpr int64_t kTolerance = 2; // degrees

std::vector<std::string> gTemperatureSensors;
void *gTemperatureApiCookie = nullptr;
boost::mutex gTemperatureMutex;
int32_t gLastTemperature = kNotSeenYet; // only for the poll thread

/** Reads the temperature in whole degrees, truncated towards 0. @return false after a failed call, which is logged */
bool getTemperature(int32_t *degrees) {
    const boost::mutex::scoped_lock lock(gTemperatureMutex);
    if (watched::zorva_api_temperature_get_temperature_send(gTemperatureApiCookie,
                                                            gTemperatureSensors[kDefaultIndex].c_str(), degrees) != 0) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "zorva_api_temperature_get_temperature_send sensor 0 failed");
        return false;
    }
    *degrees /= kThousandths;
    return true;
}

int handle_temperature(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                       netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    int32_t degrees = 0;
    if (!getTemperature(&degrees)) {
        return SNMP_ERR_GENERR;
    }
    return HandleIntMib(ASN_UNSIGNED, degrees, handler, reginfo, reqinfo, requests);
}

const snmp_variable kTemperature = {"temperature", handle_temperature, oid_temperature, OID_LENGTH(oid_temperature),
                                    HANDLER_CAN_GETANDGETNEXT};

const Service kService = {"temperature",         "no zorva API temperature sensors",  "temp", gTemperatureSensors,
                          gTemperatureApiCookie, zorva_api_temperature_initiator_init};

} // namespace

bool InitTemperature(void *ipcCookie) {
    FindTargets(kService);
    return OpenService(__func__, ipcCookie, kService) && registerScalar(kTemperature);
}

void DeinitTemperature() {
    zorva_api_temperature_initiator_deinit(gTemperatureApiCookie);
}

void PollTemperature() {
    if (gTemperatureApiCookie == nullptr) {
        return;
    }
    int32_t degrees = 0;
    if (!getTemperature(&degrees)) {
        return;
    }
    if (gLastTemperature == kNotSeenYet) {
        gLastTemperature = degrees;
        return;
    }
    // A change within the tolerance is not recorded, so that a slow drift adds up.
    if (std::abs(static_cast<int64_t>(degrees) - gLastTemperature) <= kTolerance) {
        return;
    }
    zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: trap triggered for temp %d -> %d", __func__,
                           gLastTemperature, degrees);
    SendTrap(oid_temperature, OID_LENGTH(oid_temperature), degrees);
    gLastTemperature = degrees;
}
