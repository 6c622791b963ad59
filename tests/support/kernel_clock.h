// SPDX-License-Identifier: Apache-2.0
/** @file The kernel's time, also under a preloaded library that speeds up the clock of the process. */
#ifndef QUARNSNMP_SUPPORT_KERNEL_CLOCK_H
#define QUARNSNMP_SUPPORT_KERNEL_CLOCK_H

#include <chrono>
#include <ctime>

#include <sys/syscall.h>
#include <unistd.h>

namespace support {

/** Time since an arbitrary moment, which stays the same until the machine restarts. */
inline std::chrono::microseconds kernelTime() {
    timespec time{};
    ::syscall(SYS_clock_gettime, CLOCK_MONOTONIC, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_nsec / 1000);
}

} // namespace support

#endif
