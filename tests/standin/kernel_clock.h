// SPDX-License-Identifier: Apache-2.0
/** @file The time that the kernel sees, also when the tests run with a preloaded library that lets time pass faster. */
#ifndef QUARNSNMP_STANDIN_KERNEL_CLOCK_H
#define QUARNSNMP_STANDIN_KERNEL_CLOCK_H

#include <chrono>
#include <ctime>

#include <sys/syscall.h>
#include <unistd.h>

/** Time since some moment before. */
inline std::chrono::microseconds kernelTime() {
    timespec time{};
    ::syscall(SYS_clock_gettime, CLOCK_MONOTONIC, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_nsec / 1000);
}

#endif
