// SPDX-License-Identifier: Apache-2.0
#include "format_value.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "axes.h"
#include "octets_text.h"

namespace ptz {

namespace {

using snmp::Varbind;

constexpr int kUnknown = 65535;

std::string onOff(bool on) {
    return on ? "on" : "off";
}

unsigned int octetAt(const Varbind &value, std::size_t index) {
    return index < value.octets.size() ? static_cast<unsigned char>(value.octets[index]) : 0;
}

std::string bits(const Varbind &value, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += fmt::format("{}{} {}", text.empty() ? "" : ", ", i + 1, onOff((firstOctet(value) >> i & 1U) != 0));
    }
    return text;
}

std::string features(unsigned int octet) {
    const bool iris = (octet & kAutomaticIris) != 0;
    const bool focus = (octet & kAutomaticFocus) != 0;
    if (iris && focus) {
        return "focus and iris";
    }
    return iris ? "iris" : focus ? "focus" : "nothing";
}

std::string angle(const Varbind &value) {
    // An angle has 16 bits. Cameras with signed objects answer the upper half as negative numbers.
    constexpr int kWord = 65536;
    const std::int64_t position = value.number < 0 ? value.number + kWord : value.number;
    return position >= 0 && position < kWord ? positionText(axisNamed("tilt"), static_cast<std::uint16_t>(position))
                                             : std::to_string(value.number);
}

std::string panAngle(const Varbind &value) {
    if (value.number == kUnknown) {
        return "unknown";
    }
    return value.number >= 0 && value.number < kUnknown
               ? positionText(axisNamed("pan"), static_cast<std::uint16_t>(value.number))
               : std::to_string(value.number);
}

std::string homeAngle(const Varbind &value) {
    return value.number == kUnknown ? "none" : panAngle(value);
}

std::string timeout(const Varbind &value) {
    return value.number == 0 ? "none" : std::to_string(value.number) + " ms";
}

std::string featureControl(const Varbind &value) {
    const bool automatic = (octetAt(value, 1) & kOn) != 0;
    return features(firstOctet(value)) + (automatic ? " to automatic" : " to manual");
}

std::string relayCommand(const Varbind &value) {
    return firstOctet(value) == 0
               ? "none yet"
               : fmt::format("relay {} {}", firstOctet(value), onOff((octetAt(value, 1) & kOn) != 0));
}

std::string preset(const Varbind &value) {
    const std::int64_t number = value.type == snmp::Type::Integer ? value.number : firstOctet(value);
    return number == 0 ? "none" : "preset " + std::to_string(number);
}

std::string temperature(const Varbind &value) {
    return fmt::format("{} °C", degreesCelsius(value));
}

std::string moduleType(const Varbind &value) {
    constexpr std::array<const char *, 4> kTypes = {"", "other", "hardware", "software"};
    return value.number > 0 && value.number < static_cast<std::int64_t>(kTypes.size())
               ? kTypes.at(static_cast<std::size_t>(value.number))
               : std::to_string(value.number);
}

struct Format {
    const char *objects; ///< name of an object, or the start of the names of several
    std::string (*text)(const Varbind &);
};

// clang-format off
constexpr std::array<Format, 18> kFormats = {{
    {"rangePanHomePosition",      homeAngle},
    {"timeout",                   timeout},
    {"rangePan",                  panAngle},
    {"rangeTilt",                 angle},
    {"rangeTrueNorthOffset",      panAngle},
    {"rangeMinimum",              angle},
    {"presetGotoPosition",        preset},
    {"presetStorePosition",       preset},
    {"systemLensFeatureControl",  featureControl},
    {"systemLensFeatureStatus",   [](const Varbind &value) { return features(firstOctet(value)); }},
    {"systemLensEquipped",        [](const Varbind &value) { return features(firstOctet(value)); }},
    {"inputStatus",               [](const Varbind &value) { return bits(value, kInputBits); }},
    {"outputStatus",              [](const Varbind &value) { return bits(value, kOutputBits); }},
    {"outputControl",             relayCommand},
    {"temperature",               temperature},
    {"moduleType",                moduleType},
    {"alarmStatesTable.3",        [](const Varbind &value) { return onOff(value.number != 0); }},
    {"relayStatesTable.3",        [](const Varbind &value) { return onOff(value.number != 0); }},
}};
// clang-format on

std::string formatKnown(const Object &object, const Varbind &value, ByteOrder order) {
    if (const Axis *const axis = axisAt(object.oid)) {
        return describeOctets(*axis, value.octets, order);
    }
    if (object.syntax.kind == Kind::Text) {
        return snmp::printable(value.octets);
    }
    const std::string name = object.name;
    const auto *const found = std::find_if(kFormats.begin(), kFormats.end(),
                                           [&](const Format &format) { return name.rfind(format.objects, 0) == 0; });
    return found != kFormats.end() ? found->text(value) : snmp::valueText(value);
}

} // namespace

unsigned int firstOctet(const Varbind &value) {
    return octetAt(value, 0);
}

std::int32_t degreesCelsius(const Varbind &value) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value.number));
}

std::string formatValue(const Instance &instance, const Varbind &value, ByteOrder order) {
    return instance.object != nullptr ? formatKnown(*instance.object, value, order) : snmp::valueText(value);
}

nlohmann::ordered_json valueJson(const Instance &instance, const Varbind &value, ByteOrder order) {
    switch (value.type) {
    case snmp::Type::Octets:
        if (const Axis *const axis = axisAt(instance.oid)) {
            return octetsJson(*axis, value.octets, order);
        }
        if (instance.object != nullptr && instance.object->syntax.kind == Kind::Text) {
            return snmp::printable(value.octets);
        }
        return {{"octets", snmp::hexText(value.octets)}, {"meaning", formatValue(instance, value, order)}};
    case snmp::Type::Oid:
    case snmp::Type::IpAddress:
    case snmp::Type::Opaque:
        return snmp::valueText(value);
    default:
        return snmp::hasValue(value.type) && snmp::isDefined(value.type) ? nlohmann::ordered_json(value.number)
                                                                         : nlohmann::ordered_json();
    }
}

} // namespace ptz
