// SPDX-License-Identifier: Apache-2.0
#include "statistics.h"

#include <algorithm>
#include <cstddef>

namespace bench {

double quantile(std::vector<double> values, double share) {
    const auto rank = static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), values.begin() + rank, values.end());
    return values[static_cast<std::size_t>(rank)];
}

double median(std::vector<double> values) {
    return quantile(std::move(values), 0.5);
}

std::vector<double> ratios(const std::vector<double> &values, const std::vector<double> &references) {
    std::vector<double> result;
    std::transform(values.begin(), values.end(), references.begin(), std::back_inserter(result),
                   [](double value, double reference) { return value / reference; });
    return result;
}

} // namespace bench
