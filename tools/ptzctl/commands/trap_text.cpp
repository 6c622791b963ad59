// SPDX-License-Identifier: Apache-2.0
#include "trap_text.h"

#include <algorithm>
#include <array>

#include "format_value.h"
#include "object_oids.h"
#include "object_values.h"
#include "oid_text.h"
#include "reading.h"
#include "value_text.h"

namespace ptzctl {

namespace {

struct Explanation {
    const char *notification;
    const char *name;
    const char *reason;
};

// clang-format off
constexpr std::array<Explanation, 8> kExplanations = {{
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

/** A notification with its values resolved. */
struct Notification {
    std::string oid; ///< empty without one
    const Explanation *known = nullptr;
    std::vector<ptz::Reading> values; ///< with a problem for a value of another type than the object's

    std::string name() const {
        return known != nullptr ? known->name : oid.empty() ? "a notification without a name" : snmp::withoutDot(oid);
    }
};

/** Resolves a value. The module's traps have its object's OID, but not the object's instance. */
ptz::Instance instanceOf(const std::string &oid) {
    ptz::Instance instance = ptz::instanceAt(oid + ".0");
    return instance.object != nullptr ? instance : ptz::instanceAt(oid);
}

ptz::Reading readingOf(const snmp::Varbind &value) {
    const ptz::Instance instance = instanceOf(value.oid);
    return {instance, value, instance.object != nullptr ? ptz::validateNotified(*instance.object, value) : "", false};
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
    const auto *const found = std::find_if(kExplanations.begin(), kExplanations.end(), [&](const Explanation &known) {
        return notification.oid == known.notification;
    });
    notification.known = found != kExplanations.end() ? &*found : nullptr;
    return notification;
}

} // namespace

std::string trapText(const std::vector<snmp::Varbind> &varbinds, const Settings &settings) {
    const Notification notification = notificationOf(varbinds);
    std::string text = settings.style.active(notification.name());
    for (const ptz::Reading &value : notification.values) {
        const std::string &name = value.instance.name;
        const bool isOwn = notification.known != nullptr && name == notification.known->name;
        text += (isOwn ? " is " : ", " + name + " is ") + readingText(value, settings);
    }
    return notification.known != nullptr ? text + ": " + notification.known->reason : text;
}

nlohmann::ordered_json trapJson(const std::vector<snmp::Varbind> &varbinds, const Settings &settings) {
    const Notification notification = notificationOf(varbinds);
    nlohmann::ordered_json result = {{"notification", snmp::withoutDot(notification.oid)},
                                     {"name", notification.name()}};
    for (const ptz::Reading &value : notification.values) {
        result["values"][value.instance.name] = readingJson(value, settings);
    }
    return result;
}

} // namespace ptzctl
