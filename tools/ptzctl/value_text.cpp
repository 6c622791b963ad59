// SPDX-License-Identifier: Apache-2.0
#include "value_text.h"

#include "format_value.h"
#include "octets_text.h"

namespace ptzctl {

std::string valueText(const ptz::Instance &instance, const snmp::Varbind &value, const Settings &settings) {
    const std::string text = ptz::formatValue(instance, value, settings.order);
    const bool isOctets = value.type == snmp::Type::Octets;
    const std::string raw = isOctets ? snmp::hexText(value.octets) : snmp::valueText(value);
    if (!settings.verbose || text == raw || (isOctets && text == value.octets)) {
        return text.empty() ? "-" : text;
    }
    return text + " " + settings.style.faint("[" + raw + "]");
}

std::string readingText(const ptz::Reading &reading, const Settings &settings) {
    return reading.ok() ? valueText(reading.instance, reading.value, settings)
                        : settings.style.trouble(reading.problem);
}

nlohmann::ordered_json readingJson(const ptz::Reading &reading, const Settings &settings) {
    if (!reading.ok()) {
        return {{"problem", reading.problem}};
    }
    return ptz::valueJson(reading.instance, reading.value, settings.order);
}

} // namespace ptzctl
