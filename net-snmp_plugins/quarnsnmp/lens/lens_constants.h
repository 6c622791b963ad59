// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The range and time-out objects of the lens. The drives have no such settings, so all objects are constantly 0. A SET
 * of a time-out is refused.
 */
#ifndef QUARNSNMP_LENS_CONSTANTS_H
#define QUARNSNMP_LENS_CONSTANTS_H

#include "core_utils.h"
#include "snmp_utils.h"

namespace lens {

/**
 * Serves an object with a constant value. The log texts differ between objects; operators' log filters match them.
 * An unknown mode leaves out the line "Done.".
 * @param handlerName  name of the handler in the log
 * @param valueName    name of the value in the log; null to leave the line out
 * @param valueEnd     text after the value in the log
 */
template <typename Value>
int HandleConstant(const char *handlerName, const char *valueName, const char *valueEnd, Value value,
                   const netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    LogEnter(handlerName);
    if (reqinfo->mode != MODE_GET && reqinfo->mode != MODE_GETNEXT) {
        return LogUnknownMode(handlerName, reqinfo->mode);
    }
    if (valueName != nullptr) {
        zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: %s=%d%s", handlerName, valueName, value, valueEnd);
    }
    const int returned = SetRequestInteger(requests, value);
    LogDone(handlerName);
    return returned;
}

} // namespace lens

#endif
