// SPDX-License-Identifier: Apache-2.0
#include "time_text.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace panel {

std::string timeText(std::chrono::system_clock::time_point time) {
    constexpr int kFirstYear = 1900;
    constexpr int kMilliseconds = 1000;
    const auto since = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
    const std::time_t seconds = static_cast<std::time_t>(since / kMilliseconds);
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", parts.tm_year + kFirstYear,
                  parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec,
                  static_cast<int>(since % kMilliseconds));
    return text.data();
}

} // namespace panel
