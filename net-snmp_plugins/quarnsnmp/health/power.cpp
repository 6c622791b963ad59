// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Power and voltage. A change of either state is sent as a trap.
 */
#include <iterator>

#include <boost/thread/mutex.hpp>

#include "core_utils.h"
#include "feature_modules.h"
#include "oids.h"
#include "service.h"
#include "service_calls.h"
#include "snmp_utils.h"
#include "trap_sender.h"

namespace {

constexpr uint8_t kNotSeenYet = 255;

std::vector<std::string> gPowerSensors;
void *gPowerApiCookie = nullptr;
boost::mutex gPowerMutex; // for reads of the power state only; the service allows parallel reads of the voltage state
uint8_t gLastPowerState = kNotSeenYet;
uint8_t gLastVoltageState = kNotSeenYet;

bool getPowerState(uint8_t *state) {
    const boost::mutex::scoped_lock lock(gPowerMutex);
    if (watched::zorva_api_power_get_power_state_send(gPowerApiCookie, gPowerSensors[kDefaultIndex].c_str(), state) !=
        0) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "zorva_api_power_get_power_state_send sensor 0 failed");
        return false;
    }
    return true;
}

bool getVoltageState(uint8_t *state) {
    if (watched::zorva_api_power_get_voltage_state_send(gPowerApiCookie, gPowerSensors[kDefaultIndex].c_str(), state) !=
        0) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "zorva_api_power_get_voltage_state_send sensor 0 failed");
        return false;
    }
    return true;
}

/** Differences between the two states. */
struct State {
    const char *name;
    bool (*read)(uint8_t *state);
    uint8_t &last; ///< result of the last successful poll; only for the poll thread
    ::oid *oid;
    std::size_t oidLength;
};

const State kPower = {"power", getPowerState, gLastPowerState, oid_power, OID_LENGTH(oid_power)};
const State kVoltage = {"voltage", getVoltageState, gLastVoltageState, oid_voltage, OID_LENGTH(oid_voltage)};

void Poll(const char *function, const State &state) {
    uint8_t present = 0;
    if (!state.read(&present) || present == state.last) {
        return;
    }
    const bool first = state.last == kNotSeenYet;
    state.last = present;
    if (!first) {
        // The line shows the new state twice. Operators' log filters match this text.
        zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: trap triggered for %s %d -> %d", function, state.name,
                               state.last, present);
        SendTrap(state.oid, state.oidLength, present);
    }
}

int HandleState(const State &state, netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    uint8_t present = 0;
    if (!state.read(&present)) {
        return SNMP_ERR_GENERR;
    }
    return HandleIntMib(ASN_INTEGER, present, handler, reginfo, reqinfo, requests);
}

int handle_power(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                 netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleState(kPower, handler, reginfo, reqinfo, requests);
}

int handle_voltage(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                   netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleState(kVoltage, handler, reginfo, reqinfo, requests);
}

// clang-format off
const snmp_variable kObjects[] = {
    {"power",   handle_power,   oid_power,   OID_LENGTH(oid_power),   HANDLER_CAN_GETANDGETNEXT},
    {"voltage", handle_voltage, oid_voltage, OID_LENGTH(oid_voltage), HANDLER_CAN_GETANDGETNEXT},
};
// clang-format on

const Service kService = {"power",         "no zorva API power sensors",  "power", gPowerSensors,
                          gPowerApiCookie, zorva_api_power_initiator_init};

} // namespace

bool InitPower(void *ipcCookie) {
    FindTargets(kService);
    if (!OpenService(__func__, ipcCookie, kService)) {
        return false;
    }
    RegisterScalars(__func__, kObjects, std::size(kObjects));
    return true;
}

void DeinitPower() {
    zorva_api_power_initiator_deinit(gPowerApiCookie);
}

void PollPower() {
    if (gPowerApiCookie == nullptr) {
        return;
    }
    Poll(__func__, kPower);
    Poll(__func__, kVoltage);
}
