// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Calls and log lines of the start of a drive.
 */
#ifndef QUARNSNMP_LENS_START_LINES_H
#define QUARNSNMP_LENS_START_LINES_H

#include "lens_test.h"

namespace lens_tests {

inline const std::string kDiscoverExposure = "getTargetIds(\"exposure\")";

inline std::string discoverCall(const Drive &drive) {
    return std::string("getTargetIds(\"") + drive.service + "\")";
}

inline std::string openCall(const std::string &service) {
    return "zorva_api_" + service + "_initiator_init(ipc, log, &, 0, null)";
}

inline std::string closeCall(const std::string &service) {
    return "zorva_api_" + service + "_initiator_deinit(" + service + ")";
}

/** Calls of a start that finds the service in the given number of discoveries. */
inline Lines startCalls(const Drive &drive, std::size_t discoveries = 1) {
    Lines calls(discoveries, discoverCall(drive));
    calls.insert(calls.end(), {openCall(drive.service), drive.readRangeCall()});
    if (drive.opensExposure) {
        calls.insert(calls.end(), {kDiscoverExposure, openCall("exposure")});
    }
    return calls;
}

/** The line of a registration that the agent took or refused, and the feature's own. */
inline std::vector<scripted::LogLine> registrationLines(const Drive &drive, const Object &object, bool taken) {
    const std::string text = std::string("registerScalar: Registration for ") + object.name;
    return {taken ? logs::debug(text + " OID OK") : logs::error(text + " OID not OK"),
            logs::info(drive.initName + ": registerScalar=" + object.name)};
}

/** Log lines of a start; the first tells the limits. */
inline std::vector<scripted::LogLine> startLines(const Drive &drive, const scripted::LogLine &limits,
                                                 bool taken = true) {
    std::vector<scripted::LogLine> lines{limits};
    for (const Object &object : drive.objects) {
        for (const scripted::LogLine &each : registrationLines(drive, object, taken)) {
            lines.push_back(each);
        }
    }
    return lines;
}

} // namespace lens_tests

#endif
