// SPDX-License-Identifier: Apache-2.0
#include "lens_features.h"

#include <algorithm>

#include "core_utils.h"
#include "zorva_api_exception.h"

namespace lens {

namespace {

constexpr uint8_t kIrisBit = 0x80;
constexpr uint8_t kFocusBit = 0x40;
constexpr uint8_t kNoFeatureBits = 0x3F;
constexpr uint8_t kAutomaticBit = 0x80;
constexpr uint8_t kNoOrderBits = 0x7F;

/** The octets of a request's value, whose length RESERVE1 has checked; missing ones are 0. */
template <std::size_t size>
std::array<uint8_t, size> OctetsOf(const netsnmp_request_info *request) {
    std::array<uint8_t, size> octets{};
    const netsnmp_variable_list *value = request->requestvb;
    if (value->val.string != nullptr) {
        std::copy_n(value->val.string, std::min(size, value->val_len), octets.begin());
    }
    return octets;
}

template <std::size_t size>
int AnswerOctets(netsnmp_request_info *request, const std::array<uint8_t, size> &octets) {
    return SetRequestValue(request, ASN_OCTET_STR, octets.data(), octets.size());
}

int RefuseValue(netsnmp_request_info *request) {
    return RefuseRequest(request, SNMP_ERR_WRONGVALUE, SNMP_ERR_WRONGVALUE);
}

/** @param text  of the object in the log line of a wrong length */
int CheckLength(const char *handlerName, const char *text, std::size_t length, netsnmp_request_info *request) {
    const netsnmp_variable_list *value = request->requestvb;
    if (value->type != ASN_OCTET_STR) {
        return RefuseRequest(request, SNMP_ERR_WRONGTYPE, SNMP_ERR_WRONGTYPE);
    }
    if (value->val_len != length) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: %s not %zu-bytes, val_len=%zu", handlerName, text,
                               length, value->val_len);
        return RefuseValue(request);
    }
    return SNMP_ERR_NOERROR;
}

int CommitEquipped(LensFeatureSet &set, netsnmp_request_info *request) {
    set.equipped = set.pendingEquipped;
    // Central systems in the field expect eight octets in the answer to a SET, of which only the first means something.
    std::array<uint8_t, 8> answer{};
    answer[0] = set.equipped[0];
    return AnswerOctets(request, answer);
}

int AnswerEquipped(LensFeatureSet &set, int mode, netsnmp_request_info *request) {
    switch (mode) {
    case MODE_GET:
        return AnswerOctets(request, set.equipped);
    case MODE_GETNEXT:
    case MODE_SET_FREE:
        return SNMP_ERR_NOERROR;
    case MODE_SET_RESERVE1:
        return CheckLength(set.equippedHandler, "systemLensEquipped", set.equipped.size(), request);
    case MODE_SET_RESERVE2:
        return (OctetsOf<1>(request)[0] & kNoFeatureBits) != 0 ? RefuseValue(request) : SNMP_ERR_NOERROR;
    case MODE_SET_ACTION:
        set.pendingEquipped = OctetsOf<1>(request);
        return SNMP_ERR_NOERROR;
    case MODE_SET_COMMIT:
        return CommitEquipped(set, request);
    case MODE_SET_UNDO:
        set.pendingEquipped = set.equipped;
        return SNMP_ERR_NOERROR;
    default:
        return LogUnknownMode(set.equippedHandler, mode);
    }
}

void SwitchFocus(const LensFeatureSet &set, bool automatic) {
    set.setManualFocus(automatic ? 0 : 1);
    zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: %s", set.controlHandler,
                           automatic ? set.autoFocusText : "disabling auto-focus");
    if (automatic) {
        set.startAutoFocus();
    }
}

void SwitchIris(const LensFeatureSet &set, bool automatic) {
    if (set.exposure.cookie == nullptr) {
        return;
    }
    zorva_api_exposure_set_manual_mode_enable_send(set.exposure.cookie, set.exposure.targets[kDefaultIndex].c_str(),
                                                   automatic ? 0 : 1);
    zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: %s", set.controlHandler,
                           automatic ? "starting auto-iris" : "stopping auto-iris");
}

