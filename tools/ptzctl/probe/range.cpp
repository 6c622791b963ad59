// SPDX-License-Identifier: Apache-2.0
#include "probe/range.h"

#include <charconv>
#include <stdexcept>

namespace ptzctl {

namespace {

std::invalid_argument fault(const std::string &text, const std::string &reason) {
    return std::invalid_argument("'" + text + "' " + reason);
}

double parseLimit(const std::string &limit, const std::string &text) {
    double value = 0;
    const char *const end = limit.data() + limit.size();
    const auto [last, error] = std::from_chars(limit.data(), end, value, std::chars_format::fixed);
    // The function above also reads "inf" and "nan".
    if (error != std::errc() || last != end || limit.find_first_not_of("-.0123456789") != std::string::npos) {
        throw fault(text, "is not a range such as 10, 10:, ~:10, 10:20 or @10:20");
    }
    return value;
}

} // namespace

bool AlertRange::alertsFor(double value) const {
    const bool isIn = value >= lowest && value <= highest;
    return isIn == inverted;
}

std::string AlertRange::alertText() const {
    return inverted ? "inside " + text.substr(1) : "outside " + text;
}

AlertRange parseRange(const std::string &text) {
    AlertRange range;
    range.text = text;
    range.inverted = text.rfind('@', 0) == 0;
    const std::string limits = text.substr(range.inverted ? 1 : 0);
    const std::size_t colon = limits.find(':');
    const std::string start = colon == std::string::npos ? "0" : limits.substr(0, colon);
    const std::string end = colon == std::string::npos ? limits : limits.substr(colon + 1);
    if (start != "~") {
        range.lowest = parseLimit(start, text);
    }
    if (!end.empty() || colon == std::string::npos) {
        range.highest = parseLimit(end, text);
    }
    if (range.lowest > range.highest) {
        throw fault(text, "ends before it starts");
    }
    return range;
}

} // namespace ptzctl
