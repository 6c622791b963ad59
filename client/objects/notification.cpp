// SPDX-License-Identifier: Apache-2.0
#include "notification.h"

#include <algorithm>
#include <array>

#include "object_oids.h"
#include "object_values.h"
#include "oid_text.h"

namespace ptz {

namespace {

// clang-format off
constexpr std::array<KnownNotification, 8> kKnown = {{
    {oids::registered::temperature, "temperature",           "it has moved by more than 2 degrees"},
    {oids::registered::power,       "power",                 "the state of the power supply has changed"},
    {oids::registered::voltage,     "voltage",               "the state of the voltage has changed"},
    {".1.3.6.1.6.3.1.1.5.1",        "coldStart",             "the agent has started"},
    {".1.3.6.1.6.3.1.1.5.2",        "warmStart",             "the agent has restarted with the same configuration"},
    {".1.3.6.1.6.3.1.1.5.5",        "authenticationFailure", "the agent has received a request with unknown credentials"},
    {".1.3.6.1.4.1.8072.4.0.2",     "nsNotifyShutdown",      "the agent is shutting down"},
    {".1.3.6.1.4.1.8072.4.0.3",     "nsNotifyRestart",       "the agent has reloaded its configuration"},
}};
// clang-format on

/** Resolves a value. The module's traps have its object's OID, but not the object's instance. */
Instance instanceOf(const std::string &oid) {
    Instance instance = instanceAt(oid + ".0");
    return instance.object != nullptr ? instance : instanceAt(oid);
}

Reading readingOf(const snmp::Varbind &value) {
    const Instance instance = instanceOf(value.oid);
    return {instance, value, instance.object != nullptr ? validateNotified(*instance.object, value) : "", false};
}

} // namespace

std::string Notification::name() const {
    if (known != nullptr) {
        return known->name;
    }
    return oid.empty() ? "a notification without a name" : snmp::withoutDot(oid);
}

bool Notification::isOwn(const Reading &value) const {
    return known != nullptr && value.instance.name == known->name;
}

Notification notificationOf(const std::vector<snmp::Varbind> &varbinds) {
    Notification notification;
    for (const snmp::Varbind &varbind : varbinds) {
        if (varbind.oid == oids::snmpTrapOID) {
            notification.oid = varbind.type == snmp::Type::Oid ? varbind.octets : "";
        } else if (varbind.oid != oids::sysUpTime) {
            notification.values.push_back(readingOf(varbind));
        }
    }
    const auto *const found = std::find_if(
        kKnown.begin(), kKnown.end(), [&](const KnownNotification &known) { return notification.oid == known.oid; });
    notification.known = found != kKnown.end() ? &*found : nullptr;
    return notification;
}

} // namespace ptz
