// SPDX-License-Identifier: Apache-2.0
#include "motion_commands.h"

#include <array>

#include "core_utils.h"
#include "unit_conversion.h"
#include "wrapping.h"
#include "zorva_api_exception.h"

namespace positioning {

namespace {

constexpr int kPositioningPriorityLow = 500;

// Highest pan speed in millidegrees per second. The tilt speed is half of it.
constexpr unsigned int kMaxPanSpeedToPosition = 160000;
constexpr unsigned int kMaxPanSpeedContinuous = 80000;

constexpr std::size_t kAxisCount = 3;

/** Differences between the axes. */
struct AxisRecord {
    const char *word;      ///< in log lines of commands
    const char *name;      ///< in log lines of results
    int (*toService)(int); ///< converts an NTCIP position to units of the service
    const char *deltaDown; ///< log text of a delta move with a negative speed
    const char *deltaUp;   ///< log text of any other delta move
    const char *continuousDown;
    const char *continuousUp;
    const uint32_t *timeout; ///< of continuous moves, in milliseconds
};

// clang-format off
constexpr std::array<AxisRecord, kAxisCount> kAxes = {{
    {"PAN",  "pan",  convertNTCIPToZorvaPan,  "negative speed, counter-clockwise", "positive speed, clockwise",
     "counterclockwise", "clockwise", &gLastPanTimeout},
    {"TILT", "tilt", convertNTCIPToZorvaTilt, "negative speed, tilt down",         "positive speed, tilt up",
     "downward",         "upward",    &gLastTiltTimeout},
    {"ZOOM", "zoom", convertNTCIPToZorvaZoom, "wide zoom",                         "telephoto zoom",
     "wide",             "telephoto", &gLastZoomTimeout},
}};
// clang-format on

/** Returns the record of an axis; null for any other number. */
const AxisRecord *RecordOf(Axis axis) {
    const auto index = static_cast<std::size_t>(axis);
    return index < kAxes.size() ? &kAxes.at(index) : nullptr;
}

/** Returns the name of an axis in log lines of commands. */
const char *AxisWord(Axis axis) {
    const AxisRecord *record = RecordOf(axis);
    return record != nullptr ? record->word : "";
}

/** Returns the share of the full speed that a speed code stands for, for the log. */
double SpeedShare(int speed) {
    return speed * (1.0 / 128.0);
}

/** A value for each axis, in the order of Axis. */
using AxisValues = std::array<int, kAxisCount>;

/** Reads the present position and logs it in both units. @return NTCIP units @throws ZorvaApiException */
AxisValues ReadNtcipPosition(const char *function) {
    int32_t panFUZZMillidegrees = 0;
    int32_t tiltFUZZMillidegrees = 0;
    int32_t zoomFUZZDeciX = 0;
    ZORVA_API_CALL(zorva_api_positioning_get_position_send(gApiCookie, gPositionings[kDefaultIndex].c_str(),
        &panFUZZMillidegrees, &tiltFUZZMillidegrees, &zoomFUZZDeciX));
    zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: get_position FUZZ, %d=pan,%d=tilt,%d=zoom", function,
                           panFUZZMillidegrees, tiltFUZZMillidegrees, zoomFUZZDeciX);
    const AxisValues ntcip = {convertZorvaToNTCIPPan(panFUZZMillidegrees),
                              convertZorvaToNTCIPTilt(tiltFUZZMillidegrees), convertZorvaToNTCIPZoom(zoomFUZZDeciX)};
    zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: get_position NTCIP,%d=pan,%d=tilt,%d=zoom", function,
                           ntcip[kPanAxis], ntcip[kTiltAxis], ntcip[kZoomAxis]);
    return ntcip;
}

/** Clears the user's velocity limits and reads the position, as all moves to a position begin. */
AxisValues PrepareMove(const char *function) {
    ZORVA_API_CALL(zorva_api_positioning_clear_velocity_limits_send(gApiCookie, gPositionings[kDefaultIndex].c_str(),
        1, 1, 1));
    return ReadNtcipPosition(function);
}

