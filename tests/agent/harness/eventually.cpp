// SPDX-License-Identifier: Apache-2.0
#include "eventually.h"

#include <thread>

#include "settings.h"

namespace harness {

std::chrono::milliseconds patient(std::chrono::milliseconds deadline) {
    int factor = 1;
    if (!sanitizerRuntimes().empty()) {
        factor *= 4;
    }
    if (!agentPrefix().empty()) {
        factor *= 10;
    }
    return deadline * factor;
}

bool eventually(std::chrono::milliseconds deadline, const std::function<bool()> &predicate) {
    constexpr std::chrono::milliseconds kPause{3};
    const auto end = std::chrono::steady_clock::now() + patient(deadline);
    while (!predicate()) {
        if (std::chrono::steady_clock::now() >= end) {
            return predicate();
        }
        std::this_thread::sleep_for(kPause);
    }
    return true;
}

} // namespace harness
