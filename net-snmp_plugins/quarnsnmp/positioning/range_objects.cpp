// SPDX-License-Identifier: Apache-2.0
#include "range_objects.h"

#include "core_utils.h"
#include "set_phases.h"
#include "snmp_utils.h"
#include "zorva_api_exception.h"

namespace positioning {

namespace {

constexpr int32_t kUnknown = 65535; // the camera has no such offset or home position
constexpr int32_t kLastAngle = 35999;
constexpr int32_t kCircle = 36000;
constexpr int32_t kMillidegreesPerHundredth = 10;
constexpr unsigned int kLow16Bits = 0xFFFF;

} // namespace

int32_t gTrueNorthOffset = kUnknown;
int32_t gPanHomePosition = kUnknown;
int16_t gMinimumPanStepAngle = 1;
int16_t gMinimumTiltStepAngle = 1;
int32_t gZoomLimit = 0;
int32_t gPanLeftLimit = 0;
int32_t gPanRightLimit = 0;
int16_t gTiltUpLimit = 0;
int16_t gTiltDownLimit = 0;

namespace {

/** Serves a read-only object. @param refresh  updates the value, or leaves it if that fails */
template <typename Value, typename Refresh>
int HandleReadOnly(const char *function, const Value &value, Refresh refresh, const netsnmp_agent_request_info *reqinfo,
                   netsnmp_request_info *requests) {
    LogEnter(function);
    int returned = SNMP_ERR_GENERR;
    if (reqinfo->mode == MODE_GET || reqinfo->mode == MODE_GETNEXT) {
        refresh();
        returned = SetRequestInteger(requests, value);
    } else {
        LogUnknownMode(function, reqinfo->mode);
    }
    LogDone(function);
    return returned;
}

template <typename Value>
int HandleConstant(const char *function, const Value &value, const netsnmp_agent_request_info *reqinfo,
                   netsnmp_request_info *requests) {
    return HandleReadOnly(
        function, value, [] {}, reqinfo, requests);
}

/**
 * Serves a limit of the service. Without a connection and after a failed call the value is unchanged.
 * @param convert  converts the service's limits to the value; may call the service again
 */
template <typename Value, typename Convert>
int HandleLimit(const char *function, Value &value, Convert convert, const netsnmp_agent_request_info *reqinfo,
                netsnmp_request_info *requests) {
    const auto refresh = [function, &value, convert] {
        if (!IsConnected()) {
            return;
        }
        try {
            const PositionLimits limits = ReadSoftPositionLimits();
            // The line shows the zoom minimum in both zoom places. Operators' log filters match this text.
            zorva_core_logging_log(GetLogCookie(), kLogInfo,
                                   "%s: get_soft_position_limits, "
                                   "%d=pmin,%d=pmax,%d=tmin,%d=tmax,%d=zmin,%d=zmax",
                                   function, limits.panMin, limits.panMax, limits.tiltMin, limits.tiltMax,
                                   limits.zoomMin, limits.zoomMin);
            value = convert(limits);
        } catch (const std::exception &failure) {
            LogFailure(failure);
        }
    };
    return HandleReadOnly(function, value, refresh, reqinfo, requests);
}

/** Converts a pan limit to hundredths of a degree. The low 16 bits count, also those of a negative limit. */
int32_t PanLimit(int32_t millidegrees) {
    return static_cast<int32_t>(static_cast<uint32_t>(millidegrees) / kMillidegreesPerHundredth & kLow16Bits);
}

/** Converts a tilt limit to hundredths of a degree. Downward limits lie in the upper part of the circle. */
int32_t WrappedTiltLimit(int32_t millidegrees) {
    const int32_t hundredths = millidegrees / kMillidegreesPerHundredth;
    return millidegrees <= -kMillidegreesPerHundredth ? hundredths + kCircle : hundredths;
}

/** Returns the low 16 bits, the value of a 16-bit object. */
int16_t Low16Bits(int32_t value) {
    return static_cast<int16_t>(static_cast<unsigned int>(value) & kLow16Bits);
}

/** Lowest and highest tilt of the mechanics, in millidegrees. */
struct TiltRange {
    int32_t min;
    int32_t max;
};

/** Reads the limits of the mechanics. @throws zorva::core::ZorvaApiException */
TiltRange ReadImplementationTiltRange() {
    int32_t ptzPositionLimitsPanMinMillidegrees = 0;
    int32_t ptzPositionLimitsPanMaxMillidegrees = 0;
    int32_t ptzPositionLimitsTiltMinMillidegrees = 0;
    int32_t ptzPositionLimitsTiltMaxMillidegrees = 0;
    int32_t ptzPositionLimitsZoomMinDeciX = 0;
    int32_t ptzPositionLimitsZoomMaxDeciX = 0;
    ZORVA_API_CALL(zorva_api_positioning_get_implementation_position_limits_send(
        gApiCookie, gPositionings[kDefaultIndex].c_str(),
        &ptzPositionLimitsPanMinMillidegrees, &ptzPositionLimitsPanMaxMillidegrees,
        &ptzPositionLimitsTiltMinMillidegrees, &ptzPositionLimitsTiltMaxMillidegrees,
        &ptzPositionLimitsZoomMinDeciX, &ptzPositionLimitsZoomMaxDeciX));
    return {ptzPositionLimitsTiltMinMillidegrees, ptzPositionLimitsTiltMaxMillidegrees};
}

/** Converts the upper tilt limit. Only the user's limit wraps: no mechanics end below the horizon. */
int16_t TiltUpLimit(const char *function, const PositionLimits &limits) {
    if (!limits.tiltEnabled) {
        return Low16Bits(ReadImplementationTiltRange().max / kMillidegreesPerHundredth);
    }
    const int32_t limit = WrappedTiltLimit(limits.tiltMax);
    zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: tiltMaxLimit->%d", function, limit);
    return Low16Bits(limit);
}

int16_t TiltDownLimit(const PositionLimits &limits) {
    return Low16Bits(WrappedTiltLimit(limits.tiltEnabled ? limits.tiltMin : ReadImplementationTiltRange().min));
}

using TrueNorthOffset = const WritableObject<int32_t>;

// The value counts from ACTION on: when another varbind of the request fails then, it stays.
TrueNorthOffset kTrueNorthOffset = {"handle_rangeTrueNorthOffset", gTrueNorthOffset, gTrueNorthOffset};

int CheckTrueNorthOffset(TrueNorthOffset &object, netsnmp_request_info *request) {
    const long offset = *request->requestvb->val.integer;
    if (offset == 0 || offset == kUnknown) {
        return SNMP_ERR_NOERROR;
    }
    zorva_core_logging_log(GetLogCookie(), kLogError, "%s: true north offset(%ld) can only be 0 or 65535",
                           object.handlerName, offset);
    return RefuseRequest(request, SNMP_ERR_WRONGVALUE, SNMP_ERR_GENERR);
}

constexpr SetPhases<TrueNorthOffset> kTrueNorthPhases = {
    AnswerCurrent, MarkOtherTypes<ASN_INTEGER>, CheckTrueNorthOffset, KeepPending, DoNothing, DoNothing, MarkOtherMode};

} // namespace

void ResetRangeObjects() {
    gTrueNorthOffset = kUnknown;
    gPanLeftLimit = 0;
    gPanRightLimit = 0;
    gTiltUpLimit = 0;
    gTiltDownLimit = 0;
}

int handle_rangePanLeftLimit(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                             netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    const auto convert = [](const PositionLimits &limits) { return limits.panEnabled ? PanLimit(limits.panMin) : 0; };
    return HandleLimit(__func__, gPanLeftLimit, convert, reqinfo, requests);
}

int handle_rangePanRightLimit(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                              netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    const auto convert = [](const PositionLimits &limits) {
        return limits.panEnabled ? PanLimit(limits.panMax) : kLastAngle;
    };
    return HandleLimit(__func__, gPanRightLimit, convert, reqinfo, requests);
}

int handle_rangeTiltUpLimit(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                            netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    const char *function = __func__;
    const auto convert = [function](const PositionLimits &limits) { return TiltUpLimit(function, limits); };
    return HandleLimit(function, gTiltUpLimit, convert, reqinfo, requests);
}

int handle_rangeTiltDownLimit(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                              netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleLimit(__func__, gTiltDownLimit, TiltDownLimit, reqinfo, requests);
}

int handle_rangePanHomePosition(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                                netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleConstant(__func__, gPanHomePosition, reqinfo, requests);
}

int handle_rangeMinimumPanStepAngle(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                                    netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleConstant(__func__, gMinimumPanStepAngle, reqinfo, requests);
}

int handle_rangeMinimumTiltStepAngle(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                                     netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleConstant(__func__, gMinimumTiltStepAngle, reqinfo, requests);
}

int handle_rangeZoomLimit(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                          netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleConstant(__func__, gZoomLimit, reqinfo, requests);
}

int handle_rangeTrueNorthOffset(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                                netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return ServeLoggedPhase<kTrueNorthPhases>(__func__, kTrueNorthOffset, reqinfo->mode, requests);
}

} // namespace positioning
