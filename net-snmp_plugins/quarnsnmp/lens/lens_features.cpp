// SPDX-License-Identifier: Apache-2.0
#include "lens_features.h"

#include "core_utils.h"
#include "service_calls.h"
#include "set_phases.h"
#include "zorva_api_exception.h"

namespace lens {

namespace {

constexpr uint8_t kIrisBit = 0x80;
constexpr uint8_t kFocusBit = 0x40;
constexpr uint8_t kReservedFeatureBits = 0x3F;
constexpr uint8_t kAutomaticBit = 0x80;
constexpr uint8_t kReservedOrderBits = 0x7F;

int RefuseValue(netsnmp_request_info *request) {
    return RefuseRequest(request, SNMP_ERR_WRONGVALUE, SNMP_ERR_WRONGVALUE);
}

using Equipped = const WritableObject<std::array<uint8_t, 1>>;

int CheckEquippedLength(Equipped &object, netsnmp_request_info *request) {
    return CheckLength(object.handlerName, "systemLensEquipped", "", object.pending.size(), request);
}

int CheckEquipped(Equipped & /*object*/, netsnmp_request_info *request) {
    return (OctetsOf<1>(request)[0] & kReservedFeatureBits) != 0 ? RefuseValue(request) : SNMP_ERR_NOERROR;
}

int CommitEquipped(Equipped &object, netsnmp_request_info *request) {
    object.current = object.pending;
    // Central systems expect eight octets in the answer to a SET. Only the first has a meaning.
    std::array<uint8_t, 8> answer{};
    answer[0] = object.current[0];
    return SetRequestOctets(request, answer);
}

constexpr SetPhases<Equipped> kEquippedPhases = {AnswerCurrent,  CheckEquippedLength, CheckEquipped, KeepPending,
                                                 CommitEquipped, RestorePending,      LogOtherMode};

void SwitchFocus(const LensFeatureDrive &drive, bool automatic) {
    drive.setManualFocus(automatic ? 0 : 1);
    zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: %s", drive.controlHandler,
                           automatic ? drive.autoFocusText : "disabling auto-focus");
    if (automatic) {
        drive.startAutoFocus();
    }
}

/** Switches the iris. A service that is not open fails as one that refuses: the result of the call does not count. */
void SwitchIris(const LensFeatureSet &set, bool automatic) {
    const Exposure &exposure = set.exposure;
    if (exposure.targets.empty()) {
        return;
    }
    if (exposure.cookie != nullptr) {
        watched::zorva_api_exposure_set_manual_mode_enable_send(
            exposure.cookie, exposure.targets[kDefaultIndex].c_str(), automatic ? 0 : 1);
    }
    zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: %s", set.drive.controlHandler,
                           automatic ? "starting auto-iris" : "stopping auto-iris");
}

/** `systemLensFeatureControl` as its steps see it. */
struct Control {
    const char *handlerName;
    const LensFeatureSet &set;
    std::array<uint8_t, 2> &current;
    std::array<uint8_t, 2> &pending;
};

int CheckControlLength(const Control &object, netsnmp_request_info *request) {
    // It is not an iris position, but operators' log filters match this text.
    return CheckLength(object.handlerName, "iris", " position", object.pending.size(), request);
}

int CheckControl(const Control & /*object*/, netsnmp_request_info *request) {
    const auto [features, order] = OctetsOf<2>(request);
    const bool isReserved = (features & kReservedFeatureBits) != 0 || (order & kReservedOrderBits) != 0;
    return isReserved ? RefuseValue(request) : SNMP_ERR_NOERROR;
}

int CommitControl(const Control &object, netsnmp_request_info *request) {
    object.current = object.pending;
    const auto [features, order] = OctetsOf<2>(request);
    const bool automatic = (order & kAutomaticBit) != 0;
    if ((features & kFocusBit) != 0) {
        SwitchFocus(object.set.drive, automatic);
    }
    if ((features & kIrisBit) != 0) {
        SwitchIris(object.set, automatic);
    }
    return SNMP_ERR_NOERROR;
}

constexpr SetPhases<const Control> kControlPhases = {AnswerCurrent, CheckControlLength, CheckControl, KeepPending,
                                                     CommitControl, RestorePending,     LogOtherMode};

/**
 * Reads 0 if the exposure is automatic. A service that did not open fails with the status of that. The failure text has
 * the names of two variables that do not exist, so it is written out here: operators' log filters match it.
 * @throws zorva::core::ZorvaApiException
 */
void ReadManualExposure(const Exposure &exposure, uint8_t &manualMode) {
    const zorva_core_status status = exposure.cookie == nullptr
                                         ? exposure.openStatus
                                         : watched::zorva_api_exposure_get_manual_mode_enable_send(
                                               exposure.cookie, exposure.targets[kDefaultIndex].c_str(), &manualMode);
    if (status != 0) {
        throw zorva::core::ZorvaApiException("Failed zorva api call: zorva_api_exposure_get_manual_mode_enable_send( "
                                             "gExposureApiCookie, gExposures[kDefaultIndex].c_str(), &manualMode)",
                                             status);
    }
}

/** Returns true if a feature is automatic; false also if `readManual` throws, which is logged. */
template <typename ReadManual>
bool IsAutomatic(ReadManual readManual, uint8_t &manualMode) {
    try {
        readManual(manualMode);
        return manualMode == 0;
    } catch (const std::exception &failure) {
        LogFailure(failure);
        return false;
    }
}

} // namespace

int HandleLensEquipped(LensFeatureSet &set, const netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    Equipped object = {set.drive.equippedHandler, set.equipped, set.pendingEquipped};
    return ServeLoggedPhase<kEquippedPhases>(object.handlerName, object, reqinfo->mode, requests);
}

int HandleLensFeatureControl(LensFeatureSet &set, const netsnmp_agent_request_info *reqinfo,
                             netsnmp_request_info *requests) {
    const Control object = {set.drive.controlHandler, set, set.control, set.pendingControl};
    // "Done." has info level here, so that a log without debug lines shows the end of a switch.
    return ServeLoggedPhase<kControlPhases>(object.handlerName, object, reqinfo->mode, requests, kLogInfo);
}

int HandleLensFeatureStatus(const LensFeatureSet &set, const netsnmp_agent_request_info *reqinfo,
                            netsnmp_request_info *requests) {
    const char *function = set.drive.statusHandler;
    LogEnter(function);
    if (reqinfo->mode != MODE_GET && reqinfo->mode != MODE_GETNEXT) {
        // Debug level and no "Done.", unlike most handlers: operators' log filters match these lines.
        zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: unknown mode (%d)", function, reqinfo->mode);
        return SNMP_ERR_GENERR;
    }
    uint8_t manualMode = 0; // one for both, as the services have always been given it
    const bool autoFocus = IsAutomatic(set.drive.readManualFocus, manualMode);
    const auto readManualExposure = [&set](uint8_t &mode) { ReadManualExposure(set.exposure, mode); };
    const bool autoIris = !set.exposure.targets.empty() && IsAutomatic(readManualExposure, manualMode);
    zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: autoIris=%s,autoFocus=%s", function,
                           autoIris ? "TRUE" : "FALSE", autoFocus ? "TRUE" : "FALSE");
    const std::array<uint8_t, 1> status = {
        static_cast<uint8_t>((autoIris ? kIrisBit : 0U) | (autoFocus ? kFocusBit : 0U))};
    const int returned = SetRequestOctets(requests, status);
    LogDone(function);
    return returned;
}

} // namespace lens
