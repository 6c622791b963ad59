// SPDX-License-Identifier: Apache-2.0
#include "timeline.h"

#include <algorithm>

namespace fleet {

std::vector<Moment> timelineOf(const std::vector<double> &steps, std::size_t cameras, double stagger, double speed) {
    std::vector<Moment> moments;
    moments.reserve(steps.size() * cameras);
    for (std::size_t camera = 0; camera < cameras; ++camera) {
        for (std::size_t step = 0; step < steps.size(); ++step) {
            moments.push_back({static_cast<double>(camera) * stagger + steps[step] / speed, camera, step});
        }
    }
    std::stable_sort(moments.begin(), moments.end(),
                     [](const Moment &left, const Moment &right) { return left.seconds < right.seconds; });
    return moments;
}

} // namespace fleet
