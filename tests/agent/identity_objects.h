// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The objects that every camera answers, for tests that ask whether the module is there.
 */
#ifndef QUARNSNMP_IDENTITY_OBJECTS_H
#define QUARNSNMP_IDENTITY_OBJECTS_H

#include "agent.h"
#include "settings.h"

namespace identity {

inline constexpr const char *kVendorSubtree = ".1.3.6.1.4.1.99999";
inline constexpr const char *kNtcipSubtree = ".1.3.6.1.4.1.1206";
inline constexpr const char *kModelNumber = ".1.3.6.1.4.1.99999.1.1.1.0.0";
inline constexpr const char *kModelName = ".1.3.6.1.4.1.99999.1.1.2.0.0";
inline constexpr const char *kSerialNumber = ".1.3.6.1.4.1.99999.1.1.3.0.0";
inline constexpr const char *kFirmwareVersion = ".1.3.6.1.4.1.99999.1.1.4.0.0";
inline constexpr const char *kSoftwareVersion = ".1.3.6.1.4.1.99999.1.1.5.0.0";
inline constexpr const char *kHardwareVersion = ".1.3.6.1.4.1.99999.1.1.6.0.0";

/** The model name as the agent answers it; empty when it has no such object. */
inline std::string modelName(const harness::Agent &agent) {
    const harness::Result result = harness::Manager(agent.peer()).get(kModelName);
    return result.ok() && result.single().type == harness::Type::Octets ? result.single().octets : "";
}

/** Threads of an agent without the module: its own, and one of the emulator that it may run in. */
inline std::size_t threadsWithoutModule() {
    return harness::agentPrefix().empty() ? 1 : 2;
}

/** Threads of an agent with the module, which has the poll thread. */
inline std::size_t threadsWithModule() {
    return threadsWithoutModule() + 1;
}

} // namespace identity

#endif
