// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The position command: four octets with mode, speed (signed), and a 16-bit position, low-order octet first. All axes
 * and lens drives have this layout.
 */
#ifndef QUARNSNMP_POSITION_COMMAND_H
#define QUARNSNMP_POSITION_COMMAND_H

#include <array>
#include <cstdint>

#include "net_snmp.h"

/** A command as the octets of a request. */
using PositionOctets = std::array<uint8_t, 4>;

/** Modes of a position command. A request may hold other numbers. */
enum MoveMode : uint8_t { kStop = 0, kDelta = 1, kAbsolute = 2, kContinuous = 3 };

/** A decoded command. */
struct PositionCommand {
    uint8_t mode;
    int8_t speed;
    uint16_t position;
};

/** Decodes octets. */
PositionCommand DecodePositionCommand(const PositionOctets &octets);

/** Decodes the value of a request. Missing octets count as 0. */
PositionCommand PositionCommandOf(const netsnmp_request_info *request);

#endif