int CommitControl(LensFeatureSet &set, const netsnmp_request_info *request) {
    set.control = set.pendingControl;
    const auto [features, order] = OctetsOf<2>(request);
    const bool automatic = (order & kAutomaticBit) != 0;
    if ((features & kFocusBit) != 0) {
        SwitchFocus(set, automatic);
    }
    if ((features & kIrisBit) != 0) {
        SwitchIris(set, automatic);
    }
    return SNMP_ERR_NOERROR;
}

int CheckControl(netsnmp_request_info *request) {
    const auto [features, order] = OctetsOf<2>(request);
    return (features & kNoFeatureBits) != 0 || (order & kNoOrderBits) != 0 ? RefuseValue(request) : SNMP_ERR_NOERROR;
}

int AnswerControl(LensFeatureSet &set, int mode, netsnmp_request_info *request) {
    switch (mode) {
    case MODE_GET:
        return AnswerOctets(request, set.control);
    case MODE_GETNEXT:
    case MODE_SET_FREE:
        return SNMP_ERR_NOERROR;
    case MODE_SET_RESERVE1:
        // The log of this object has always spoken of the iris, and is filtered for that.
        return CheckLength(set.controlHandler, "iris position", set.control.size(), request);
    case MODE_SET_RESERVE2:
        return CheckControl(request);
    case MODE_SET_ACTION:
        set.pendingControl = OctetsOf<2>(request);
        return SNMP_ERR_NOERROR;
    case MODE_SET_COMMIT:
        return CommitControl(set, request);
    case MODE_SET_UNDO:
        set.pendingControl = set.control;
        return SNMP_ERR_NOERROR;
    default:
        return LogUnknownMode(set.controlHandler, mode);
    }
}

/** @throws zorva::core::ZorvaApiException */
bool ReadManualExposure(const Exposure &exposure) {
    uint8_t manualMode = 0;
    const zorva_core_status status = zorva_api_exposure_get_manual_mode_enable_send(
        exposure.cookie, exposure.targets[kDefaultIndex].c_str(), &manualMode);
    if (status != 0) {
        throw zorva::core::ZorvaApiException("Failed zorva api call: zorva_api_exposure_get_manual_mode_enable_send( "
                                             "gExposureApiCookie, gExposures[kDefaultIndex].c_str(), &manualMode)",
                                             status);
    }
    return manualMode != 0;
}

/** Whether a feature is automatic; false when `readManual` fails, which is logged. */
template <typename ReadManual>
bool IsAutomatic(ReadManual readManual) {
    try {
        return !readManual();
    } catch (const std::exception &failure) {
        LogFailure(failure);
        return false;
    }
}

} // namespace

int HandleLensEquipped(LensFeatureSet &set, const netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: Enter.", set.equippedHandler);
    const int returned = AnswerEquipped(set, reqinfo->mode, requests);
    zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: Done.", set.equippedHandler);
    return returned;
}

int HandleLensFeatureControl(LensFeatureSet &set, const netsnmp_agent_request_info *reqinfo,
                             netsnmp_request_info *requests) {
    zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: Enter.", set.controlHandler);
    const int returned = AnswerControl(set, reqinfo->mode, requests);
    // A level above the other handlers', so that the end of a switch shows in a log without debug lines.
    zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: Done.", set.controlHandler);
    return returned;
}

int HandleLensFeatureStatus(const LensFeatureSet &set, const netsnmp_agent_request_info *reqinfo,
                            netsnmp_request_info *requests) {
    zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: Enter.", set.statusHandler);
    if (reqinfo->mode != MODE_GET && reqinfo->mode != MODE_GETNEXT) {
        zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: unknown mode (%d)", set.statusHandler, reqinfo->mode);
        return SNMP_ERR_GENERR;
    }
    const bool autoFocus = IsAutomatic(set.readManualFocus);
    const bool autoIris =
        set.exposure.cookie != nullptr && IsAutomatic([&set] { return ReadManualExposure(set.exposure); });
    zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: autoIris=%s,autoFocus=%s", set.statusHandler,
                           autoIris ? "TRUE" : "FALSE", autoFocus ? "TRUE" : "FALSE");
    const std::array<uint8_t, 1> status = {
        static_cast<uint8_t>((autoIris ? kIrisBit : 0U) | (autoFocus ? kFocusBit : 0U))};
    const int returned = AnswerOctets(requests, status);
    zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: Done.", set.statusHandler);
    return returned;
}

} // namespace lens
