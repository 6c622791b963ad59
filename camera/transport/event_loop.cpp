// SPDX-License-Identifier: Apache-2.0
#include "event_loop.h"

#include <chrono>

#include <sched.h>

namespace camera {

void runPolling(boost::asio::io_context &io) {
    using Clock = std::chrono::steady_clock;
    // Longer than the pause of a client between two calls, and too short for a visible processor load.
    constexpr std::chrono::microseconds kAwake{50};
    Clock::time_point lastWork = Clock::now();
    while (!io.stopped()) {
        if (io.poll() > 0) {
            lastWork = Clock::now();
        } else if (Clock::now() - lastWork < kAwake) {
            sched_yield();
        } else {
            io.run_one();
            lastWork = Clock::now();
        }
    }
}

} // namespace camera
