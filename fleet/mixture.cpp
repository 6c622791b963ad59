// SPDX-License-Identifier: Apache-2.0
#include "mixture.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <numeric>
#include <stdexcept>

#include "numbers.h"

namespace fleet {

Share parseShare(const std::string &text) {
    Share share{text, 1};
    const std::size_t colon = text.rfind(':');
    if (colon != std::string::npos) {
        const std::optional<unsigned> weight = numberIn(text.substr(colon + 1), 1, kHighestWeight);
        if (!weight) {
            throw std::invalid_argument("'" + text + "': a share is a number from 1 to " +
                                        std::to_string(kHighestWeight));
        }
        share = {text.substr(0, colon), *weight};
    }
    if (share.camera.empty()) {
        throw std::invalid_argument("'" + text + "' names no camera");
    }
    return share;
}

std::vector<std::size_t> mixtureOf(const std::vector<Share> &shares, std::size_t count) {
    // Each camera goes to the kind with the largest credit. A kind earns its weight each time, and pays the total.
    const auto total = std::accumulate(shares.begin(), shares.end(), std::int64_t{0},
                                       [](std::int64_t sum, const Share &share) { return sum + share.weight; });
    std::vector<std::int64_t> credits(shares.size(), 0);
    std::vector<std::size_t> kinds;
    kinds.reserve(count);
    while (kinds.size() < count) {
        for (std::size_t i = 0; i < shares.size(); ++i) {
            credits[i] += shares[i].weight;
        }
        const auto richest = std::max_element(credits.begin(), credits.end());
        *richest -= total;
        kinds.push_back(static_cast<std::size_t>(std::distance(credits.begin(), richest)));
    }
    return kinds;
}

} // namespace fleet
