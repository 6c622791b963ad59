// SPDX-License-Identifier: Apache-2.0
#include "eventually.h"

#include <cstdlib>
#include <ctime>
#include <thread>

#include <sys/syscall.h>
#include <unistd.h>

namespace support {

std::chrono::microseconds kernelTime() {
    timespec time{};
    ::syscall(SYS_clock_gettime, CLOCK_MONOTONIC, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_nsec / 1000);
}

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
