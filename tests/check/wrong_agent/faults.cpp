// SPDX-License-Identifier: Apache-2.0
#include "faults.h"

#include <algorithm>
#include <stdexcept>

#include "fault_families.h"

namespace wrong {

const std::vector<Fault> &faults() {
    static const std::vector<Fault> all = [] {
        std::vector<Fault> list;
        for (const auto &family :
             {objectFaults, consistencyFaults, readFaults, writeFaults, moveFaults, responseFaults}) {
            const std::vector<Fault> more = family();
            list.insert(list.end(), more.begin(), more.end());
        }
        return list;
    }();
    return all;
}

const Fault &faultNamed(const std::string &rule) {
    const auto &all = faults();
    const auto found = std::find_if(all.begin(), all.end(), [&](const Fault &fault) { return fault.rule == rule; });
    if (found == all.end()) {
        throw std::invalid_argument("unknown fault '" + rule + "'");
    }
    return *found;
}

} // namespace wrong
