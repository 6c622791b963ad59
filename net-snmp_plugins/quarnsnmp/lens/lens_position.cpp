// SPDX-License-Identifier: Apache-2.0
#include "lens_position.h"

#include "core_utils.h"
#include "snmp_utils.h"
#include "wrapping.h"

namespace lens {

namespace {

constexpr int kPositionEnd = 65535;

// Directions of zorva_api_*_set_velocity_send().
constexpr int32_t kFar = 0;
constexpr int32_t kNear = 1;

uint32_t AsNumber(const PositionOctets &octets) {
    uint32_t number = 0;
    for (std::size_t i = 0; i < octets.size(); ++i) {
        number |= static_cast<uint32_t>(octets.at(i)) << 8U * i;
    }
    return number;
}

int CheckLength(const Drive &drive, netsnmp_request_info *request) {
    const netsnmp_variable_list *value = request->requestvb;
    if (value->type != ASN_OCTET_STR) {
        return RefuseRequest(request, SNMP_ERR_WRONGTYPE, SNMP_ERR_WRONGTYPE);
    }
    if (value->val_len != std::tuple_size_v<PositionOctets>) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: %s position not 4-bytes, val_len=%zu", drive.handlerName,
                               drive.name, value->val_len);
        return RefuseRequest(request, SNMP_ERR_WRONGVALUE, SNMP_ERR_WRONGVALUE);
    }
    return SNMP_ERR_NOERROR;
}

void LogMode(const Drive &drive, int mode) {
    zorva_core_logging_log(GetLogCookie(), kLogError, "%s: unknown %s mode (%d)", drive.handlerName, drive.name, mode);
}

int CheckCommand(const Drive &drive, netsnmp_request_info *request) {
    const PositionCommand command = DecodePositionCommand(PositionOctetsOf(request));
    if (command.mode == kStop && command.speed != 0) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: stop movement speed not zero(%d)", drive.handlerName,
                               command.speed);
        return RefuseRequest(request, SNMP_ERR_WRONGVALUE, SNMP_ERR_WRONGVALUE);
    }
    if (command.mode > kContinuous) {
        LogMode(drive, command.mode);
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
    object.committed = object.pending;
    const PositionCommand command = DecodePositionCommand(PositionOctetsOf(request));
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
        LogMode(object.drive, command.speed);
        returned = SNMP_ERR_GENERR;
        break;
    }
    const int answered = SetRequestValue(request, ASN_OCTET_STR, object.pending.data(), object.pending.size());
    return returned != SNMP_ERR_NOERROR ? returned : answered;
}

int AnswerMode(LensPosition &object, int mode, netsnmp_request_info *request) {
    switch (mode) {
    case MODE_GET:
        return SetRequestValue(request, ASN_OCTET_STR, object.committed.data(), object.committed.size());
    case MODE_GETNEXT:
    case MODE_SET_FREE:
        return SNMP_ERR_NOERROR;
    case MODE_SET_RESERVE1:
        return CheckLength(object.drive, request);
    case MODE_SET_RESERVE2:
        return CheckCommand(object.drive, request);
    case MODE_SET_ACTION:
        object.pending = PositionOctetsOf(request);
        return SNMP_ERR_NOERROR;
    case MODE_SET_COMMIT:
        return Commit(object, request);
    case MODE_SET_UNDO:
        object.pending = object.committed;
        return SNMP_ERR_NOERROR;
    default:
        return LogUnknownMode(object.drive.handlerName, mode);
    }
}

} // namespace

int32_t ClampToRange(int32_t target, const Range &range, uint32_t /*command*/) {
    if (target > range.max) {
        return range.max;
    }
    return target < range.min ? range.min : target;
}

int HandleLensPosition(LensPosition &object, const netsnmp_agent_request_info *reqinfo,
                       netsnmp_request_info *requests) {
    zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: Enter.", object.drive.handlerName);
    const int returned = AnswerMode(object, reqinfo->mode, requests);
    zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: Done.", object.drive.handlerName);
    return returned;
}

} // namespace lens
