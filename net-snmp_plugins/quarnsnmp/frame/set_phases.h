// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The phases of a SET, in one place for all writable objects.
 *
 * The agent calls a handler once for each phase, and starts the next phase after all objects of the request have served
 * the present one:
 *
 *   phase     step        contract
 *   RESERVE1  checkType   checks the type, and with some objects the length
 *   RESERVE2  checkValue  checks the value
 *   ACTION    act         keeps the value as pending
 *   COMMIT    commit      makes the pending value current and carries it out on the device
 *   UNDO      undo        copies the current value back into the pending one
 *   FREE      none        does nothing: the checks keep no state
 *
 * FREE follows a refusal in RESERVE1 or RESERVE2, UNDO a refusal in ACTION. A step refuses a varbind with a mark on its
 * request, with an error as its result, or with both; the manager gets the mark. All steps run on the agent's thread.
 *
 * Each family has one constant record of steps. Most steps are the ready-made ones below, for objects with the members
 * `handlerName`, `current` and `pending`.
 */
#ifndef QUARNSNMP_SET_PHASES_H
#define QUARNSNMP_SET_PHASES_H

#include <type_traits>

#include "core_utils.h"
#include "snmp_utils.h"

/** The steps of a family of writable objects. `Object` is const where the values are references. */
template <typename Object>
struct SetPhases {
    /** Serves one phase. @return SNMP_ERR_NOERROR, or the error that ends the phase */
    using Step = int (*)(Object &object, netsnmp_request_info *request);

    Step get; ///< answers a GET
    Step checkType;
    Step checkValue;
    Step act;
    Step commit;
    Step undo;
    int (*unknownMode)(Object &object, netsnmp_request_info *request, int mode); ///< refuses any other mode
};

/** Serves one request of a writable object. GETNEXT adds nothing: the agent's helpers make a GET of it. */
template <const auto &phases, typename Object>
int ServePhase(Object &object, int mode, netsnmp_request_info *request) {
    switch (mode) {
    case MODE_GET:
        return phases.get(object, request);
    case MODE_GETNEXT:
    case MODE_SET_FREE:
        return SNMP_ERR_NOERROR;
    case MODE_SET_RESERVE1:
        return phases.checkType(object, request);
    case MODE_SET_RESERVE2:
        return phases.checkValue(object, request);
    case MODE_SET_ACTION:
        return phases.act(object, request);
    case MODE_SET_COMMIT:
        return phases.commit(object, request);
    case MODE_SET_UNDO:
        return phases.undo(object, request);
    default:
        return phases.unknownMode(object, request, mode);
    }
}

/** Serves one request between the log lines "Enter." and "Done.". */
template <const auto &phases, typename Object>
int ServeLoggedPhase(const char *function, Object &object, int mode, netsnmp_request_info *request,
                     LogLevel doneLevel = kLogDebug) {
    LogEnter(function);
    const int returned = ServePhase<phases>(object, mode, request);
    LogDone(function, doneLevel);
    return returned;
}

/** A writable object that needs no more than its name and its values. */
template <typename Value>
struct WritableObject {
    const char *handlerName;
    Value &current;
    Value &pending; ///< may be `current` itself, for a value that counts from ACTION on
};

/** Type of a member that may be a reference. */
template <typename Member>
using ValueType = std::remove_reference_t<Member>;

/** Answers a GET with the current value. */
template <typename Object>
int AnswerCurrent(Object &object, netsnmp_request_info *request) {
    if constexpr (std::is_integral_v<ValueType<decltype(object.current)>>) {
        return SetRequestInteger(request, object.current);
    } else {
        return SetRequestOctets(request, object.current);
    }
}

/** Marks a value of another type with wrongType, in RESERVE1. @return SNMP_ERR_NOERROR in either case */
template <unsigned char asnType, typename Object>
int MarkOtherTypes(Object & /*object*/, netsnmp_request_info *request) {
    return CheckRequestType(request, asnType);
}

/** Marks like MarkOtherTypes(), and returns the error too. A manager sees no difference. */
template <unsigned char asnType, typename Object>
int RefuseOtherTypes(Object & /*object*/, netsnmp_request_info *request) {
    return RequireRequestType(request, asnType);
}

/** Does nothing, in any phase. */
template <typename Object>
int DoNothing(Object & /*object*/, netsnmp_request_info * /*request*/) {
    return SNMP_ERR_NOERROR;
}

/** Keeps the value of the request, in ACTION: the low bits of an INTEGER, the first octets of an OCTET STRING. */
template <typename Object>
int KeepPending(Object &object, netsnmp_request_info *request) {
    using Value = ValueType<decltype(object.pending)>;
    if constexpr (std::is_integral_v<Value>) {
        object.pending = static_cast<Value>(*request->requestvb->val.integer);
    } else {
        object.pending = OctetsOf<std::tuple_size_v<Value>>(request);
    }
    return SNMP_ERR_NOERROR;
}

/** Restores the pending value from the current one, in UNDO. */
template <typename Object>
int RestorePending(Object &object, netsnmp_request_info * /*request*/) {
    object.pending = static_cast<ValueType<decltype(object.pending)>>(object.current);
    return SNMP_ERR_NOERROR;
}

/** Logs an unknown mode. @return SNMP_ERR_GENERR */
template <typename Object>
int LogOtherMode(Object &object, netsnmp_request_info * /*request*/, int mode) {
    return LogUnknownMode(object.handlerName, mode);
}

/** Logs an unknown mode and marks the request with genErr. A manager gets this error without the mark too. */
template <typename Object>
int MarkOtherMode(Object &object, netsnmp_request_info *request, int mode) {
    return RefuseRequest(request, SNMP_ERR_GENERR, LogUnknownMode(object.handlerName, mode));
}

#endif
