// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The objects of pan, tilt and zoom, and the octets of their commands.
 */
#ifndef QUARNSNMP_POSITIONING_OBJECTS_H
#define QUARNSNMP_POSITIONING_OBJECTS_H

#include "variable.h"

namespace positioning_objects {

inline constexpr const char *kSubtree = ".1.3.6.1.4.1.1206.4.2.7";
inline constexpr const char *kRangePanLeftLimit = ".1.3.6.1.4.1.1206.4.2.7.1.2.0";
inline constexpr const char *kRangePanRightLimit = ".1.3.6.1.4.1.1206.4.2.7.1.3.0";
inline constexpr const char *kRangePanHomePosition = ".1.3.6.1.4.1.1206.4.2.7.1.4.0";
inline constexpr const char *kRangeTrueNorthOffset = ".1.3.6.1.4.1.1206.4.2.7.1.5.0";
inline constexpr const char *kRangeTiltUpLimit = ".1.3.6.1.4.1.1206.4.2.7.1.6.0";
inline constexpr const char *kRangeTiltDownLimit = ".1.3.6.1.4.1.1206.4.2.7.1.7.0";
inline constexpr const char *kRangeZoomLimit = ".1.3.6.1.4.1.1206.4.2.7.1.8.0";
inline constexpr const char *kRangeMinimumPanStepAngle = ".1.3.6.1.4.1.1206.4.2.7.1.11.0";
inline constexpr const char *kRangeMinimumTiltStepAngle = ".1.3.6.1.4.1.1206.4.2.7.1.12.0";
inline constexpr const char *kTimeoutPan = ".1.3.6.1.4.1.1206.4.2.7.2.1.0";
inline constexpr const char *kTimeoutTilt = ".1.3.6.1.4.1.1206.4.2.7.2.2.0";
inline constexpr const char *kTimeoutZoom = ".1.3.6.1.4.1.1206.4.2.7.2.3.0";
inline constexpr const char *kPositionPan = ".1.3.6.1.4.1.1206.4.2.7.4.1.0";
inline constexpr const char *kPositionTilt = ".1.3.6.1.4.1.1206.4.2.7.4.2.0";
inline constexpr const char *kPositionZoomLens = ".1.3.6.1.4.1.1206.4.2.7.4.3.0";

/** The four octets of a command, the position with its low-order octet first. */
inline std::string command(int mode, int speed = 0, int position = 0) {
    return {static_cast<char>(mode), static_cast<char>(speed), static_cast<char>(position & 0xFF),
            static_cast<char>(position >> 8 & 0xFF)};
}

inline std::string stop() {
    return command(0);
}
inline std::string delta(int speed, int offset) {
    return command(1, speed, offset);
}
inline std::string absolute(int speed, int position) {
    return command(2, speed, position);
}
inline std::string continuous(int speed) {
    return command(3, speed);
}

} // namespace positioning_objects

#endif
