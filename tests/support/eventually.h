// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Waiting for a condition instead of a guessed time.
 */
#ifndef QUARNSNMP_SUPPORT_EVENTUALLY_H
#define QUARNSNMP_SUPPORT_EVENTUALLY_H

#include <chrono>
#include <functional>

namespace support {

/** Time after which a test gives up on most conditions. */
inline constexpr std::chrono::seconds kPatience{20};

/**
 * Returns the kernel's time since an arbitrary moment, which stays the same until the machine restarts. A preloaded
 * library that speeds up the clock of the process does not change it.
 */
std::chrono::microseconds kernelTime();

/**
 * Stretches a deadline for a sanitized build, and for an agent behind a prefix such as an emulator. A deadline only
 * matters when a test fails, so the stretching costs nothing.
 */
std::chrono::milliseconds patient(std::chrono::milliseconds deadline);

/**
 * Asks a predicate every millisecond until it holds. The time is the kernel's, also under a library that speeds up the
 * clock of the process.
 * @param deadline   time after which to give up; stretched with patient()
 * @param predicate  asked at least once, and once more after the deadline
 * @return true if the predicate held
 */
bool eventually(std::chrono::milliseconds deadline, const std::function<bool()> &predicate);

/** Asks a predicate until it holds or kPatience is over. @return true if the predicate held */
bool eventually(const std::function<bool()> &predicate);

} // namespace support

#endif
