// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The lens position objects: one for each drive of focus, iris and zoom. A SET of exactly four octets is a command. A
 * GET answers the last accepted command.
 *
 * Positions 0 to 65535 span the range of the drive. Only the sign of the speed counts. It is the direction of a delta,
 * and a continuous move goes far (positive), near (negative) or halts (0).
 */
#ifndef QUARNSNMP_LENS_POSITION_H
#define QUARNSNMP_LENS_POSITION_H

#include "position_command.h"

namespace lens {

/** Lowest and highest position of a drive, in units of the drive. */
struct Range {
    int32_t min;
    int32_t max;
};

/** Differences between the drives. */
struct Drive {
    const char *handlerName;
    const char *name;        ///< in the log: "focus"
    const char *capitalName; ///< in names of values in the log: "Focus"
    Range (*range)();        ///< returns the last known range
    /** Reads the present position, and with some drives the range. @return false after a failed call */
    bool (*readPosition)(int32_t &current);
    /** Bounds the target of a delta. @param command  octets of the command as a number, octet 0 lowest */
    int32_t (*clamp)(int32_t target, const Range &range, uint32_t command);
    void (*moveTo)(int32_t position);
    /** Runs (1) or halts (0) the drive in a direction; null for a drive without continuous moves. */
    void (*setVelocity)(int32_t direction, int32_t run);
    bool logsStop;
    const char *farText; ///< logged with a continuous move; null for no line
    const char *nearText;
};

/** A lens position object and its values. */
struct LensPosition {
    const Drive &drive;
    PositionOctets current{};
    PositionOctets pending{};
};

/** Bounds a target by the range. */
int32_t ClampToRange(int32_t target, const Range &range, uint32_t command);

/** Serves a lens position object. */
int HandleLensPosition(LensPosition &object, const netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests);

} // namespace lens

#endif
