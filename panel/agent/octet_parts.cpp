// SPDX-License-Identifier: Apache-2.0
#include "octet_parts.h"

#include <cstddef>
#include <string>

#include <fmt/format.h>

#include "axes.h"
#include "format_value.h"
#include "object_oids.h"
#include "octets_text.h"
#include "oid_text.h"
#include "position_command.h"

namespace panel {

namespace {

using nlohmann::ordered_json;
using snmp::Varbind;

constexpr std::size_t kOctet = 8;

ordered_json part(const std::string &octets, const char *field, const std::string &meaning) {
    return {{"octets", snmp::hexText(octets)}, {"field", field}, {"meaning", meaning}};
}

std::string speedMeaning(const ptz::Axis &axis, const ptz::PositionCommand &command) {
    if (command.mode == ptz::Mode::Stop) {
        return "0: a stop has no speed";
    }
    if (command.speed == 0) {
        return "0";
    }
    const char *const direction = command.speed > 0 ? axis.directions.forward : axis.directions.backward;
    const std::string amount = fmt::format("{} of 127", std::abs(command.speed));
    return command.mode == ptz::Mode::Absolute ? amount : amount + ", " + direction;
}

std::string positionMeaning(const ptz::Axis &axis, const ptz::PositionCommand &command) {
    const std::string number = fmt::format("0x{:04X} = ", command.position);
    switch (command.mode) {
    case ptz::Mode::Absolute:
        return fmt::format("{}{}, low octet first: {}", number, command.position,
                           ptz::positionText(axis, command.position));
    case ptz::Mode::Delta:
        return fmt::format("{}{}, low octet first: {}", number,
                           axis.steps.isSigned ? ptz::signedOffset(command.position) : command.position,
                           ptz::describe(axis, command, ptz::ByteOrder::LowFirst));
    default:
        return "not used in this mode";
    }
}

ordered_json positionParts(const ptz::Axis &axis, const std::string &octets) {
    ptz::PositionCommand command;
    try {
        command = ptz::decode(octets, ptz::ByteOrder::LowFirst);
    } catch (const std::invalid_argument &error) {
        return ordered_json::array({part(octets, "command", error.what())});
    }
    return ordered_json::array({part(octets.substr(0, 1), "mode", ptz::modeName(command.mode)),
                                part(octets.substr(1, 1), "speed", speedMeaning(axis, command)),
                                part(octets.substr(2, 2), "position", positionMeaning(axis, command))});
}

/** Parts of a value whose first octet chooses something, and whose second one switches it. */
ordered_json switchParts(const std::string &octets, const char *field, const std::string &meaning, const char *on,
                         const char *off) {
    ordered_json parts = ordered_json::array({part(octets.substr(0, 1), field, meaning)});
    if (octets.size() > 1) {
        const bool isOn = (static_cast<unsigned char>(octets[1]) & ptz::kOn) != 0;
        parts.push_back(part(octets.substr(1, 1), "switch", isOn ? on : off));
    }
    return parts;
}

std::string featureNames(unsigned char octet) {
    std::string names;
    if ((octet & ptz::kAutomaticFocus) != 0) {
        names = "bit 6: focus";
    }
    if ((octet & ptz::kAutomaticIris) != 0) {
        names += names.empty() ? "bit 7: iris" : ", bit 7: iris";
    }
    return names.empty() ? "no feature" : names;
}

std::string setBits(unsigned char octet) {
    std::string bits;
    for (std::size_t i = 0; i < kOctet; ++i) {
        if ((octet >> i & 1U) != 0) {
            bits += fmt::format("{}bit {}: number {}", bits.empty() ? "" : ", ", i, i + 1);
        }
    }
    return bits.empty() ? "no bit is set" : bits;
}

} // namespace

ordered_json partsOf(const ptz::Instance &instance, const Varbind &value) {
    if (value.type != snmp::Type::Octets || value.octets.empty() || instance.object == nullptr) {
        return ordered_json::array();
    }
    const auto first = static_cast<unsigned char>(value.octets.front());
    const std::string &oid = instance.oid;
    if (const ptz::Axis *const axis = ptz::axisAt(oid)) {
        return positionParts(*axis, value.octets);
    }
    if (oid == oids::systemLensFeatureControl) {
        return switchParts(value.octets, "features", featureNames(first), "bit 7: automatic", "manual");
    }
    if (oid == oids::outputControl) {
        return switchParts(value.octets, "relay", fmt::format("number {}", first), "bit 7: on", "off");
    }
    if (oid == oids::systemLensFeatureStatus || oid == oids::systemLensEquipped) {
        return ordered_json::array({part(value.octets, "features", featureNames(first))});
    }
    if (oid == oids::inputStatus || oid == oids::outputStatus) {
        return ordered_json::array({part(value.octets, "bits", setBits(first))});
    }
    if (oid == oids::presetGotoPosition || oid == oids::presetStorePosition) {
        return ordered_json::array({part(value.octets, "preset", std::to_string(first))});
    }
    return ordered_json::array();
}

std::string plainValue(const ptz::Instance &instance, const Varbind &value) {
    if (!snmp::hasValue(value.type)) {
        return "";
    }
    switch (value.type) {
    case snmp::Type::Octets:
        return instance.object != nullptr && instance.object->syntax.kind == ptz::Kind::Text
                   ? snmp::printable(value.octets)
                   : snmp::hexText(value.octets);
    case snmp::Type::Oid:
    case snmp::Type::IpAddress:
    case snmp::Type::Opaque:
        return snmp::valueText(value);
    default:
        return std::to_string(value.number);
    }
}

ordered_json varbindJson(const Varbind &value) {
    const ptz::Instance instance = ptz::instanceAt(value.oid);
    return {{"oid", snmp::withoutDot(value.oid)},
            {"name", instance.name},
            {"type", snmp::hasValue(value.type) ? snmp::typeName(value.type) : ""},
            {"value", plainValue(instance, value)},
            {"meaning", snmp::hasValue(value.type) ? ptz::formatValue(instance, value, ptz::ByteOrder::LowFirst) : ""}};
}

} // namespace panel
