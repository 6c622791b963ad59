// SPDX-License-Identifier: Apache-2.0
#include "position_command.h"

#include <algorithm>

PositionOctets PositionOctetsOf(const netsnmp_request_info *request) {
    PositionOctets octets{};
    const netsnmp_variable_list *value = request->requestvb;
    if (value->val.string != nullptr) {
        std::copy_n(value->val.string, std::min(octets.size(), value->val_len), octets.begin());
    }
    return octets;
}

PositionCommand DecodePositionCommand(const PositionOctets &octets) {
    return {octets[0], static_cast<int8_t>(octets[1]),
            static_cast<uint16_t>(octets[2] | static_cast<unsigned int>(octets[3]) << 8U)};
}
