// SPDX-License-Identifier: Apache-2.0
#include "event_loop.h"

#include <chrono>

#include <sched.h>

namespace camera {

using std::chrono::steady_clock;

void runPolling(boost::asio::io_context &io) {
    // Longer than the pause of a client between two calls, and too short for a visible processor load.
    constexpr std::chrono::microseconds kAwake{50};
    steady_clock::time_point lastWork = steady_clock::now();
    while (!io.stopped()) {
        if (io.poll() > 0) {
            lastWork = steady_clock::now();
        } else if (steady_clock::now() - lastWork < kAwake) {
            sched_yield();
        } else {
            io.run_one();
            lastWork = steady_clock::now();
        }
    }
}

} // namespace camera
