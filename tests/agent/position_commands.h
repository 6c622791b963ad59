// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Octets of the commands to axes and lens drives.
 */
#ifndef QUARNSNMP_POSITION_COMMANDS_H
#define QUARNSNMP_POSITION_COMMANDS_H

#include <string>

namespace position_commands {

/** Returns the four octets of a command, the position with its low-order octet first. */
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

} // namespace position_commands

#endif
