// SPDX-License-Identifier: Apache-2.0
#include "unit_conversion.h"

#include <array>
#include <cstdlib>
#include <optional>

#include "core_utils.h"
#include "snmp_utils.h"
#include "wrapping.h"
#include "zorva_api_exception.h"

namespace positioning {

namespace {

constexpr int kMillidegreesPerHundredth = 10;
constexpr int kHalfHundredth = 5;
constexpr int kQuarterTurn = 90000;
constexpr int kHalfTurn = 180000;
constexpr int kThreeQuarterTurn = 270000;
constexpr int kFullTurn = 360000;

constexpr int kNtcipZoomMax = 65535;
constexpr int kNtcipSpeedMax = 127;

/** Lowest and highest value of one axis. */
struct Range {
    int32_t min = 0;
    int32_t max = 0;
};

/** Velocity ranges in millidegrees and deciX per second, in the order of Axis. */
using VelocityLimits = std::array<Range, 3>;

/** Reads the optical maximum in deciX, which bounds the zoom if neither user limits nor digital zoom are on. */
int32_t ReadOpticalMaximum(int32_t softMinimum) {
    int32_t ptzPositionLimitsZoomMaxDeciX = 0;
    int32_t ptzPositionLimitsZoomDigitalMaxDeciX = 0;
    int32_t ptzPositionLimitsZoomCombinedMaxDeciX = 0;
    ZORVA_API_CALL(zorva_api_positioning_get_max_optical_and_digital_zoom_send(
        gApiCookie, gPositionings[kDefaultIndex].c_str(),
        &ptzPositionLimitsZoomMaxDeciX, &ptzPositionLimitsZoomDigitalMaxDeciX, &ptzPositionLimitsZoomCombinedMaxDeciX));
    // The first number is the zoom minimum, not the optical maximum. Operators' log filters match this text.
    zorva_core_logging_log(GetLogCookie(), kLogNotice, "%s: get_max_optical_and_digital_zoom optical/digital=(%d,%d)",
                           "convertNTCIPToZorvaZoom", softMinimum, ptzPositionLimitsZoomDigitalMaxDeciX);
    return ptzPositionLimitsZoomMaxDeciX;
}

bool ReadDigitalZoomEnable() {
    uint8_t isDigitalZoomEnabled = 0;
    ZORVA_API_CALL(zorva_api_positioning_get_digital_zoom_enable_send(gApiCookie, gPositionings[kDefaultIndex].c_str(),
        &isDigitalZoomEnabled));
    return isDigitalZoomEnabled != 0;
}

/** Reads the zoom range in deciX that 0 to 65535 spans in a command. */
Range ReadCommandZoomRange() {
    const PositionLimits limits = ReadSoftPositionLimits();
    zorva_core_logging_log(GetLogCookie(), kLogNotice,
                           "%s: get_soft_limits (min,max) pan(%s)(%d,%d), tilt(%s)(%d,%d), zoom(%s)(%d,%d)",
                           "convertNTCIPToZorvaZoom", FlagText(limits.panEnabled), limits.panMin, limits.panMax,
                           FlagText(limits.tiltEnabled), limits.tiltMin, limits.tiltMax, FlagText(limits.zoomEnabled),
                           limits.zoomMin, limits.zoomMax);
    if (limits.zoomEnabled || ReadDigitalZoomEnable()) {
        return {limits.zoomMin, limits.zoomMax};
    }
    return {limits.zoomMin, ReadOpticalMaximum(limits.zoomMin)};
}

/**
 * Reads the user's velocity limits, and sets those of pan to `maxPanSpeed` and of tilt to half of it if they differ.
 * @return the new limits; nothing if the read failed
 */
std::optional<VelocityLimits> ApplySoftVelocityLimits(unsigned int maxPanSpeed) {
    uint8_t ptzEnablePanEnable = 0;
    int32_t ptz_velocity_limits_pan_min_millidegrees = 0;
    int32_t ptz_velocity_limits_pan_max_millidegrees = 0;
    uint8_t ptzEnableTiltEnable = 0;
    int32_t ptz_velocity_limits_tilt_min_millidegrees = 0;
    int32_t ptz_velocity_limits_tilt_max_millidegrees = 0;
    uint8_t ptzEnableZoomEnable = 0;
    int32_t ptz_velocity_limits_zoom_min_deciX = 0;
    int32_t ptz_velocity_limits_zoom_max_deciX = 0;
    const auto panMax = static_cast<int32_t>(maxPanSpeed);
    const auto tiltMax = static_cast<int32_t>(maxPanSpeed / 2);
    bool known = false;
    try {
        ZORVA_API_CALL(zorva_api_positioning_get_soft_velocity_limits_send(
            gApiCookie, gPositionings[kDefaultIndex].c_str(),
            &ptzEnablePanEnable, &ptz_velocity_limits_pan_min_millidegrees, &ptz_velocity_limits_pan_max_millidegrees,
            &ptzEnableTiltEnable, &ptz_velocity_limits_tilt_min_millidegrees, &ptz_velocity_limits_tilt_max_millidegrees,
            &ptzEnableZoomEnable, &ptz_velocity_limits_zoom_min_deciX, &ptz_velocity_limits_zoom_max_deciX));
        known = true;
        if (ptz_velocity_limits_pan_max_millidegrees != panMax ||
            ptz_velocity_limits_tilt_max_millidegrees != tiltMax) {
            ptz_velocity_limits_pan_max_millidegrees = panMax;
            ptz_velocity_limits_tilt_max_millidegrees = tiltMax;
            ZORVA_API_CALL(zorva_api_positioning_set_soft_velocity_limits_send(gApiCookie,
                gPositionings[kDefaultIndex].c_str(),
                1, ptz_velocity_limits_pan_min_millidegrees, ptz_velocity_limits_pan_max_millidegrees,
                1, ptz_velocity_limits_tilt_min_millidegrees, ptz_velocity_limits_tilt_max_millidegrees,
                1, ptz_velocity_limits_zoom_min_deciX, ptz_velocity_limits_zoom_max_deciX));
        }
    } catch (const std::exception &failure) {
        LogFailure(failure);
    }
    if (!known) {
        return std::nullopt;
    }
    return VelocityLimits{{{ptz_velocity_limits_pan_min_millidegrees, ptz_velocity_limits_pan_max_millidegrees},
                           {ptz_velocity_limits_tilt_min_millidegrees, ptz_velocity_limits_tilt_max_millidegrees},
                           {ptz_velocity_limits_zoom_min_deciX, ptz_velocity_limits_zoom_max_deciX}}};
}

/** Reads the velocity limits of the mechanics. @return nothing after a failed call */
std::optional<VelocityLimits> ReadImplementationVelocityLimits() {
    int32_t ptz_velocity_limits_pan_min_millidegrees = 0;
    int32_t ptz_velocity_limits_pan_max_millidegrees = 0;
    int32_t ptz_velocity_limits_tilt_min_millidegrees = 0;
    int32_t ptz_velocity_limits_tilt_max_millidegrees = 0;
    int32_t ptz_velocity_limits_zoom_min_deciX = 0;
    int32_t ptz_velocity_limits_zoom_max_deciX = 0;
    try {
        ZORVA_API_CALL(zorva_api_positioning_get_implementation_velocity_limits_send(
            gApiCookie, gPositionings[kDefaultIndex].c_str(),
            &ptz_velocity_limits_pan_min_millidegrees, &ptz_velocity_limits_pan_max_millidegrees,
            &ptz_velocity_limits_tilt_min_millidegrees, &ptz_velocity_limits_tilt_max_millidegrees,
            &ptz_velocity_limits_zoom_min_deciX, &ptz_velocity_limits_zoom_max_deciX));
    } catch (const std::exception &failure) {
        LogFailure(failure);
        return std::nullopt;
    }
    // The line shows the zoom minimum in both zoom places. Operators' log filters match this text.
    zorva_core_logging_log(GetLogCookie(), kLogNotice,
                           "%s: get_implementation_velocity_limits, "
                           "%d=pvmin,%d=pvmax,%d=tvmin,%d=tvmax,%d=zvmin,%d=zvmax",
                           "speedPercentage", ptz_velocity_limits_pan_min_millidegrees,
                           ptz_velocity_limits_pan_max_millidegrees, ptz_velocity_limits_tilt_min_millidegrees,
                           ptz_velocity_limits_tilt_max_millidegrees, ptz_velocity_limits_zoom_min_deciX,
                           ptz_velocity_limits_zoom_min_deciX);
    return VelocityLimits{{{ptz_velocity_limits_pan_min_millidegrees, ptz_velocity_limits_pan_max_millidegrees},
                           {ptz_velocity_limits_tilt_min_millidegrees, ptz_velocity_limits_tilt_max_millidegrees},
                           {ptz_velocity_limits_zoom_min_deciX, ptz_velocity_limits_zoom_max_deciX}}};
}

/** Returns the range of an axis; null for any other number. */
const Range *RangeOf(const VelocityLimits &limits, Axis axis) {
    const auto index = static_cast<std::size_t>(axis);
    return index < limits.size() ? &limits.at(index) : nullptr;
}

int ScaleSpeed(signed char speed, const Range &range) {
    return ScaleValues(std::abs(static_cast<int>(speed)), 0, kNtcipSpeedMax, range.min, range.max);
}

float SpeedFraction(signed char speed, const Range &range) {
    const uint32_t span = static_cast<uint32_t>(range.max) - static_cast<uint32_t>(range.min);
    if (span == 0) {
        return 0.0F;
    }
    return static_cast<float>(static_cast<double>(ScaleSpeed(speed, range)) / static_cast<double>(span));
}

} // namespace

int convertNTCIPToZorvaPan(int ntcipPan) {
    const int millidegrees = WrappingMultiply(ntcipPan, kMillidegreesPerHundredth);
    if (millidegrees >= kFullTurn) {
        return millidegrees - kFullTurn;
    }
    return millidegrees < 0 ? millidegrees + kFullTurn : millidegrees;
}

int convertNTCIPToZorvaTilt(int ntcipTilt) {
    const int millidegrees = WrappingMultiply(ntcipTilt, kMillidegreesPerHundredth) % kFullTurn;
    if (millidegrees > kThreeQuarterTurn) {
        return millidegrees - kFullTurn;
    }
    if (millidegrees > kHalfTurn) {
        return kHalfTurn - millidegrees;
    }
    return millidegrees > kQuarterTurn ? millidegrees - kQuarterTurn : millidegrees;
}

int convertNTCIPToZorvaZoom(int ntcipZoom) {
    if (!IsConnected()) {
        return 0;
    }
    try {
        const Range range = ReadCommandZoomRange();
        if (ntcipZoom > kNtcipZoomMax) {
            return range.max;
        }
        return ntcipZoom < 0 ? range.min : ScaleValues(ntcipZoom, 0, kNtcipZoomMax, range.min, range.max);
    } catch (const std::exception &failure) {
        LogFailure(failure);
        return 0;
    }
}

int convertZorvaToNTCIPPan(int zorvaPan) {
    return WrappingAdd(zorvaPan, kHalfHundredth) / kMillidegreesPerHundredth;
}

int convertZorvaToNTCIPTilt(int zorvaTilt) {
    if (zorvaTilt < 0) {
        return (zorvaTilt + kFullTurn + kHalfHundredth) / kMillidegreesPerHundredth;
    }
    return static_cast<int>((static_cast<uint32_t>(zorvaTilt) + kHalfHundredth) / kMillidegreesPerHundredth);
}

int convertZorvaToNTCIPZoom(int zorvaZoom) {
    if (!IsConnected()) {
        return 0;
    }
    try {
        const PositionLimits limits = ReadSoftPositionLimits();
        if (limits.zoomMin == limits.zoomMax) {
            return 0;
        }
        return ScaleValues(zorvaZoom, limits.zoomMin, limits.zoomMax, 0, kNtcipZoomMax);
    } catch (const std::exception &failure) {
        LogFailure(failure);
        return 0;
    }
}

int speedNTCIPToZorva(Axis axis, signed char speed, unsigned int maxPanSpeed) {
    if (!IsConnected()) {
        return 0;
    }
    const std::optional<VelocityLimits> limits = ApplySoftVelocityLimits(maxPanSpeed);
    if (!limits || speed == 0) {
        return 0;
    }
    const Range *range = RangeOf(*limits, axis);
    if (range == nullptr) {
        return 0;
    }
    // The zoom has one speed.
    return axis == kZoomAxis ? range->max : ScaleSpeed(speed, *range);
}

float speedPercentage(Axis axis, signed char speed) {
    if (!IsConnected()) {
        return 0.0F;
    }
    const std::optional<VelocityLimits> limits = ReadImplementationVelocityLimits();
    if (!limits) {
        return 0.0F;
    }
    const Range *range = RangeOf(*limits, axis);
    return range != nullptr ? SpeedFraction(speed, *range) : 0.0F;
}

} // namespace positioning
