// SPDX-License-Identifier: Apache-2.0
#include "position_objects.h"

#include <mutex>

#include "core_utils.h"
#include "motion_commands.h"
#include "service_health.h"
#include "set_phases.h"
#include "snmp_utils.h"

namespace positioning {

PositionOctets gLastPanPosition{};
PositionOctets gLastTiltPosition{};
PositionOctets gLastZoomPosition{};
PositionOctets gNewPanPosition{};
PositionOctets gNewTiltPosition{};
PositionOctets gNewZoomPosition{};

namespace {

constexpr unsigned int kPositionEnd = 36000; // a full circle in hundredths of a degree

/** Differences between the position objects. */
struct PositionObject {
    const char *handlerName;
    const char *axisName;
    Axis axis;
    bool isAngle; ///< positions end with the circle; the object exists without a connection too
    PositionOctets &current;
    PositionOctets &pending;
    bool filled; ///< `current` holds a value
};

PositionObject gPan = {"handle_positionPan", "pan", kPanAxis, true, gLastPanPosition, gNewPanPosition, false};
PositionObject gTilt = {"handle_positionTilt", "tilt", kTiltAxis, true, gLastTiltPosition, gNewTiltPosition, false};
PositionObject gZoom = {"handle_positionZoomLens", "zoom",           kZoomAxis, false,
                        gLastZoomPosition,         gNewZoomPosition, false};

std::mutex gFirstUse;

/** Fills in the position of the axis at the first request. */
void FillOnFirstUse(PositionObject &object) {
    const std::lock_guard<std::mutex> lock(gFirstUse);
    if (object.filled) {
        return;
    }
    object.filled = true;
    // A read also when a SET is what asks for it: the command itself must not wait for a service that hangs.
    const bool formerlyReading = SetReading(true);
    const uint32_t position = getInitialPosition(object.axis);
    SetReading(formerlyReading);
    for (std::size_t i = 0; i < object.current.size(); ++i) {
        object.current.at(i) = static_cast<uint8_t>(position >> 8U * i);
    }
}

int CheckCommand(PositionObject &object, netsnmp_request_info *request) {
    const PositionCommand command = PositionCommandOf(request);
    switch (command.mode) {
    case kStop:
        if (command.speed != 0) {
            zorva_core_logging_log(GetLogCookie(), kLogError, "%s: stop movement speed not zero(%d)",
                                   object.handlerName, command.speed);
            return RefuseRequest(request, SNMP_ERR_WRONGVALUE, SNMP_ERR_WRONGVALUE);
        }
        return SNMP_ERR_NOERROR;
    case kDelta:
    case kAbsolute:
        if (object.isAngle && command.position >= kPositionEnd) {
            zorva_core_logging_log(GetLogCookie(), kLogError, "%s: position=%d outside range 0-35999",
                                   object.handlerName, command.position);
            return RefuseRequest(request, SNMP_ERR_WRONGVALUE, SNMP_ERR_WRONGVALUE);
        }
        return SNMP_ERR_NOERROR;
    case kContinuous:
        return SNMP_ERR_NOERROR;
    default:
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: unknown %s mode (%d)", object.handlerName,
                               object.axisName, command.mode);
        // A manager gets the mark, wrongValue.
        return RefuseRequest(request, SNMP_ERR_WRONGVALUE, SNMP_ERR_GENERR);
    }
}

void Move(Axis axis, const PositionCommand &command) {
    switch (command.mode) {
    case kStop:
        stopMovement(axis);
        break;
    case kDelta:
        deltaMovement(axis, command.speed, static_cast<short>(command.position));
        break;
    case kAbsolute:
        absoluteMovement(axis, command.speed, command.position);
        break;
    case kContinuous:
        continuousMovement(axis, command.speed);
        break;
    default:
        break;
    }
}

int Commit(PositionObject &object, netsnmp_request_info *request) {
    const PositionCommand command = PositionCommandOf(request);
    object.current = object.pending;
    Move(object.axis, command);
    return object.isAngle ? SetRequestOctets(request, object.pending) : SNMP_ERR_NOERROR;
}

/** Refuses an unknown mode. Without the mark a manager gets genErr as well. */
int RefuseMode(PositionObject &object, netsnmp_request_info *request, int mode) {
    return object.isAngle ? MarkOtherMode(object, request, mode) : LogOtherMode(object, request, mode);
}

constexpr SetPhases<PositionObject> kPhases = {
    AnswerCurrent, MarkOtherTypes<ASN_OCTET_STR>, CheckCommand, KeepPending, Commit, RestorePending, RefuseMode};

int HandlePosition(PositionObject &object, const netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    LogEnter(object.handlerName);
    FillOnFirstUse(object);
    const int returned = ServePhase<kPhases>(object, reqinfo->mode, requests);
    LogDone(object.handlerName);
    return returned;
}

} // namespace

void ResetPositionObjects() {
    for (PositionObject *object : {&gPan, &gTilt, &gZoom}) {
        object->current = {};
        object->pending = {};
        object->filled = false;
    }
}

int handle_positionPan(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                       netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandlePosition(gPan, reqinfo, requests);
}

int handle_positionTilt(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                        netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandlePosition(gTilt, reqinfo, requests);
}

int handle_positionZoomLens(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                            netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandlePosition(gZoom, reqinfo, requests);
}

} // namespace positioning
