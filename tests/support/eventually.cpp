// SPDX-License-Identifier: Apache-2.0
#include "eventually.h"

#include <cstdlib>
#include <thread>

#include "kernel_clock.h"

namespace support {

std::chrono::milliseconds patient(std::chrono::milliseconds deadline) {
    constexpr int kEmulated = 10;
    const char *prefix = std::getenv("QUARNSNMP_SNMPD_PREFIX");
    return deadline * SUPPORT_DEADLINE_FACTOR * (prefix != nullptr && *prefix != '\0' ? kEmulated : 1);
}

bool eventually(std::chrono::milliseconds deadline, const std::function<bool()> &predicate) {
    constexpr std::chrono::milliseconds kPause{1};
    const auto end = kernelTime() + patient(deadline);
    while (!predicate()) {
        if (kernelTime() >= end) {
            return predicate();
        }
        std::this_thread::sleep_for(kPause);
    }
    return true;
}

bool eventually(const std::function<bool()> &predicate) {
    return eventually(kPatience, predicate);
}

} // namespace support
