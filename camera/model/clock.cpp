// SPDX-License-Identifier: Apache-2.0
#include "clock.h"

#include <chrono>

namespace camera {

Clock startClock() {
    using Steady = std::chrono::steady_clock;
    return [start = Steady::now()] { return std::chrono::duration<double>(Steady::now() - start).count(); };
}

} // namespace camera
