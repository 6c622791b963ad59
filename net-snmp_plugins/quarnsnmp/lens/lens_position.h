// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The lens position objects, of which focus, iris and zoom steppers have one each: a SET of exactly four octets is a
 * command, a GET answers the last one that was accepted.
 *
 * Positions 0 to 65535 span the range of the drive. Of the speed only the sign counts: where a delta goes, and whether
 * a continuous move goes far (positive), near (negative) or halts (0).
 */
#ifndef QUARNSNMP_LENS_POSITION_H
#define QUARNSNMP_LENS_POSITION_H

#include "position_command.h"

namespace lens {

/** Lowest and highest position of a drive, in its own units. */
struct Range {
    int32_t min;
    int32_t max;
};

/** How the drives differ. */
struct Drive {
    const char *handlerName;
    const char *name;        ///< in logs: "focus"
    const char *capitalName; ///< in names of values in logs: "Focus"
    Range (*range)();        ///< as last read
    /** Reads the present position, and with some drives the range. @return whether that succeeded */
    bool (*readPosition)(int32_t &current);
    /** Keeps the target of a delta within the range. @param command the octets being set, octet 0 lowest */
    int32_t (*clamp)(int32_t target, const Range &range, uint32_t command);
    void (*moveTo)(int32_t position);
    /** Lets the drive run (1) or halt (0) in a direction; null when it can do neither. */
    void (*setVelocity)(int32_t direction, int32_t run);
    bool logsStop;
    const char *farText; ///< logged with a move in a direction; null when nothing is
    const char *nearText;
};

/** A lens position object with what it holds. */
struct LensPosition {
    const Drive &drive;
    PositionOctets current{};
    PositionOctets pending{};
};

/** Keeps a target within a range. */
int32_t ClampToRange(int32_t target, const Range &range, uint32_t command);

/** Serves a lens position object in every mode. */
int HandleLensPosition(LensPosition &object, const netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests);

} // namespace lens

#endif
