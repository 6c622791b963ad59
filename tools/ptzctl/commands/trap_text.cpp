// SPDX-License-Identifier: Apache-2.0
#include "trap_text.h"

#include "notification.h"
#include "oid_text.h"
#include "value_text.h"

namespace ptzctl {

std::string trapText(const std::vector<snmp::Varbind> &varbinds, const Settings &settings) {
    const ptz::Notification notification = ptz::notificationOf(varbinds);
    std::string text = settings.style.active(notification.name());
    for (const ptz::Reading &value : notification.values) {
        text +=
            (notification.isOwn(value) ? " is " : ", " + value.instance.name + " is ") + readingText(value, settings);
    }
    return notification.known != nullptr ? text + ": " + notification.known->reason : text;
}

nlohmann::ordered_json trapJson(const std::vector<snmp::Varbind> &varbinds, const Settings &settings) {
    const ptz::Notification notification = ptz::notificationOf(varbinds);
    nlohmann::ordered_json result = {{"notification", snmp::withoutDot(notification.oid)},
                                     {"name", notification.name()}};
    for (const ptz::Reading &value : notification.values) {
        result["values"][value.instance.name] = readingJson(value, settings);
    }
    return result;
}

} // namespace ptzctl
