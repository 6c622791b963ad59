// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The camera's identity as vendor scalars, read once at start. A firmware update reloads the module, so the firmware
 * version stays right.
 */
#include <iterator>
#include <string>

#include "core_utils.h"
#include "feature_modules.h"
#include "oids.h"
#include "snmp_utils.h"
#include "static_information.h"

namespace {

std::string gModelName = "Error: Model Name not defined";
std::string gModelNumber = "Error: Model Number not defined";
std::string gHardwareVersion = "Error: Hardware Version not defined";
std::string gSerialNumber = "Error: Serial Number not defined";
std::string gFirmwareVersion = "Error: Firmware Version not defined";

} // namespace

int handle_modelNumber(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                       netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleStringMib(gModelNumber, handler, reginfo, reqinfo, requests);
}

int handle_modelName(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                     netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleStringMib(gModelName, handler, reginfo, reqinfo, requests);
}

int handle_serialNumber(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                        netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleStringMib(gSerialNumber, handler, reginfo, reqinfo, requests);
}

int handle_fwVersion(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                     netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleStringMib(gFirmwareVersion, handler, reginfo, reqinfo, requests);
}

int handle_hwVersion(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                     netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleStringMib(gHardwareVersion, handler, reginfo, reqinfo, requests);
}

namespace {

// The firmware version is the software version too, so one handler serves both objects.
// clang-format off
const snmp_variable kDeviceInfoObjects[] = {
    {"modelNumber",  handle_modelNumber,  oid_modelNo,   OID_LENGTH(oid_modelNo),   HANDLER_CAN_GETANDGETNEXT},
    {"modelName",    handle_modelName,    oid_modelName, OID_LENGTH(oid_modelName), HANDLER_CAN_GETANDGETNEXT},
    {"serialNumber", handle_serialNumber, oid_serialNo,  OID_LENGTH(oid_serialNo),  HANDLER_CAN_GETANDGETNEXT},
    {"fwVersion",    handle_fwVersion,    oid_fwVersion, OID_LENGTH(oid_fwVersion), HANDLER_CAN_GETANDGETNEXT},
    {"swVersion",    handle_fwVersion,    oid_swVersion, OID_LENGTH(oid_swVersion), HANDLER_CAN_GETANDGETNEXT},
    {"hwVersion",    handle_hwVersion,    oid_hwVersion, OID_LENGTH(oid_hwVersion), HANDLER_CAN_GETANDGETNEXT},
};
// clang-format on

} // namespace

bool InitDeviceInfo(void *ipcCookie) {
    StaticInformation information;
    if (!ReadStaticInformation(__func__, ipcCookie, information)) {
        return false;
    }
    // The service has one text for the name and the number of the model.
    gModelName = information.modelName;
    gModelNumber = information.modelName;
    gHardwareVersion = information.hardwareVersion;
    gSerialNumber = information.serialNumber;
    gFirmwareVersion = information.firmwareVersion;

    RegisterScalars(__func__, kDeviceInfoObjects, std::size(kDeviceInfoObjects));
    return true;
}

void DeinitDeviceInfo() {
    // InitDeviceInfo() has already closed the service.
}
