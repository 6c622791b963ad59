// SPDX-License-Identifier: Apache-2.0
#include "varbind.h"

#include <algorithm>
#include <array>
#include <utility>

#include "octets_text.h"
#include "oid_text.h"

namespace snmp {

namespace {

constexpr std::array<std::pair<Type, const char *>, 13> kTypeNames = {{
    {Type::Integer, "INTEGER"},
    {Type::Octets, "OCTET STRING"},
    {Type::Null, "NULL"},
    {Type::Oid, "OBJECT IDENTIFIER"},
    {Type::IpAddress, "IpAddress"},
    {Type::Counter32, "Counter32"},
    {Type::Gauge32, "Gauge32"},
    {Type::TimeTicks, "TimeTicks"},
    {Type::Opaque, "Opaque"},
    {Type::Counter64, "Counter64"},
    {Type::NoSuchObject, "noSuchObject"},
    {Type::NoSuchInstance, "noSuchInstance"},
    {Type::EndOfMibView, "endOfMibView"},
}};

bool isText(const std::string &octets) {
    return !octets.empty() && printable(octets) == octets;
}

} // namespace

bool operator==(const Varbind &left, const Varbind &right) {
    return left.oid == right.oid && left.type == right.type && left.number == right.number &&
           left.octets == right.octets;
}

bool operator!=(const Varbind &left, const Varbind &right) {
    return !(left == right);
}

Varbind integer(const std::string &oid, std::int64_t value) {
    return {oid, Type::Integer, value, ""};
}

Varbind octetString(const std::string &oid, const std::string &value) {
    return {oid, Type::Octets, 0, value};
}

Varbind nameOnly(const std::string &oid) {
    return {oid, Type::Null, 0, ""};
}

std::string typeName(Type type) {
    const auto *const found =
        std::find_if(kTypeNames.begin(), kTypeNames.end(), [type](const auto &entry) { return entry.first == type; });
    return found != kTypeNames.end() ? found->second : "type " + hexText(std::string(1, static_cast<char>(type)));
}

bool isDefined(Type type) {
    return std::any_of(kTypeNames.begin(), kTypeNames.end(), [type](const auto &entry) { return entry.first == type; });
}

bool hasValue(Type type) {
    return type != Type::Null && type != Type::NoSuchObject && type != Type::NoSuchInstance &&
           type != Type::EndOfMibView;
}

std::string valueText(const Varbind &varbind) {
    switch (varbind.type) {
    case Type::Integer:
    case Type::Counter32:
    case Type::Gauge32:
    case Type::TimeTicks:
    case Type::Counter64:
        return std::to_string(varbind.number);
    case Type::Oid:
        return withoutDot(varbind.octets);
    case Type::Octets:
    case Type::IpAddress:
    case Type::Opaque:
        return isText(varbind.octets) ? "\"" + varbind.octets + "\"" : hexText(varbind.octets);
    default:
        return typeName(varbind.type);
    }
}

std::ostream &operator<<(std::ostream &stream, const Varbind &varbind) {
    return stream << varbind.oid << ' ' << typeName(varbind.type) << ' ' << valueText(varbind);
}

} // namespace snmp
