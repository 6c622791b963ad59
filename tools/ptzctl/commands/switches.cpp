// SPDX-License-Identifier: Apache-2.0
#include "switches.h"

#include <utility>

#include "camera_requests.h"

namespace ptzctl {

std::vector<ptz::Reading> readSwitches(snmp::Requester &camera, const Switches &switches) {
    std::vector<ptz::Reading> rows = ptz::readColumn(camera, switches.column);
    if (!rows.empty()) {
        return rows;
    }
    ptz::Reading bits = ptz::read(camera, ptz::instanceAt(switches.bits));
    return bits.missing ? std::vector<ptz::Reading>() : std::vector<ptz::Reading>{std::move(bits)};
}

} // namespace ptzctl
