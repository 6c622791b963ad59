// SPDX-License-Identifier: Apache-2.0
#include "restart.h"

namespace camera {

void Restart::order(double now, double seconds) {
    step_ = now;
    end_ = now + seconds;
}

void Restart::takeStep() {
    away_ = !away_;
    step_ = kNever;
    if (away_) {
        step_ = end_;
    }
}

} // namespace camera
