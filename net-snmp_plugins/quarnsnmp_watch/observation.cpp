// SPDX-License-Identifier: Apache-2.0
#include "observation.h"

#include <nlohmann/json.hpp>

namespace watch {

namespace {

std::string hexadecimal(const std::string &octets) {
    constexpr const char *kDigits = "0123456789ABCDEF";
    std::string text;
    text.reserve(2 * octets.size());
    for (const char octet : octets) {
        const auto value = static_cast<unsigned char>(octet);
        text += kDigits[value >> 4U];
        text += kDigits[value & 15U];
    }
    return text;
}

template <typename Duration>
long long microseconds(Duration duration) {
    return std::chrono::duration_cast<std::chrono::microseconds>(duration).count();
}

} // namespace

std::string observationText(const Observation &observation, std::size_t lost) {
    nlohmann::ordered_json json = {
        {"timeUs", microseconds(observation.time.time_since_epoch())},
        {"durationUs", microseconds(observation.duration)},
        {"version", observation.version},
        {"as", observation.principal},
        {"sender", observation.sender},
        {"operation", observation.operation},
        {"phase", observation.phase},
        {"oid", observation.oid},
        {"type", observation.type},
    };
    if (observation.octets) {
        json["octets"] = hexadecimal(observation.octets->substr(0, kReportedOctets));
        if (observation.octets->size() > kReportedOctets) {
            json["cut"] = true;
        }
    }
    if (observation.number) {
        json["number"] = *observation.number;
    }
    json["outcome"] = observation.outcome;
    if (lost > 0) {
        json["lost"] = lost;
    }
    return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

} // namespace watch
