// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The object that switches relays, and the calls of their service as the scripted core library records them, and what
 * the service answers to them.
 */
#ifndef QUARNSNMP_RELAY_CALLS_H
#define QUARNSNMP_RELAY_CALLS_H

#include <cstdint>
#include <string>

#include "scripted_core.h"

namespace relays {

inline const char *const kOutputControl = oids::outputControl;

inline const char *const kGetState = "zorva_api_relay_get_state_send";
inline const char *const kGetConfiguration = "zorva_api_relay_get_configuration_send";
inline const char *const kSetConfiguration = "zorva_api_relay_set_configuration_send";
inline const char *const kSetState = "zorva_api_relay_set_state_send";

/** A call for a relay, counted from 1. */
inline std::string call(const char *function, int relay, const std::string &arguments) {
    return std::string(function) + "(relay, \"relay/" + std::to_string(relay) + "\", " + arguments + ")";
}
inline std::string readState(int relay) {
    return call(kGetState, relay, "&");
}
inline std::string readConfiguration(int relay) {
    return call(kGetConfiguration, relay, "&, &, &, &, &, &, &");
}
inline std::string configure(int relay) {
    return call(kSetConfiguration, relay, "1, 0, 1, 0, 1, 1, 1");
}
inline std::string switchTo(int relay, int state) {
    return call(kSetState, relay, std::to_string(state));
}

/** From now on all relays have a configuration with this first field, which is 0 until somebody sets the relay up. */
inline void configuration(std::int64_t first) {
    scripted::core().answer(kGetConfiguration, {first, std::int64_t{2}, std::int64_t{3}, std::int64_t{4},
                                                std::int64_t{5}, std::int64_t{6}, std::int64_t{7}});
}

} // namespace relays

#endif