/** Moves an axis to a position in NTCIP units. @throws ZorvaApiException */
void MoveToPosition(const char *function, Axis axis, signed char speed, int ntcipPosition) {
    AxisValues position{};
    std::array<float, kAxisCount> fraction{};
    if (const AxisRecord *record = RecordOf(axis)) {
        const auto index = static_cast<std::size_t>(axis);
        position.at(index) = record->toService(ntcipPosition);
        // The call sets the velocity limits; its result is only for the log.
        const int serviceSpeed = speedNTCIPToZorva(axis, speed, kMaxPanSpeedToPosition);
        fraction.at(index) = speedPercentage(axis, speed);
        zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: new %s position FUZZ, %d=%s,speed=%d,%.3f", function,
                               record->name, position.at(index), record->name, serviceSpeed,
                               static_cast<double>(fraction.at(index)));
    }
    const bool isPanEnabled = axis == kPanAxis;
    const bool isTiltEnabled = axis == kTiltAxis;
    const bool isZoomEnabled = axis == kZoomAxis;
    const auto [newFUZZPanPosition, newFUZZTiltPosition, newFUZZZoomPosition] = position;
    const auto [panSpeedPercentage, tiltSpeedPercentage, zoomSpeedPercentage] = fraction;
    ZORVA_API_CALL(zorva_api_positioning_move_to_position_with_speed_percentage_send(
        gApiCookie, gPositionings[kDefaultIndex].c_str(),
        isPanEnabled, newFUZZPanPosition, panSpeedPercentage,
        isTiltEnabled, newFUZZTiltPosition, tiltSpeedPercentage,
        isZoomEnabled, newFUZZZoomPosition, zoomSpeedPercentage, kPositioningPriorityLow));
}

/** Returns the end of a delta move in NTCIP units. The sign of the speed is the direction of a positive delta. */
int DeltaTarget(const char *function, Axis axis, signed char speed, int position, int delta) {
    const AxisRecord *record = RecordOf(axis);
    if (record == nullptr) {
        return 0;
    }
    zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: %s", function,
                           speed < 0 ? record->deltaDown : record->deltaUp);
    return speed < 0 ? WrappingSubtract(position, delta) : WrappingAdd(position, delta);
}

/**
 * Sends a velocity with a time-out in milliseconds, which is infinite for 0. A failure is logged.
 *
 * Two calls and not one, because the failure texts differ in the last argument and in a blank before a comma.
 * Operators' log filters match both texts.
 */
void SendVelocity(const char *function, Axis axis, int velocity, uint32_t timeout) {
    const bool isPanEnabled = axis == kPanAxis;
    const bool isTiltEnabled = axis == kTiltAxis;
    const bool isZoomEnabled = axis == kZoomAxis;
    const int panFuzzSpeed = isPanEnabled ? velocity : 0;
    const int tiltFuzzSpeed = isTiltEnabled ? velocity : 0;
    const int zoomFuzzSpeed = isZoomEnabled ? velocity : 0;
    try {
        if (timeout != 0) {
            ZORVA_API_CALL(zorva_api_positioning_set_velocity_with_timeout_send(
                gApiCookie, gPositionings[kDefaultIndex].c_str(), isPanEnabled, panFuzzSpeed, isTiltEnabled,
                tiltFuzzSpeed, isZoomEnabled, zoomFuzzSpeed, kPositioningPriorityLow, timeout));
        } else {
            ZORVA_API_CALL(zorva_api_positioning_set_velocity_with_timeout_send(
                gApiCookie, gPositionings[kDefaultIndex].c_str(), isPanEnabled, panFuzzSpeed , isTiltEnabled,
                tiltFuzzSpeed, isZoomEnabled, zoomFuzzSpeed, kPositioningPriorityLow, 0xFFFFFFFF));
        }
    } catch (const std::exception &failure) {
        if (timeout != 0) {
            zorva_core_logging_log(
                GetLogCookie(), kLogError,
                "%s: set_velocity_with_timeout pan %s=%d, tilt %s=%d, zoom %s=%d, priority=%d, timeout=%d (ms)",
                function, FlagText(isPanEnabled), panFuzzSpeed, FlagText(isTiltEnabled), tiltFuzzSpeed,
                FlagText(isZoomEnabled), zoomFuzzSpeed, kPositioningPriorityLow, static_cast<int>(timeout));
        } else {
            zorva_core_logging_log(
                GetLogCookie(), kLogError,
                "%s: set_velocity_with_timeout(infinite) pan %s=%d, tilt %s=%d, zoom %s=%d, priority=%d", function,
                FlagText(isPanEnabled), panFuzzSpeed, FlagText(isTiltEnabled), tiltFuzzSpeed, FlagText(isZoomEnabled),
                zoomFuzzSpeed, kPositioningPriorityLow);
        }
        LogFailure(failure);
    }
}

} // namespace

