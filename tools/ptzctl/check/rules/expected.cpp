// SPDX-License-Identifier: Apache-2.0
#include "expected.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <stdexcept>

#include "object_oids.h"
#include "oid_text.h"

namespace ptzctl::check {

namespace {

using snmp::Type;
using snmp::Varbind;

constexpr std::int64_t kUnsigned16 = 65535;
constexpr std::int64_t kOctet = 255;
constexpr std::int64_t kMostAngle = 35999;

const char *unknownAngle(const Varbind &value) {
    return value.number == kUnsigned16 ? "65535 for an unknown angle" : nullptr;
}

const char *signedAngle(const Varbind &value) {
    return value.number >= std::numeric_limits<std::int16_t>::min() && value.number < 0
               ? "an angle above 327.67 degrees as a negative number of 16 bits"
               : nullptr;
}

const char *noTimeout(const Varbind &value) {
    return value.number == -1 ? "-1 for no time-out" : nullptr;
}

const char *presetOctet(const Varbind &value) {
    return value.type == Type::Octets && value.octets.size() == 1 ? "the number of the preset as one octet" : nullptr;
}

const char *nodeText(const Varbind &value) {
    const bool isOid = value.type == Type::Octets && !value.octets.empty() &&
                       value.octets.find_first_not_of("0123456789.") == std::string::npos;
    return isOid ? "the OID as a text" : nullptr;
}

const char *fiveOctets(const Varbind &value) {
    constexpr std::size_t kLong = 5;
    return value.octets.size() == kLong ? "a position from 32768 up in three octets" : nullptr;
}

/** What differs between the rows of the table; the rest follows from the object's list. */
struct Row {
    const char *name;
    Group group;
    const char *set;
    Type type;
    std::int64_t lowest;
    std::int64_t highest;
    Dialect typeDialect = nullptr;
    Dialect valueDialect = nullptr;
};

const std::vector<Row> &rows() {
    constexpr Type kInteger = Type::Integer;
    constexpr Type kOctets = Type::Octets;
    static const std::vector<Row> all = {
        {"maxModules", Group::Module, "module", kInteger, 0, kOctet},
        {"moduleNumber", Group::Module, "module", kInteger, 1, kOctet},
        {"moduleDeviceNode", Group::Module, "module", Type::Oid, 0, 0, nodeText},
        {"moduleMake", Group::Module, "module", kOctets, 0, kOctet},
        {"moduleModel", Group::Module, "module", kOctets, 0, kOctet},
        {"moduleVersion", Group::Module, "module", kOctets, 0, kOctet},
        {"moduleType", Group::Module, "module", kInteger, 1, 3},
        {"rangeMaximumPreset", Group::Limit, "preset", kInteger, 0, kOctet},
        {"rangePanLeftLimit", Group::Limit, "pan", kInteger, 0, kMostAngle},
        {"rangePanRightLimit", Group::Limit, "pan", kInteger, 0, kMostAngle},
        {"rangePanHomePosition", Group::Limit, "pan", kInteger, 0, kMostAngle, nullptr, unknownAngle},
        {"rangeTrueNorthOffset", Group::Limit, "pan", kInteger, 0, kMostAngle, nullptr, unknownAngle},
        {"rangeTiltUpLimit", Group::Limit, "tilt", kInteger, 0, kMostAngle, nullptr, signedAngle},
        {"rangeTiltDownLimit", Group::Limit, "tilt", kInteger, 0, kMostAngle, nullptr, signedAngle},
        {"rangeZoomLimit", Group::Limit, "zoom", kInteger, 0, kUnsigned16},
        {"rangeFocusLimit", Group::Limit, "focus", kInteger, 0, kUnsigned16},
        {"rangeIrisLimit", Group::Limit, "iris", kInteger, 0, kUnsigned16},
        {"rangeMinimumPanStepAngle", Group::Limit, "pan", kInteger, 0, kMostAngle},
        {"rangeMinimumTiltStepAngle", Group::Limit, "tilt", kInteger, 0, kMostAngle},
        {"timeoutPan", Group::Timeout, "pan", kInteger, 0, kUnsigned16, nullptr, noTimeout},
        {"timeoutTilt", Group::Timeout, "tilt", kInteger, 0, kUnsigned16, nullptr, noTimeout},
        {"timeoutZoom", Group::Timeout, "zoom", kInteger, 0, kUnsigned16, nullptr, noTimeout},
        {"timeoutFocus", Group::Timeout, "focus", kInteger, 0, kUnsigned16, nullptr, noTimeout},
        {"timeoutIris", Group::Timeout, "iris", kInteger, 0, kUnsigned16, nullptr, noTimeout},
        {"presetGotoPosition", Group::Preset, "preset", kInteger, 0, kOctet, presetOctet},
        {"presetStorePosition", Group::Preset, "preset", kInteger, 0, kOctet, presetOctet},
        {"positionPan", Group::Position, "pan", kOctets, 0, 4, nullptr, fiveOctets},
        {"positionTilt", Group::Position, "tilt", kOctets, 0, 4, nullptr, fiveOctets},
        {"positionZoomLens", Group::Position, "zoom", kOctets, 0, 4, nullptr, fiveOctets},
        {"positionFocusLens", Group::Position, "focus", kOctets, 0, 4, nullptr, fiveOctets},
        {"positionIrisLens", Group::Position, "iris", kOctets, 0, 4, nullptr, fiveOctets},
        {"systemLensFeatureControl", Group::Lens, "lens", kOctets, 2, 2},
        {"systemLensFeatureStatus", Group::Lens, "lens", kOctets, 1, 1},
        {"systemLensEquipped", Group::Lens, "lens", kOctets, 1, 1},
        {"alarmStatus", Group::Io, "alarm", kOctets, 1, 1},
        {"inputStatus", Group::Io, "input", kOctets, 1, 1},
        {"outputStatus", Group::Io, "output", kOctets, 1, 1},
        {"outputControl", Group::Io, "output", kOctets, 2, 2},
        {"modelNumber", Group::Identity, "identity", kOctets, 0, kOctet},
        {"modelName", Group::Identity, "identity", kOctets, 0, kOctet},
        {"serialNumber", Group::Identity, "identity", kOctets, 0, kOctet},
        {"fwVersion", Group::Identity, "identity", kOctets, 0, kOctet},
        {"swVersion", Group::Identity, "identity", kOctets, 0, kOctet},
        {"hwVersion", Group::Identity, "identity", kOctets, 0, kOctet},
        {"temperature", Group::Health, "temperature", Type::Gauge32, 0, std::numeric_limits<std::uint32_t>::max()},
        {"power", Group::Health, "power", kInteger, 0, kOctet},
        {"voltage", Group::Health, "voltage", kInteger, 0, kOctet},
        {"rebootDevice", Group::Health, "restart", kInteger, std::numeric_limits<std::int32_t>::min(),
         std::numeric_limits<std::int32_t>::max()},
    };
    return all;
}

/** Tests for a column of the module table, whose only row some cameras answer as a scalar. */
bool isModuleColumn(const Row &row) {
    return row.group == Group::Module && std::string(row.name) != "maxModules";
}

Expected expectedOf(const Row &row) {
    const ptz::Instance listed = ptz::instanceNamed(row.name);
    Expected expected{};
    expected.name = row.name;
    expected.group = row.group;
    expected.set = row.set;
    expected.oid = snmp::parentOf(listed.oid);
    expected.instance = listed.oid;
    expected.type = row.type;
    expected.lowest = row.lowest;
    expected.highest = row.highest;
    expected.typeDialect = row.typeDialect;
    expected.valueDialect = row.valueDialect;
    expected.writable = listed.object->access == ptz::Access::ReadWrite;
    if (isModuleColumn(row)) {
        expected.dialectInstance = listed.oid;
        expected.instance = expected.oid + ".1";
    } else if (listed.oid == oids::alarmStatus) {
        // The public object is a scalar, and its OID here has a zero of its own.
        expected.dialectInstance = listed.oid;
        expected.instance = expected.oid;
        expected.oid = snmp::parentOf(expected.oid);
    }
    return expected;
}

} // namespace

const std::vector<Expected> &expectedObjects() {
    static const std::vector<Expected> all = [] {
        std::vector<Expected> list;
        std::transform(rows().begin(), rows().end(), std::back_inserter(list), expectedOf);
        return list;
    }();
    return all;
}

const Expected &expectedNamed(const std::string &name) {
    const auto found = std::find_if(expectedObjects().begin(), expectedObjects().end(),
                                    [&](const Expected &expected) { return name == expected.name; });
    if (found == expectedObjects().end()) {
        throw std::logic_error("no expected object " + name);
    }
    return *found;
}

Located locate(Context &context, const Expected &expected) {
    for (const bool isDialect : {false, true}) {
        const std::string &oid = isDialect ? expected.dialectInstance : expected.instance;
        if (oid.empty()) {
            continue;
        }
        const Value &value = context.value(oid);
        if (!value.missing()) {
            const auto state = isDialect ? Located::State::AtDialect : Located::State::AtInstance;
            return {value.present() ? state : Located::State::Unreadable, oid, value};
        }
    }
    const Value &next = context.successor(expected.oid);
    const bool isElsewhere = next.present() && snmp::isBelow(next.varbind.oid, expected.oid);
    return isElsewhere ? Located{Located::State::Elsewhere, next.varbind.oid, next} : Located{};
}

std::optional<std::int64_t> numberOf(Context &context, const std::string &name) {
    const Located located = locate(context, expectedNamed(name));
    const bool isNumber = located.readable() && located.value.varbind.type == Type::Integer;
    return isNumber ? std::optional(located.value.varbind.number) : std::nullopt;
}

std::optional<std::string> octetsOf(Context &context, const std::string &name) {
    const Located located = locate(context, expectedNamed(name));
    const bool isOctets = located.readable() && located.value.varbind.type == Type::Octets;
    return isOctets ? std::optional(located.value.varbind.octets) : std::nullopt;
}

} // namespace ptzctl::check
