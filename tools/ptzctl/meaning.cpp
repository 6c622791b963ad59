// SPDX-License-Identifier: Apache-2.0
#include "meaning.h"

#include <algorithm>
#include <array>
#include <vector>

#include <fmt/format.h>

#include "axes.h"
#include "objects.h"
#include "octets_text.h"

namespace ptzctl {

namespace {

constexpr int kUnknown = 65535;

std::string onOff(bool on) {
    return on ? "on" : "off";
}

unsigned int octetAt(const Variable &value, std::size_t index) {
    return index < value.octets.size() ? static_cast<unsigned char>(value.octets[index]) : 0;
}

std::string bits(const Variable &value, std::size_t count) {
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

std::string angle(const Variable &value) {
    // An angle has 16 bits; cameras whose objects have a sign answer the upper half as negative numbers.
    constexpr int kWord = 65536;
    const std::int64_t position = value.number < 0 ? value.number + kWord : value.number;
    return position >= 0 && position < kWord ? positionText(axisOf("tilt"), static_cast<std::uint16_t>(position))
                                             : std::to_string(value.number);
}

std::string panAngle(const Variable &value) {
    return value.number >= 0 && value.number < kUnknown
               ? positionText(axisOf("pan"), static_cast<std::uint16_t>(value.number))
               : "unknown";
}

std::string homeAngle(const Variable &value) {
    return value.number == kUnknown ? "none" : panAngle(value);
}

std::string timeout(const Variable &value) {
    return value.number > 0 ? std::to_string(value.number) + " ms" : "none";
}

std::string featureControl(const Variable &value) {
    const bool automatic = (octetAt(value, 1) & kOn) != 0;
    return features(firstOctet(value)) + (automatic ? " to automatic" : " to manual");
}

std::string relayCommand(const Variable &value) {
    return firstOctet(value) == 0
               ? "none yet"
               : fmt::format("relay {} {}", firstOctet(value), onOff((octetAt(value, 1) & kOn) != 0));
}

std::string preset(const Variable &value) {
    return presetNumber(value) == 0 ? "none" : "preset " + std::to_string(presetNumber(value));
}

std::string temperature(const Variable &value) {
    // The object has no sign of its own; the service's has.
    return fmt::format("{} °C", static_cast<std::int32_t>(static_cast<std::uint32_t>(value.number)));
}

std::string moduleType(const Variable &value) {
    constexpr std::array<const char *, 4> kTypes = {"", "other", "hardware", "software"};
    return value.number > 0 && value.number < static_cast<std::int64_t>(kTypes.size())
               ? kTypes.at(static_cast<std::size_t>(value.number))
               : std::to_string(value.number);
}

struct Meaning {
    const char *object; ///< its name, or the beginning of the names of several
    std::string (*text)(const Variable &);
};

// clang-format off
constexpr std::array<Meaning, 18> kMeanings = {{
    {"rangePanHomePosition",      homeAngle},
    {"timeout",                   timeout},
    {"rangePan",                  panAngle},
    {"rangeTilt",                 angle},
    {"rangeTrueNorthOffset",      panAngle},
    {"rangeMinimum",              angle},
    {"presetGotoPosition",        preset},
    {"presetStorePosition",       preset},
    {"systemLensFeatureControl",  featureControl},
    {"systemLensFeatureStatus",   [](const Variable &value) { return features(firstOctet(value)); }},
    {"systemLensEquipped",        [](const Variable &value) { return features(firstOctet(value)); }},
    {"inputStatus",               [](const Variable &value) { return bits(value, kInputBits); }},
    {"outputStatus",              [](const Variable &value) { return bits(value, kOutputBits); }},
    {"outputControl",             relayCommand},
    {"temperature",               temperature},
    {"moduleType",                moduleType},
    {"alarmStatesTable.3",        [](const Variable &value) { return onOff(value.number != 0); }},
    {"relayStatesTable.3",        [](const Variable &value) { return onOff(value.number != 0); }},
}};
// clang-format on

const Axis *axisOfObject(const std::string &name) {
    const auto *const found =
        std::find_if(axes().begin(), axes().end(), [&](const Axis &axis) { return name == axis.positionObject; });
    return found == axes().end() ? nullptr : &*found;
}

std::string plainMeaning(const Variable &value, ByteOrder order) {
    const Object *const object = objectAt(value.identifier);
    if (object != nullptr) {
        if (const Axis *const axis = axisOfObject(object->name)) {
            return describeOctets(*axis, value.octets, order);
        }
        if (object->syntax == Syntax::Text) {
            return printable(value.octets);
        }
        const std::string name = object->name;
        const auto *const found = std::find_if(kMeanings.begin(), kMeanings.end(), [&](const Meaning &meaning) {
            return name.rfind(meaning.object, 0) == 0;
        });
        if (found != kMeanings.end()) {
            return found->text(value);
        }
    }
    return valueText(value);
}

} // namespace

unsigned int firstOctet(const Variable &value) {
    return octetAt(value, 0);
}

std::int64_t presetNumber(const Variable &value) {
    return value.type == Type::Integer ? value.number : firstOctet(value);
}

std::string meaningOf(const Variable &value, const Settings &settings) {
    const std::string meaning = plainMeaning(value, settings.order);
    const bool isOctets = value.type == Type::Octets;
    const std::string raw = isOctets ? hexText(value.octets) : valueText(value);
    if (!settings.verbose || meaning == raw || (isOctets && meaning == value.octets)) {
        return meaning.empty() ? "-" : meaning;
    }
    return meaning + " " + settings.style.faint("[" + raw + "]");
}

std::string meaningOf(const Reading &reading, const Settings &settings) {
    return reading.ok() ? meaningOf(reading.value, settings) : settings.style.trouble(reading.problem);
}

nlohmann::ordered_json jsonOf(const Variable &value, const Settings &settings) {
    const Object *const object = objectAt(value.identifier);
    if (value.type == Type::Octets) {
        if (const Axis *const axis = object != nullptr ? axisOfObject(object->name) : nullptr) {
            return octetsJson(*axis, value.octets, settings.order);
        }
        if (object != nullptr && object->syntax == Syntax::Text) {
            return printable(value.octets);
        }
        return {{"octets", hexText(value.octets)}, {"meaning", plainMeaning(value, settings.order)}};
    }
    if (value.type == Type::ObjectIdentifier || value.type == Type::IpAddress || value.type == Type::Opaque) {
        return valueText(value);
    }
    return value.number;
}

nlohmann::ordered_json jsonOf(const Reading &reading, const Settings &settings) {
    if (!reading.ok()) {
        return {{"problem", reading.problem}};
    }
    return jsonOf(reading.value, settings);
}

} // namespace ptzctl
