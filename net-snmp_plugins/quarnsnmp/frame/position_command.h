// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The four octets that the position objects carry: mode, speed (signed), and a 16-bit position with its low-order octet
 * first. Every axis and every lens drive reads them so.
 */
#ifndef QUARNSNMP_POSITION_COMMAND_H
#define QUARNSNMP_POSITION_COMMAND_H

#include <array>
#include <cstdint>

#include "net_snmp.h"

/** The octets as they stand in a request. */
using PositionOctets = std::array<uint8_t, 4>;

/** Modes of a position command; a request may hold others. */
enum MoveMode : uint8_t { kStop = 0, kDelta = 1, kAbsolute = 2, kContinuous = 3 };

/** The octets taken apart. */
struct PositionCommand {
    uint8_t mode;
    int8_t speed;
    uint16_t position;
};

/** The first four octets of a request's value; those that it does not have are 0. */
PositionOctets PositionOctetsOf(const netsnmp_request_info *request);

/** Takes octets apart. */
PositionCommand DecodePositionCommand(const PositionOctets &octets);

#endif
