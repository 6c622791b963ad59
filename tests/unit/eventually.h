// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Waiting for what another thread does.
 */
#ifndef QUARNSNMP_EVENTUALLY_H
#define QUARNSNMP_EVENTUALLY_H

#include <chrono>
#include <functional>
#include <thread>

/** Waits until the condition holds. @return whether it did within 20 seconds */
inline bool eventually(const std::function<bool()> &condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}

#endif
