// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Remote reboot. The value 1 restarts the camera; any other number is only stored.
 */
#include "core_utils.h"
#include "feature_modules.h"
#include "oids.h"
#include "service.h"
#include "service_calls.h"
#include "set_phases.h"
#include "snmp_utils.h"

namespace {

constexpr int32_t kReboot = 1;
constexpr int32_t kRebootKind = 2; // the meaning is that of the device-management service

std::vector<std::string> gDeviceManagers;
void *gDeviceManagementApiCookie = nullptr;
int32_t gRebootDevice = 0;

using RebootDevice = const WritableObject<int32_t>;

RebootDevice kRebootValue = {"handle_rebootDevice", gRebootDevice, gRebootDevice};

int Commit(RebootDevice &object, netsnmp_request_info *request) {
    if (gRebootDevice == kReboot) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: snmpset reboot - rebooting system now!!!!",
                               object.handlerName);
        if (watched::zorva_api_device_management_reboot_send(
                gDeviceManagementApiCookie, gDeviceManagers[kDefaultIndex].c_str(), kRebootKind) != 0) {
            gRebootDevice = 0;
        }
    }
    return SetRequestInteger(request, gRebootDevice);
}

/** Sets 0, as there is no former value to restore. */
int Undo(RebootDevice & /*object*/, netsnmp_request_info * /*request*/) {
    gRebootDevice = 0;
    return SNMP_ERR_NOERROR;
}

constexpr SetPhases<RebootDevice> kPhases = {
    AnswerCurrent, MarkOtherTypes<ASN_INTEGER>, DoNothing, KeepPending, Commit, Undo, LogOtherMode};

int handle_rebootDevice(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                        netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    if (reqinfo->mode == MODE_GETNEXT) {
        // Unknown to this object, in contrast to all others. The agent's scalar helper makes a GET of it anyway.
        return LogUnknownMode(__func__, reqinfo->mode);
    }
    return ServePhase<kPhases>(kRebootValue, reqinfo->mode, requests);
}

const snmp_variable kRebootDevice = {"rebootDevice", handle_rebootDevice, oid_rebootDevice,
                                     OID_LENGTH(oid_rebootDevice), HANDLER_CAN_RWRITE};

const Service kService = {"device_management", "no zorva API dev info",    "dev info",
                          gDeviceManagers,     gDeviceManagementApiCookie, zorva_api_device_management_initiator_init};

} // namespace

bool InitRebootInfo(void *ipcCookie) {
    FindTargets(kService);
    return OpenService(__func__, ipcCookie, kService) && registerScalar(kRebootDevice);
}

void DeinitRebootInfo() {
    if (gDeviceManagementApiCookie != nullptr) {
        zorva_api_device_management_initiator_deinit(gDeviceManagementApiCookie);
        gDeviceManagementApiCookie = nullptr;
    }
}
