// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Start and end of positioning: pan, tilt and zoom.
 */
#include <iterator>

#include "core_utils.h"
#include "feature_modules.h"
#include "oids.h"
#include "position_objects.h"
#include "range_objects.h"
#include "service.h"
#include "snmp_utils.h"
#include "timeout_objects.h"
#include "zorva_api_exception.h"

namespace positioning {

namespace {

// The zoom objects are last: without a positioning service they are left to the zoom stepper.
// clang-format off
const snmp_variable kObjects[] = {
    {"rangePanLeftLimit",         handle_rangePanLeftLimit,         oid_rangePanLeftLimit,         OID_LENGTH(oid_rangePanLeftLimit),         HANDLER_CAN_GETANDGETNEXT},
    {"rangePanRightLimit",        handle_rangePanRightLimit,        oid_rangePanRightLimit,        OID_LENGTH(oid_rangePanRightLimit),        HANDLER_CAN_GETANDGETNEXT},
    {"rangePanHomePosition",      handle_rangePanHomePosition,      oid_rangePanHomePosition,      OID_LENGTH(oid_rangePanHomePosition),      HANDLER_CAN_GETANDGETNEXT},
    {"rangeTrueNorthOffset",      handle_rangeTrueNorthOffset,      oid_rangeTrueNorthOffset,      OID_LENGTH(oid_rangeTrueNorthOffset),      HANDLER_CAN_RWRITE},
    {"rangeMinimumPanStepAngle",  handle_rangeMinimumPanStepAngle,  oid_rangeMinimumPanStepAngle,  OID_LENGTH(oid_rangeMinimumPanStepAngle),  HANDLER_CAN_GETANDGETNEXT},
    {"timeoutPan",                handle_timeoutPan,                oid_timeoutPan,                OID_LENGTH(oid_timeoutPan),                HANDLER_CAN_RWRITE},
    {"positionPan",               handle_positionPan,               oid_positionPan,               OID_LENGTH(oid_positionPan),               HANDLER_CAN_RWRITE},
    {"rangeTiltUpLimit",          handle_rangeTiltUpLimit,          oid_rangeTiltUpLimit,          OID_LENGTH(oid_rangeTiltUpLimit),          HANDLER_CAN_GETANDGETNEXT},
    {"rangeTiltDownLimit",        handle_rangeTiltDownLimit,        oid_rangeTiltDownLimit,        OID_LENGTH(oid_rangeTiltDownLimit),        HANDLER_CAN_GETANDGETNEXT},
    {"rangeMinimumTiltStepAngle", handle_rangeMinimumTiltStepAngle, oid_rangeMinimumTiltStepAngle, OID_LENGTH(oid_rangeMinimumTiltStepAngle), HANDLER_CAN_GETANDGETNEXT},
    {"timeoutTilt",               handle_timeoutTilt,               oid_timeoutTilt,               OID_LENGTH(oid_timeoutTilt),               HANDLER_CAN_RWRITE},
    {"positionTilt",              handle_positionTilt,              oid_positionTilt,              OID_LENGTH(oid_positionTilt),              HANDLER_CAN_RWRITE},
    {"rangeZoomLimit",            handle_rangeZoomLimit,            oid_rangeZoomLimit,            OID_LENGTH(oid_rangeZoomLimit),            HANDLER_CAN_GETANDGETNEXT},
    {"timeoutZoom",               handle_timeoutZoom,               oid_timeoutZoom,               OID_LENGTH(oid_timeoutZoom),               HANDLER_CAN_RWRITE},
    {"positionZoomLens",          handle_positionZoomLens,          oid_positionZoomLens,          OID_LENGTH(oid_positionZoomLens),          HANDLER_CAN_RWRITE},
};
// clang-format on
constexpr std::size_t kAllObjects = std::size(kObjects);
constexpr std::size_t kObjectsWithoutZoom = 12;

const Service kService = {"positioning", "no zorva API positionings",         "positioning", gPositionings,
                          gApiCookie,    zorva_api_positioning_initiator_init};

/** Reads the service's only time-out, which is for all axes. A failure is logged and leaves the value unchanged. */
void ReadTimeout(const char *function) {
    const uint32_t before = gLastPanTimeout;
    try {
        ZORVA_API_CALL(zorva_api_positioning_get_velocity_command_timeout_send(gApiCookie,
            gPositionings[kDefaultIndex].c_str(), &gLastPanTimeout));
        zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: get_velocity_command_timeout, %d milliseconds", function,
                               static_cast<int>(gLastPanTimeout));
    } catch (const std::exception &failure) {
        gLastPanTimeout = before;
        LogFailure(failure);
    }
}

void StartTimeouts(const char *function) {
    ReadTimeout(function);
    if (gLastPanTimeout == 0) {
        gLastPanTimeout = kInfiniteTimeout;
    }
    gLastTiltTimeout = gLastPanTimeout;
    gLastZoomTimeout = gLastPanTimeout;
}

} // namespace

} // namespace positioning

bool InitPositioning(void *ipcCookie) {
    using namespace positioning;
    ResetPositionObjects();
    ResetRangeObjects();
    FindTargets(kService);
    if (OpenService(__func__, ipcCookie, kService)) {
        StartTimeouts(__func__);
        RegisterScalars(__func__, kObjects, kAllObjects);
    } else if (gApiCookie == nullptr) {
        // Central systems expect pan and tilt objects, even if they move nothing.
        RegisterScalars(__func__, kObjects, kObjectsWithoutZoom);
    }
    return true;
}

void DeinitPositioning() {
    using namespace positioning;
    if (gApiCookie != nullptr) {
        zorva_api_positioning_initiator_deinit(gApiCookie);
        gApiCookie = nullptr;
    }
}
