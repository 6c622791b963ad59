// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * What the objects of pan, tilt and zoom share: the connection to the positioning service and the values that the
 * module keeps between requests. All of it belongs to the agent's thread.
 */
#ifndef QUARNSNMP_POSITIONING_STATE_H
#define QUARNSNMP_POSITIONING_STATE_H

#include <cstdint>
#include <string>
#include <vector>

#include "net_snmp.h"

namespace positioning {

/** A motion axis. Functions that take one give 0, or move nothing, for any other value. */
enum Axis : int { kPanAxis = 0, kTiltAxis = 1, kZoomAxis = 2 };

/** Velocity-command time-out of a move that goes on until it is stopped. */
inline constexpr uint32_t kInfiniteTimeout = 0xFFFFFFFF;

/** Connection to the positioning service; null when there is none. */
extern void *gApiCookie;

/** Targets of the service; calls go to the entry at kDefaultIndex. */
extern std::vector<std::string> gPositionings;

/** How long a continuous move of each axis runs without a new command, in milliseconds; 0 is for ever too. */
extern uint32_t gLastPanTimeout;
extern uint32_t gLastTiltTimeout;
extern uint32_t gLastZoomTimeout;

/** Position limits as the service holds them: millidegrees and deciX. The user's limits count where they are enabled.
 */
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

/** Whether there is a service to talk to. Functions that ask it give 0 without one, and commands do nothing. */
bool IsConnected();

/** Reads the user's position limits; only with a connection. @throws zorva::core::ZorvaApiException */
PositionLimits ReadSoftPositionLimits();

/** How the camera's log shows a flag: "T" or "F". */
const char *FlagText(bool flag);

} // namespace positioning

#endif