void stopMovement(Axis axis) {
    if (!IsConnected()) {
        return;
    }
    zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: stop %s", __func__, AxisWord(axis));
    const bool isPanEnabled = axis == kPanAxis;
    const bool isTiltEnabled = axis == kTiltAxis;
    const bool isZoomEnabled = axis == kZoomAxis;
    try {
        ZORVA_API_CALL(zorva_api_positioning_set_velocity_send(gApiCookie, gPositionings[kDefaultIndex].c_str(),
            isPanEnabled, 0, isTiltEnabled, 0, isZoomEnabled, 0, kPositioningPriorityLow));
    } catch (const std::exception &failure) {
        LogFailure(failure);
    }
}

uint32_t getInitialPosition(Axis axis) {
    if (!IsConnected()) {
        return 0;
    }
    try {
        const AxisValues position = ReadNtcipPosition(__func__);
        const auto index = static_cast<std::size_t>(axis);
        return index < position.size() ? static_cast<uint32_t>(position.at(index)) : 0;
    } catch (const std::exception &failure) {
        LogFailure(failure);
        return 0;
    }
}

void deltaMovement(Axis axis, signed char speed, short delta) {
    if (!IsConnected()) {
        return;
    }
    zorva_core_logging_log(
        GetLogCookie(), kLogInfo, "%s: NTCIP delta %s, speed=0x%.2x(%.3f%%), delta=0x%.4x(%d hundrethdegree)", __func__,
        AxisWord(axis), static_cast<unsigned int>(speed), SpeedShare(speed), static_cast<unsigned int>(delta), delta);
    try {
        const AxisValues position = PrepareMove(__func__);
        const auto index = static_cast<std::size_t>(axis);
        const int present = index < position.size() ? position.at(index) : 0;
        MoveToPosition(__func__, axis, speed, DeltaTarget(__func__, axis, speed, present, delta));
    } catch (const std::exception &failure) {
        LogFailure(failure);
    }
}

void absoluteMovement(Axis axis, signed char speed, unsigned short position) {
    if (!IsConnected()) {
        return;
    }
    zorva_core_logging_log(GetLogCookie(), kLogInfo,
                           "%s: NTCIP absolute %s, speed=0x%.2x(%.3f%%), position=0x%.4x(%d hundrethdegree)", __func__,
                           AxisWord(axis), static_cast<unsigned int>(speed), SpeedShare(speed),
                           static_cast<unsigned int>(position), position);
    try {
        PrepareMove(__func__);
        MoveToPosition(__func__, axis, speed, position);
    } catch (const std::exception &failure) {
        LogFailure(failure);
    }
}

void continuousMovement(Axis axis, int speed) {
    if (!IsConnected()) {
        return;
    }
    try {
        // The result has no use, but the call belongs to the sequence that services get before such a move.
        ReadSoftPositionLimits();
    } catch (const std::exception &failure) {
        LogFailure(failure);
    }
    zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: NTCIP continuous %s, speed=0x%.2x(%.3f%%)", __func__,
                           AxisWord(axis), static_cast<unsigned int>(speed), SpeedShare(speed));
    const AxisRecord *record = RecordOf(axis);
    if (record == nullptr) {
        SendVelocity(__func__, axis, 0, 0);
        return;
    }
    const auto code = static_cast<signed char>(speed);
    const int magnitude = speedNTCIPToZorva(axis, code, kMaxPanSpeedContinuous);
    const float fraction = speedPercentage(axis, code);
    const int velocity = code < 0 ? WrappingSubtract(0, magnitude) : magnitude;
    // Operators' log filters match the misspelt word, and "hundrethdegree" above.
    zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: countinous %s %s, speed=%d,%f", __func__,
                           code < 0 ? record->continuousDown : record->continuousUp, record->name, velocity,
                           static_cast<double>(fraction));
    SendVelocity(__func__, axis, velocity, *record->timeout);
}

} // namespace positioning
