// SPDX-License-Identifier: Apache-2.0
#include "timeout_objects.h"

#include "core_utils.h"
#include "service_calls.h"
#include "set_phases.h"
#include "snmp_utils.h"
#include "zorva_api_exception.h"

namespace positioning {

uint16_t gNewPanTimeout = 0;
uint16_t gNewTiltTimeout = 0;
uint16_t gNewZoomTimeout = 0;

namespace {

constexpr long kLongestTimeout = 65535;

/** Differences between the time-out objects. */
struct TimeoutObject {
    const char *handlerName;
    const char *axisName;
    const char *argument; ///< in the failure text only; operators' log filters match it
    uint32_t &current;
    uint16_t &pending;
};

const TimeoutObject kPan = {"handle_timeoutPan", "pan", "newPanTimeout", gLastPanTimeout, gNewPanTimeout};
const TimeoutObject kTilt = {"handle_timeoutTilt", "tilt", "newTiltTimeout", gLastTiltTimeout, gNewTiltTimeout};
const TimeoutObject kZoom = {"handle_timeoutZoom", "zoom", "newZoomTimeout", gLastZoomTimeout, gNewZoomTimeout};

/** Sends the time-out to the service: the longest one for 0, which stands for no time-out. */
void SendTimeout(const TimeoutObject &object) {
    const uint32_t milliseconds = object.pending == 0 ? static_cast<uint32_t>(kLongestTimeout) : object.pending;
    const zorva_core_status status = watched::zorva_api_positioning_set_velocity_command_timeout_send(
        gApiCookie, gPositionings[kDefaultIndex].c_str(), milliseconds);
    if (status == 0) {
        zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: set_velocity_command_timeout, %d milliseconds",
                               object.handlerName, static_cast<int>(milliseconds));
        return;
    }
    const std::string call = std::string("zorva_api_positioning_set_velocity_command_timeout_send(gApiCookie, "
                                         "gPositionings[kDefaultIndex].c_str(), ") +
                             object.argument + ")";
    LogFailure(zorva::core::ZorvaApiException("Failed zorva api call: " + call, status));
}

int CheckTimeout(const TimeoutObject &object, netsnmp_request_info *request) {
    // Negative values pass, and their low 16 bits count.
    const long milliseconds = *request->requestvb->val.integer;
    if (milliseconds <= kLongestTimeout) {
        return SNMP_ERR_NOERROR;
    }
    zorva_core_logging_log(GetLogCookie(), kLogError, "%s: %s timeout (%ld) outside range 0-65535 milliseconds",
                           object.handlerName, object.axisName, milliseconds);
    return RefuseRequest(request, SNMP_ERR_WRONGVALUE, SNMP_ERR_GENERR);
}

int Commit(const TimeoutObject &object, netsnmp_request_info * /*request*/) {
    object.current = object.pending;
    if (IsConnected()) {
        SendTimeout(object);
    }
    return SNMP_ERR_NOERROR;
}

constexpr SetPhases<const TimeoutObject> kPhases = {
    AnswerCurrent, MarkOtherTypes<ASN_INTEGER>, CheckTimeout, KeepPending, Commit, RestorePending, MarkOtherMode};

int HandleTimeout(const TimeoutObject &object, const netsnmp_agent_request_info *reqinfo,
                  netsnmp_request_info *requests) {
    return ServeLoggedPhase<kPhases>(object.handlerName, object, reqinfo->mode, requests);
}

} // namespace

int handle_timeoutPan(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                      netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleTimeout(kPan, reqinfo, requests);
}

int handle_timeoutTilt(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                       netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleTimeout(kTilt, reqinfo, requests);
}

int handle_timeoutZoom(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                       netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleTimeout(kZoom, reqinfo, requests);
}

} // namespace positioning
