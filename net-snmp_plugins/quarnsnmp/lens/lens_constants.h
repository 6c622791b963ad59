// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The range and time-out objects of the lens. The drives have no such settings, so all of them are 0 for ever; a SET of
 * a time-out is refused.
 */
#ifndef QUARNSNMP_LENS_CONSTANTS_H
#define QUARNSNMP_LENS_CONSTANTS_H

#include "core_utils.h"
#include "snmp_utils.h"

namespace lens {

/**
 * Serves an object that only ever answers a constant.
 * @param handlerName  for the log
 * @param shownAs      name of the value in the log; null when it is not logged
 * @param shownEnd     what follows the value in the log
 */
template <typename Value>
int HandleConstant(const char *handlerName, const char *shownAs, const char *shownEnd, Value value,
                   const netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    LogEnter(handlerName);
    if (reqinfo->mode != MODE_GET && reqinfo->mode != MODE_GETNEXT) {
        return LogUnknownMode(handlerName, reqinfo->mode);
    }
    if (shownAs != nullptr) {
        zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: %s=%d%s", handlerName, shownAs, value, shownEnd);
    }
    const int returned = SetRequestInteger(requests, value);
    LogDone(handlerName);
    return returned;
}

} // namespace lens

#endif
