// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The camera as the only module of NTCIP 1201's module table. The table has one row, so its columns are scalars. They
 * are read once at start, as the camera's identity is.
 */
#include <iterator>
#include <string>

#include "core_utils.h"
#include "feature_modules.h"
#include "oids.h"
#include "snmp_utils.h"
#include "static_information.h"

namespace {

constexpr int kModules = 1;
constexpr int kHardware = 2; // moduleType of NTCIP 1201

std::string gModuleDeviceNode = "1.3.6.1.4.1.1206.4.2.7";
std::string gModuleMake = "Quarn";
std::string gModuleModel = "Error: Model not defined";
std::string gModuleVersion = "Error: Firmware Version not defined";

/** Turns a firmware version `release-build` into `build - vrelease`. Both are empty without a hyphen. */
std::string ModuleVersion(const std::string &firmware) {
    constexpr std::size_t kLongestBuild = 8;
    const std::size_t hyphen = firmware.find('-');
    if (hyphen == std::string::npos) {
        return " - v";
    }
    return firmware.substr(hyphen + 1, kLongestBuild) + " - v" + firmware.substr(0, hyphen);
}

} // namespace

int handle_maxModules(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                      netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleIntMib(ASN_INTEGER, kModules, handler, reginfo, reqinfo, requests);
}

int handle_moduleNumber(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                        netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return handle_maxModules(handler, reginfo, reqinfo, requests);
}

int handle_moduleDeviceNode(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                            netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleStringMib(gModuleDeviceNode, handler, reginfo, reqinfo, requests);
}

int handle_moduleMake(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                      netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleStringMib(gModuleMake, handler, reginfo, reqinfo, requests);
}

int handle_moduleModel(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                       netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleStringMib(gModuleModel, handler, reginfo, reqinfo, requests);
}

int handle_moduleVersion(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                         netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleStringMib(gModuleVersion, handler, reginfo, reqinfo, requests);
}

int handle_moduleType(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                      netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleIntMib(ASN_INTEGER, kHardware, handler, reginfo, reqinfo, requests);
}

namespace {

// clang-format off
const snmp_variable kModuleObjects[] = {
    {"maxModules",       handle_maxModules,       oid_maxModules,       OID_LENGTH(oid_maxModules),       HANDLER_CAN_GETANDGETNEXT},
    {"moduleNumber",     handle_moduleNumber,     oid_moduleNumber,     OID_LENGTH(oid_moduleNumber),     HANDLER_CAN_GETANDGETNEXT},
    {"moduleDeviceNode", handle_moduleDeviceNode, oid_moduleDeviceNode, OID_LENGTH(oid_moduleDeviceNode), HANDLER_CAN_GETANDGETNEXT},
    {"moduleMake",       handle_moduleMake,       oid_moduleMake,       OID_LENGTH(oid_moduleMake),       HANDLER_CAN_GETANDGETNEXT},
    {"moduleModel",      handle_moduleModel,      oid_moduleModel,      OID_LENGTH(oid_moduleModel),      HANDLER_CAN_GETANDGETNEXT},
    {"moduleVersion",    handle_moduleVersion,    oid_moduleVersion,    OID_LENGTH(oid_moduleVersion),    HANDLER_CAN_GETANDGETNEXT},
    {"moduleType",       handle_moduleType,       oid_moduleType,       OID_LENGTH(oid_moduleType),       HANDLER_CAN_GETANDGETNEXT},
};
// clang-format on

} // namespace

bool InitModuleInfo(void *ipcCookie) {
    StaticInformation information;
    if (!ReadStaticInformation(__func__, ipcCookie, information)) {
        return false;
    }
    gModuleVersion = ModuleVersion(information.firmwareVersion);
    gModuleModel = information.modelName;
    RegisterScalars(__func__, kModuleObjects, std::size(kModuleObjects));
    return true;
}

void DeinitModuleInfo() {
    // InitModuleInfo() has already closed the service.
}
