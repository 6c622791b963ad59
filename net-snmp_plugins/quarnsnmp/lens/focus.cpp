// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The focus of a motor-driven lens, and the lens feature objects of such a lens.
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

std::vector<std::string> gFocuses;
void *gFocusApiCookie = nullptr;
int32_t gMinFocusPosition = 0;
int32_t gMaxFocusPosition = 0;

void ReadRange(const char *function) {
    int32_t dummy = 0;
    try {
        ZORVA_API_CALL(zorva_api_lens_focus_get_manual_focus_position_send(gFocusApiCookie,
            gFocuses[kDefaultIndex].c_str(), &dummy, &gMinFocusPosition, &gMaxFocusPosition));
        zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: get_manual_focus_position, current=%d, min=%d, max=%d",
                               function, dummy, gMinFocusPosition, gMaxFocusPosition);
    } catch (const std::exception &failure) {
        LogFailure(failure);
        gMinFocusPosition = 0;
        gMaxFocusPosition = 0;
    }
}

lens::Range FocusRange() {
    return {gMinFocusPosition, gMaxFocusPosition};
}

/** Reads position and range. The lenses report another range once they have homed. */
bool ReadFocusPosition(int32_t &current) {
    lens::Range range{};
    if (watched::zorva_api_lens_focus_get_manual_focus_position_send(gFocusApiCookie, gFocuses[kDefaultIndex].c_str(),
                                                                     &current, &range.min, &range.max) != 0) {
        return false;
    }
    gMinFocusPosition = range.min;
    gMaxFocusPosition = range.max;
    return true;
}

void MoveFocus(int32_t position) {
    watched::zorva_api_lens_focus_set_manual_focus_position_send(gFocusApiCookie, gFocuses[kDefaultIndex].c_str(),
                                                                 position);
}

void SetFocusVelocity(int32_t direction, int32_t run) {
    watched::zorva_api_lens_focus_set_velocity_send(gFocusApiCookie, gFocuses[kDefaultIndex].c_str(), direction, run);
}

void SetManualFocus(uint8_t enable) {
    watched::zorva_api_lens_focus_set_manual_mode_enable_send(gFocusApiCookie, gFocuses[kDefaultIndex].c_str(), enable);
}

void StartAutoFocus() {
    watched::zorva_api_lens_focus_do_auto_focus_send(gFocusApiCookie, gFocuses[kDefaultIndex].c_str());
}

void ReadManualFocus(uint8_t &manualMode) {
    ZORVA_API_CALL(zorva_api_lens_focus_get_manual_mode_enable_send(
        gFocusApiCookie, gFocuses[kDefaultIndex].c_str(), &manualMode));
}

const lens::Drive kDrive = {
    "handle_positionFocusLens", "focus", "Focus",     FocusRange,  ReadFocusPosition, lens::ClampToRange, MoveFocus,
    SetFocusVelocity,           true,    "focus far", "focus near"};
lens::LensPosition gPosition = {kDrive};

const lens::LensFeatureDrive kFeatureDrive = {"handle_systemLensEquipped1",
                                              "handle_systemLensFeatureControl1",
                                              "handle_systemLensFeatureStatus1",
                                              "starting auto-focus",
                                              SetManualFocus,
                                              StartAutoFocus,
                                              ReadManualFocus};
lens::LensFeatureSet gFeatureSet = {kFeatureDrive};

int handle_rangeFocusLimit(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                           netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return lens::HandleConstant(__func__, "focusLimit", "...", 0, reqinfo, requests);
}

int handle_timeoutFocus(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                        netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return lens::HandleConstant(__func__, "timeoutFocus", "...", 0, reqinfo, requests);
}

int handle_positionFocusLens(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                             netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return lens::HandleLensPosition(gPosition, reqinfo, requests);
}

int handle_systemLensEquipped1(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                               netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return lens::HandleLensEquipped(gFeatureSet, reqinfo, requests);
}

int handle_systemLensFeatureControl1(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                                     netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return lens::HandleLensFeatureControl(gFeatureSet, reqinfo, requests);
}

int handle_systemLensFeatureStatus1(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                                    netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return lens::HandleLensFeatureStatus(gFeatureSet, reqinfo, requests);
}

// clang-format off
const snmp_variable kObjects[] = {
    {"rangeFocusLimit",          handle_rangeFocusLimit,           oid_rangeFocusLimit,          OID_LENGTH(oid_rangeFocusLimit),          HANDLER_CAN_GETANDGETNEXT},
    {"timeoutFocus",             handle_timeoutFocus,              oid_timeoutFocus,             OID_LENGTH(oid_timeoutFocus),             HANDLER_CAN_RWRITE},
    {"positionFocusLens",        handle_positionFocusLens,         oid_positionFocusLens,        OID_LENGTH(oid_positionFocusLens),        HANDLER_CAN_RWRITE},
    {"systemLensFeatureControl", handle_systemLensFeatureControl1, oid_systemLensFeatureControl, OID_LENGTH(oid_systemLensFeatureControl), HANDLER_CAN_RWRITE},
    {"systemLensFeatureStatus",  handle_systemLensFeatureStatus1,  oid_systemLensFeatureStatus,  OID_LENGTH(oid_systemLensFeatureStatus),  HANDLER_CAN_GETANDGETNEXT},
    {"systemLensEquipped",       handle_systemLensEquipped1,       oid_systemLensEquipped,       OID_LENGTH(oid_systemLensEquipped),       HANDLER_CAN_RWRITE},
};
// clang-format on

const lens::LensFeature kFeature = {
    {"lens_focus", "no zorva API focuses", "focus", gFocuses, gFocusApiCookie, zorva_api_lens_focus_initiator_init},
    zorva_api_lens_focus_initiator_deinit,
    ReadRange,
    kObjects,
    std::size(kObjects)};

} // namespace

bool InitFocus(void *ipcCookie) {
    lens::WaitForTargets(kFeature.service);
    const bool started = lens::StartLens(__func__, ipcCookie, kFeature);
    lens::OpenExposure(__func__, ipcCookie, gFeatureSet.exposure);
    return started;
}

void DeinitFocus() {
    lens::StopLens(kFeature);
    lens::CloseExposure(gFeatureSet.exposure);
}
