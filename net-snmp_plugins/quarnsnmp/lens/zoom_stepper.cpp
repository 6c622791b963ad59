// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The zoom of a lens with a stepper motor, for cameras whose positioning service has no zoom. Otherwise the positioning
 * objects are registered first, and the agent refuses these. The motor only moves to positions, as the focus stepper.
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

std::vector<std::string> gZoomSteppers;
void *gApiCookie = nullptr;
int32_t gMinZoomPosition = 0;
int32_t gMaxZoomPosition = 0;
int32_t gMinZoomSpeed = 0;
int32_t gMaxZoomSpeed = 0; // of all moves

void ReadLimits() {
    ZORVA_API_CALL(zorva_api_zoom_stepper_get_limits_send(gApiCookie, gZoomSteppers[kDefaultIndex].c_str(),
        &gMinZoomPosition, &gMaxZoomPosition, &gMinZoomSpeed, &gMaxZoomSpeed));
}

void ReadRange(const char *function) {
    lens::ReadStepperLimits(function, ReadLimits, {gMinZoomPosition, gMaxZoomPosition, gMinZoomSpeed, gMaxZoomSpeed});
}

lens::Range ZoomRange() {
    return {gMinZoomPosition, gMaxZoomPosition};
}

bool ReadZoomPosition(int32_t &current) {
    return watched::zorva_api_zoom_stepper_get_position_send(gApiCookie, gZoomSteppers[kDefaultIndex].c_str(),
                                                             &current) == 0;
}

void MoveZoom(int32_t position) {
    watched::zorva_api_zoom_stepper_set_position_send(gApiCookie, gZoomSteppers[kDefaultIndex].c_str(), position,
                                                      gMaxZoomSpeed);
}

const lens::Drive kDrive = {"handle_zoomStepperPositionZoomLens",
                            "zoom",
                            "Zoom",
                            ZoomRange,
                            ReadZoomPosition,
                            lens::ClampToRange,
                            MoveZoom,
                            nullptr,
                            false,
                            nullptr,
                            nullptr};
lens::LensPosition gPosition = {kDrive};

int handle_zoomStepperRangeZoomLimit(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                                     netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return lens::HandleConstant(__func__, "zoomLimit", "...", 0, reqinfo, requests);
}

int handle_zoomStepperTimeoutZoom(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                                  netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return lens::HandleConstant(__func__, "timeoutZoom", "...", 0, reqinfo, requests);
}

int handle_zoomStepperPositionZoomLens(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                                       netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return lens::HandleLensPosition(gPosition, reqinfo, requests);
}

// clang-format off
const snmp_variable kObjects[] = {
    {"rangeZoomLimit",   handle_zoomStepperRangeZoomLimit,   oid_rangeZoomLimit,   OID_LENGTH(oid_rangeZoomLimit),   HANDLER_CAN_GETANDGETNEXT},
    {"timeoutZoom",      handle_zoomStepperTimeoutZoom,      oid_timeoutZoom,      OID_LENGTH(oid_timeoutZoom),      HANDLER_CAN_RWRITE},
    {"positionZoomLens", handle_zoomStepperPositionZoomLens, oid_positionZoomLens, OID_LENGTH(oid_positionZoomLens), HANDLER_CAN_RWRITE},
};
// clang-format on

// The doubled word belongs to the log text; operators' log filters match it.
const lens::LensFeature kFeature = {{"zoom_stepper", "no zorva API zoom steppers", "zoom zoom stepper", gZoomSteppers,
                                     gApiCookie, zorva_api_zoom_stepper_initiator_init},
                                    zorva_api_zoom_stepper_initiator_deinit,
                                    ReadRange,
                                    kObjects,
                                    std::size(kObjects)};

} // namespace

bool InitZoomStepper(void *ipcCookie) {
    if (!FindTargets(kFeature.service)) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s", kFeature.service.noTargetText);
        return false;
    }
    // The feature counts as up even if its service does not open; DeinitZoomStepper() does nothing then.
    lens::StartLens(__func__, ipcCookie, kFeature);
    return true;
}

void DeinitZoomStepper() {
    lens::StopLens(kFeature);
}
