// SPDX-License-Identifier: Apache-2.0
#include "position_command.h"

#include "snmp_utils.h"

PositionCommand DecodePositionCommand(const PositionOctets &octets) {
    return {octets[0], static_cast<int8_t>(octets[1]),
            static_cast<uint16_t>(octets[2] | static_cast<unsigned int>(octets[3]) << 8U)};
}

PositionCommand PositionCommandOf(const netsnmp_request_info *request) {
    return DecodePositionCommand(OctetsOf<std::tuple_size_v<PositionOctets>>(request));
}
