// SPDX-License-Identifier: Apache-2.0
#include "lens_position.h"

#include "core_utils.h"
#include "set_phases.h"
#include "snmp_utils.h"
#include "wrapping.h"

namespace lens {

namespace {

constexpr int kPositionEnd = 65535;

// Directions of the zorva_api_*_set_velocity_send() calls.
constexpr int32_t kFar = 0;
constexpr int32_t kNear = 1;

uint32_t AsNumber(const PositionOctets &octets) {
    uint32_t number = 0;
    for (std::size_t i = 0; i < octets.size(); ++i) {
        number |= static_cast<uint32_t>(octets.at(i)) << 8U * i;
    }
    return number;
}

int CheckType(LensPosition &object, netsnmp_request_info *request) {
    return CheckLength(object.drive.handlerName, object.drive.name, " position", object.pending.size(), request);
}

void LogCommandMode(const Drive &drive, int mode) {
    zorva_core_logging_log(GetLogCookie(), kLogError, "%s: unknown %s mode (%d)", drive.handlerName, drive.name, mode);
}

int CheckCommand(LensPosition &object, netsnmp_request_info *request) {
    const Drive &drive = object.drive;
    const PositionCommand command = PositionCommandOf(request);
    if (command.mode == kStop && command.speed != 0) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: stop movement speed not zero(%d)", drive.handlerName,
                               command.speed);
        return RefuseRequest(request, SNMP_ERR_WRONGVALUE, SNMP_ERR_WRONGVALUE);
    }
    if (command.mode > kContinuous) {
        LogCommandMode(drive, command.mode);
        return RefuseRequest(request, SNMP_ERR_WRONGVALUE, SNMP_ERR_GENERR);
    }
    return SNMP_ERR_NOERROR;
}

void MoveByDelta(const LensPosition &object, const PositionCommand &command) {
    const Drive &drive = object.drive;
    int32_t current = 0;
    if (!drive.readPosition(current)) {
        return;
    }
    const Range range = drive.range();
    const int32_t step = ScaleValues(command.position, 0, kPositionEnd, 0, WrappingSubtract(range.max, range.min));
    const int32_t target = command.speed < 0 ? WrappingSubtract(current, step) : WrappingAdd(current, step);
    const int32_t position = drive.clamp(target, range, AsNumber(object.pending));
    const char *name = drive.capitalName;
    zorva_core_logging_log(GetLogCookie(), kLogInfo,
                           "%s: gMin%sPosition->%d, gMax%sPosition->%d, current%sPosition-> %d, "
                           "delta%sPosition->%d, calcDelta%sPosition->%d",
                           drive.handlerName, name, range.min, name, range.max, name, current, name, step, name,
                           position);
    drive.moveTo(position);
}

void MoveToPosition(const Drive &drive, const PositionCommand &command) {
    const Range range = drive.range();
    const int32_t position = ScaleValues(command.position, 0, kPositionEnd, range.min, range.max);
    drive.moveTo(position);
    const char *name = drive.capitalName;
    zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: gMin%sPosition->%d, gMax%sPosition->%d, abs%sPosition->%d",
                           drive.handlerName, name, range.min, name, range.max, name, position);
}

void Stop(const Drive &drive, const PositionCommand &command) {
    if (drive.logsStop) {
        zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: stop %s (%d)", drive.handlerName, drive.name,
                               command.mode);
    }
    if (drive.setVelocity != nullptr) {
        drive.setVelocity(kFar, 0);
    }
}

void Run(const Drive &drive, const PositionCommand &command) {
    if (drive.setVelocity == nullptr) {
        return;
    }
    const char *text = command.speed < 0 ? drive.nearText : drive.farText;
    if (command.speed != 0 && text != nullptr) {
        zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: %s", drive.handlerName, text);
    }
    drive.setVelocity(command.speed < 0 ? kNear : kFar, command.speed != 0 ? 1 : 0);
    zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: continuous %s=%d, speed=%d", drive.handlerName, drive.name,
                           command.mode, command.speed);
}

int Commit(LensPosition &object, netsnmp_request_info *request) {
    object.current = object.pending;
    const PositionCommand command = PositionCommandOf(request);
    int returned = SNMP_ERR_NOERROR;
    switch (command.mode) {
    case kStop:
        Stop(object.drive, command);
        break;
    case kDelta:
        MoveByDelta(object, command);
        break;
    case kAbsolute:
        MoveToPosition(object.drive, command);
        break;
    case kContinuous:
        Run(object.drive, command);
        break;
    default:
        // RESERVE2 has refused these. The line shows the speed, as it always has.
        LogCommandMode(object.drive, command.speed);
        returned = SNMP_ERR_GENERR;
        break;
    }
    const int answered = SetRequestOctets(request, object.pending);
    return returned != SNMP_ERR_NOERROR ? returned : answered;
}

int LogMode(LensPosition &object, netsnmp_request_info * /*request*/, int mode) {
    return LogUnknownMode(object.drive.handlerName, mode);
}

constexpr SetPhases<LensPosition> kPhases = {AnswerCurrent, CheckType,      CheckCommand, KeepPending,
                                             Commit,        RestorePending, LogMode};

} // namespace

int32_t ClampToRange(int32_t target, const Range &range, uint32_t /*command*/) {
    if (target > range.max) {
        return range.max;
    }
    return target < range.min ? range.min : target;
}

int HandleLensPosition(LensPosition &object, const netsnmp_agent_request_info *reqinfo,
                       netsnmp_request_info *requests) {
    return ServeLoggedPhase<kPhases>(object.drive.handlerName, object, reqinfo->mode, requests);
}

} // namespace lens
