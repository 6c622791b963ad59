// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Waiting for a condition instead of for a guessed time.
 */
#ifndef QUARNSNMP_HARNESS_EVENTUALLY_H
#define QUARNSNMP_HARNESS_EVENTUALLY_H

#include <chrono>
#include <functional>

namespace harness {

/**
 * Stretches a deadline for slow surroundings: an agent that runs behind a prefix (an emulator) or sanitized code.
 * A deadline only says when to give up, so stretching costs nothing where everything is fast.
 */
std::chrono::milliseconds patient(std::chrono::milliseconds deadline);

/**
 * Asks a predicate every few milliseconds until it holds.
 * @param deadline   time after which to give up; stretched with patient()
 * @param predicate  is asked at least once, and once more after the deadline
 * @return whether it held
 */
bool eventually(std::chrono::milliseconds deadline, const std::function<bool()> &predicate);

} // namespace harness

#endif
