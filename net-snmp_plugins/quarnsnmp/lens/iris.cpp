// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The iris. Its positions are unsigned.
 */
#include <iterator>

#include "core_utils.h"
#include "feature_modules.h"
#include "lens_constants.h"
#include "lens_position.h"
#include "lens_service.h"
#include "oids.h"
#include "service_calls.h"
#include "zorva_api_exception.h"

namespace {

std::vector<std::string> gIrises;
void *gApiCookie = nullptr;
uint32_t gMinIrisPosition = 0;
uint32_t gMaxIrisPosition = 0;

constexpr int8_t kIrisLimit = 0;

void ReadRange(const char *function) {
    uint32_t dummy = 0;
    try {
        ZORVA_API_CALL(zorva_api_iris_get_position_send(gApiCookie, gIrises[kDefaultIndex].c_str(), &dummy,
            &gMinIrisPosition, &gMaxIrisPosition));
        zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: get_iris_position, current=%d, min=%d, max=%d", function,
                               static_cast<int>(dummy), static_cast<int>(gMinIrisPosition),
                               static_cast<int>(gMaxIrisPosition));
    } catch (const std::exception &failure) {
        LogFailure(failure);
        gMinIrisPosition = 0;
        gMaxIrisPosition = 0;
    }
}

lens::Range IrisRange() {
    return {static_cast<int32_t>(gMinIrisPosition), static_cast<int32_t>(gMaxIrisPosition)};
}

bool ReadIrisPosition(int32_t &current) {
    uint32_t position = 0;
    uint32_t minimum = 0;
    uint32_t maximum = 0;
    if (watched::zorva_api_iris_get_position_send(gApiCookie, gIrises[kDefaultIndex].c_str(), &position, &minimum,
                                                  &maximum) != 0) {
        return false;
    }
    current = static_cast<int32_t>(position);
    gMinIrisPosition = minimum;
    gMaxIrisPosition = maximum;
    return true;
}

/**
 * Bounds the target of a delta, unlike ClampToRange(), with unsigned comparisons: a target below 0 is a large number
 * and becomes the maximum. The minimum is compared with the octets of the command, not with the target.
 * Both are deliberate.
 */
int32_t ClampIris(int32_t target, const lens::Range &range, uint32_t command) {
    if (static_cast<uint32_t>(target) > static_cast<uint32_t>(range.max)) {
        return range.max;
    }
    return command < static_cast<uint32_t>(range.min) ? range.min : target;
}

void MoveIris(int32_t position) {
    watched::zorva_api_iris_set_position_send(gApiCookie, gIrises[kDefaultIndex].c_str(),
                                              static_cast<uint32_t>(position));
}

void SetIrisVelocity(int32_t direction, int32_t run) {
    watched::zorva_api_iris_set_velocity_send(gApiCookie, gIrises[kDefaultIndex].c_str(), direction, run);
}

// No texts for far and near: the log of the iris has never had these lines.
const lens::Drive kDrive = {
    "handle_positionIrisLens", "iris", "Iris",  IrisRange, ReadIrisPosition, ClampIris, MoveIris,
    SetIrisVelocity,           true,   nullptr, nullptr};
lens::LensPosition gPosition = {kDrive};

int handle_rangeIrisLimit(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                          netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return lens::HandleConstant(__func__, nullptr, "", kIrisLimit, reqinfo, requests);
}

int handle_timeoutIris(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                       netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return lens::HandleConstant(__func__, "timeoutIris", "", 0, reqinfo, requests);
}

int handle_positionIrisLens(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                            netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return lens::HandleLensPosition(gPosition, reqinfo, requests);
}

// clang-format off
const snmp_variable kObjects[] = {
    {"rangeIrisLimit",   handle_rangeIrisLimit,   oid_rangeIrisLimit,   OID_LENGTH(oid_rangeIrisLimit),   HANDLER_CAN_GETANDGETNEXT},
    {"timeoutIris",      handle_timeoutIris,      oid_timeoutIris,      OID_LENGTH(oid_timeoutIris),      HANDLER_CAN_RWRITE},
    {"positionIrisLens", handle_positionIrisLens, oid_positionIrisLens, OID_LENGTH(oid_positionIrisLens), HANDLER_CAN_RWRITE},
};
// clang-format on

const lens::LensFeature kFeature = {
    {"iris", "no zorva API irises", "iris", gIrises, gApiCookie, zorva_api_iris_initiator_init},
    zorva_api_iris_initiator_deinit,
    ReadRange,
    kObjects,
    std::size(kObjects)};

} // namespace

bool InitIris(void *ipcCookie) {
    lens::WaitForTargets(kFeature.service);
    return lens::StartLens(__func__, ipcCookie, kFeature);
}

void DeinitIris() {
    lens::StopLens(kFeature);
}
