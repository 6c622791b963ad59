// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Shared state of pan, tilt and zoom: the connection to the positioning service and the values between requests. Only
 * for the agent's thread.
 */
#ifndef QUARNSNMP_POSITIONING_STATE_H
#define QUARNSNMP_POSITIONING_STATE_H

#include <cstdint>
#include <string>
#include <vector>

#include "net_snmp.h"

namespace positioning {

/** A motion axis. For other numbers, functions return 0 or move nothing. */
enum Axis : int { kPanAxis = 0, kTiltAxis = 1, kZoomAxis = 2 };

/** Velocity-command time-out of a move without an end. */
inline constexpr uint32_t kInfiniteTimeout = 0xFFFFFFFF;

/** Handle of the positioning service; null without a connection. */
extern void *gApiCookie;

/** Targets of the service. Calls go to the one at kDefaultIndex. */
extern std::vector<std::string> gPositionings;

/** Time-outs of continuous moves in milliseconds; 0 and kInfiniteTimeout stand for none. */
extern uint32_t gLastPanTimeout;
extern uint32_t gLastTiltTimeout;
extern uint32_t gLastZoomTimeout;

/** Position limits in units of the service: millidegrees and deciX. A user's limit counts only if it is enabled. */
struct PositionLimits {
    bool panEnabled = false;
    int32_t panMin = 0;
    int32_t panMax = 0;
    bool tiltEnabled = false;
    int32_t tiltMin = 0;
    int32_t tiltMax = 0;
    bool zoomEnabled = false;
    int32_t zoomMin = 0;
    int32_t zoomMax = 0;
};

/** Returns true if the service is open and has a target. Otherwise functions return 0, and commands do nothing. */
bool IsConnected();

/** Reads the user's position limits. Needs a connection. @throws zorva::core::ZorvaApiException */
PositionLimits ReadSoftPositionLimits();

/** Returns the text of a flag in the log: "T" or "F". */
const char *FlagText(bool flag);

} // namespace positioning

#endif
