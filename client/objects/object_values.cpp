// SPDX-License-Identifier: Apache-2.0
#include "object_values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <stdexcept>

#include <fmt/format.h>

#include "octets_text.h"

namespace ptz {

namespace {

std::int64_t parseNumber(const std::string &text) {
    std::int32_t number = 0;
    const char *const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || last != end) {
        throw std::invalid_argument("'" + text + "' is not a number of 32 bits");
    }
    return number;
}

/**
 * Tests whether a number can be a value of some camera. The limits of the syntax are those of this product's cameras;
 * those of others have 16 bits, with or without a sign.
 */
bool isPossible(const Syntax &syntax, std::int64_t number) {
    constexpr std::int64_t kLowest = std::numeric_limits<std::int16_t>::min();
    constexpr std::int64_t kHighest = std::numeric_limits<std::uint16_t>::max();
    return number >= std::min(syntax.lowest, kLowest) && number <= std::max(syntax.highest, kHighest);
}

/** Writes the first octets in hexadecimal. */
std::string startOf(const std::string &octets) {
    constexpr std::size_t kMost = 16;
    return snmp::hexText(octets.substr(0, kMost)) + (octets.size() > kMost ? " ..." : "");
}

std::string typeDeviation(const snmp::Varbind &value, snmp::Type expected) {
    return snmp::typeName(value.type) + " instead of " + snmp::typeName(expected);
}

snmp::Type typeOf(Kind kind) {
    switch (kind) {
    case Kind::Integer:
        return snmp::Type::Integer;
    case Kind::Gauge32:
        return snmp::Type::Gauge32;
    default:
        return snmp::Type::Octets;
    }
}

} // namespace

Assignment assignNumber(const Instance &instance, std::int64_t number) {
    return {instance, snmp::integer(instance.oid, number)};
}

Assignment assignOctets(const Instance &instance, const std::string &octets) {
    return {instance, snmp::octetString(instance.oid, octets)};
}

Assignment parseAssignment(const Instance &instance, const std::string &text) {
    if (instance.object == nullptr) {
        throw std::invalid_argument("the type of " + instance.name + " is unknown");
    }
    if (instance.object->access != Access::ReadWrite) {
        throw std::invalid_argument(instance.name + " is read-only");
    }
    const Syntax &syntax = instance.object->syntax;
    return syntax.kind == Kind::Integer || syntax.setAsInteger ? assignNumber(instance, parseNumber(text))
                                                               : assignOctets(instance, snmp::parseHex(text));
}

std::string validate(const Object &object, const snmp::Varbind &value) {
    const Syntax &syntax = object.syntax;
    // The public definition has the numbers of presets as INTEGER, and this product's cameras answer them as an octet.
    if (syntax.setAsInteger && value.type == snmp::Type::Integer) {
        return "";
    }
    const snmp::Type expected = typeOf(syntax.kind);
    if (value.type != expected) {
        return typeDeviation(value, expected);
    }
    if (syntax.kind == Kind::Integer && !isPossible(syntax, value.number)) {
        return fmt::format("{}, which no camera can mean", value.number);
    }
    if (syntax.kind == Kind::Text && static_cast<std::int64_t>(value.octets.size()) > syntax.highest) {
        return fmt::format("{} octets instead of at most {}", value.octets.size(), syntax.highest);
    }
    if (syntax.kind == Kind::Octets && static_cast<std::int64_t>(value.octets.size()) != syntax.highest) {
        return fmt::format("{} octets ({}) instead of {}", value.octets.size(), startOf(value.octets), syntax.highest);
    }
    return "";
}

std::string validateNotified(const Object &object, const snmp::Varbind &value) {
    const snmp::Type expected = typeOf(object.syntax.kind);
    if (expected == snmp::Type::Octets) {
        return validate(object, value);
    }
    const bool isNumber = value.type == snmp::Type::Integer || value.type == snmp::Type::Gauge32;
    return isNumber ? "" : typeDeviation(value, expected);
}

bool holdsLastCommand(const Object &object) {
    constexpr std::array<const char *, 5> kNames = {"position", "timeout", "preset", "systemLensFeatureControl",
                                                    "outputControl"};
    const std::string name = object.name;
    return std::any_of(kNames.begin(), kNames.end(), [&](const char *start) { return name.rfind(start, 0) == 0; });
}

bool hasValueWritten(const snmp::Varbind &answered, const snmp::Varbind &written) {
    if (answered.type == snmp::Type::Integer || answered.type == snmp::Type::Gauge32) {
        return written.type == snmp::Type::Integer && answered.number == written.number;
    }
    if (answered.type != snmp::Type::Octets) {
        return false;
    }
    if (written.type != snmp::Type::Octets) {
        return answered.octets == std::string(1, static_cast<char>(written.number));
    }
    std::string expected = written.octets;
    expected.resize(answered.octets.size());
    return answered.octets == expected;
}

} // namespace ptz
