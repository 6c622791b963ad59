// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The focus of a lens with a stepper motor, and the lens feature objects of such a lens. The motor only moves to
 * positions: there is no stop and no continuous move.
 */
#include <iterator>

#include "core_utils.h"
#include "feature_modules.h"
#include "lens_constants.h"
#include "lens_features.h"
#include "lens_position.h"
#include "oids.h"
#include "service_calls.h"
#include "zorva_api_exception.h"

namespace {

std::vector<std::string> gFocusSteppers;
void *gFocusApiCookie = nullptr;
int32_t gMinFocusPosition = 0;
int32_t gMaxFocusPosition = 0;
int32_t gMinFocusSpeed = 0;
int32_t gMaxFocusSpeed = 0;
int32_t gFocusSpeed = 0; // of all moves

void ReadLimits() {
    ZORVA_API_CALL(zorva_api_focus_stepper_get_limits_send(gFocusApiCookie, gFocusSteppers[kDefaultIndex].c_str(),
        &gMinFocusPosition, &gMaxFocusPosition, &gMinFocusSpeed, &gMaxFocusSpeed));
}

void ReadRange(const char *function) {
    lens::ReadStepperLimits(function, ReadLimits,
                            {gMinFocusPosition, gMaxFocusPosition, gMinFocusSpeed, gMaxFocusSpeed});
    gFocusSpeed = gMaxFocusSpeed;
}

lens::Range FocusRange() {
    return {gMinFocusPosition, gMaxFocusPosition};
}

bool ReadFocusPosition(int32_t &current) {
    int32_t second = 0; // a second output of the call, without a use here
    return watched::zorva_api_focus_stepper_get_position_send(gFocusApiCookie, gFocusSteppers[kDefaultIndex].c_str(),
                                                              &current, &second) == 0;
}

void MoveFocus(int32_t position) {
    watched::zorva_api_focus_stepper_set_position_send(gFocusApiCookie, gFocusSteppers[kDefaultIndex].c_str(), position,
                                                       gFocusSpeed);
}

void SetManualFocus(uint8_t enable) {
    watched::zorva_api_focus_stepper_set_manual_mode_enable_send(gFocusApiCookie, gFocusSteppers[kDefaultIndex].c_str(),
                                                                 enable);
}

void StartAutoFocus() {
    watched::zorva_api_focus_stepper_start_quick_auto_focus_send(gFocusApiCookie,
                                                                 gFocusSteppers[kDefaultIndex].c_str());
}

void ReadManualFocus(uint8_t &manualMode) {
    ZORVA_API_CALL(zorva_api_focus_stepper_get_manual_mode_enable_send(
        gFocusApiCookie, gFocusSteppers[kDefaultIndex].c_str(), &manualMode));
}

const lens::Drive kDrive = {"handle_positionFocusStepperLens",
                            "focus",
                            "Focus",
                            FocusRange,
                            ReadFocusPosition,
                            lens::ClampToRange,
                            MoveFocus,
                            nullptr,
                            true,
                            nullptr,
                            nullptr};
lens::LensPosition gPosition = {kDrive};

const lens::LensFeatureDrive kFeatureDrive = {"handle_systemLensEquipped2",
                                              "handle_systemLensFeatureControl2",
                                              "handle_systemLensFeatureStatus2",
                                              "starting quick auto-focus",
                                              SetManualFocus,
                                              StartAutoFocus,
                                              ReadManualFocus};
lens::LensFeatureSet gFeatureSet = {kFeatureDrive};

int handle_rangeFocusStepperLimit(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                                  netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return lens::HandleConstant(__func__, "focusLimit", "...", 0, reqinfo, requests);
}

int handle_timeoutFocusStepper(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                               netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return lens::HandleConstant(__func__, "timeoutFocus", "...", 0, reqinfo, requests);
}

int handle_positionFocusStepperLens(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                                    netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return lens::HandleLensPosition(gPosition, reqinfo, requests);
}

int handle_systemLensEquipped2(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                               netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return lens::HandleLensEquipped(gFeatureSet, reqinfo, requests);
}

int handle_systemLensFeatureControl2(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                                     netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return lens::HandleLensFeatureControl(gFeatureSet, reqinfo, requests);
}

int handle_systemLensFeatureStatus2(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                                    netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return lens::HandleLensFeatureStatus(gFeatureSet, reqinfo, requests);
}

// clang-format off
const snmp_variable kObjects[] = {
    {"rangeFocusLimit",          handle_rangeFocusStepperLimit,    oid_rangeFocusLimit,          OID_LENGTH(oid_rangeFocusLimit),          HANDLER_CAN_GETANDGETNEXT},
    {"timeoutFocus",             handle_timeoutFocusStepper,       oid_timeoutFocus,             OID_LENGTH(oid_timeoutFocus),             HANDLER_CAN_RWRITE},
    {"positionFocusLens",        handle_positionFocusStepperLens,  oid_positionFocusLens,        OID_LENGTH(oid_positionFocusLens),        HANDLER_CAN_RWRITE},
    {"systemLensFeatureControl", handle_systemLensFeatureControl2, oid_systemLensFeatureControl, OID_LENGTH(oid_systemLensFeatureControl), HANDLER_CAN_RWRITE},
    {"systemLensFeatureStatus",  handle_systemLensFeatureStatus2,  oid_systemLensFeatureStatus,  OID_LENGTH(oid_systemLensFeatureStatus),  HANDLER_CAN_GETANDGETNEXT},
    {"systemLensEquipped",       handle_systemLensEquipped2,       oid_systemLensEquipped,       OID_LENGTH(oid_systemLensEquipped),       HANDLER_CAN_RWRITE},
};
// clang-format on

const lens::LensFeature kFeature = {{"focus_stepper", "no zorva API focuses", "focus_stepper", gFocusSteppers,
                                     gFocusApiCookie, zorva_api_focus_stepper_initiator_init},
                                    zorva_api_focus_stepper_initiator_deinit,
                                    ReadRange,
                                    kObjects,
                                    std::size(kObjects)};

} // namespace

bool InitFocusStepper(void *ipcCookie) {
    lens::WaitForTargets(kFeature.service);
    const bool started = lens::StartLens(__func__, ipcCookie, kFeature);
    lens::OpenExposure(__func__, ipcCookie, gFeatureSet.exposure);
    return started;
}

void DeinitFocusStepper() {
    lens::StopLens(kFeature);
    lens::CloseExposure(gFeatureSet.exposure);
}
