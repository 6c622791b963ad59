// SPDX-License-Identifier: Apache-2.0
#include "recorded_values.h"

#include <algorithm>
#include <array>
#include <utility>

namespace harness {

namespace {

constexpr std::array<std::pair<Type, const char *>, 13> kTypeNames{{
    {Type::Integer, "integer"},
    {Type::Octets, "octets"},
    {Type::Null, "null"},
    {Type::Oid, "oid"},
    {Type::IpAddress, "ipAddress"},
    {Type::Counter32, "counter32"},
    {Type::Gauge32, "gauge32"},
    {Type::TimeTicks, "timeTicks"},
    {Type::Opaque, "opaque"},
    {Type::Counter64, "counter64"},
    {Type::NoSuchObject, "noSuchObject"},
    {Type::NoSuchInstance, "noSuchInstance"},
    {Type::EndOfMibView, "endOfMibView"},
}};

std::string hexadecimal(const std::string &octetString) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string result = "0x";
    for (const char octet : octetString) {
        const auto value = static_cast<unsigned char>(octet);
        result += kDigits[value >> 4U];
        result += kDigits[value & 0xfU];
    }
    return result;
}

bool isPlain(char octet) {
    return octet >= ' ' && octet <= '~' && octet != '"' && octet != '\\';
}

} // namespace

std::string recordedType(Type type) {
    const auto *found =
        std::find_if(kTypeNames.begin(), kTypeNames.end(), [type](const auto &entry) { return entry.first == type; });
    return found != kTypeNames.end() ? found->second : hexadecimal(std::string(1, static_cast<char>(type)));
}

std::string recordedValue(const Varbind &varbind) {
    switch (varbind.type) {
    case Type::Integer:
    case Type::Counter32:
    case Type::Gauge32:
    case Type::TimeTicks:
    case Type::Counter64:
        return std::to_string(varbind.number);
    case Type::Oid:
        return varbind.octets;
    case Type::Octets:
        return std::all_of(varbind.octets.begin(), varbind.octets.end(), isPlain) ? '"' + varbind.octets + '"'
                                                                                  : hexadecimal(varbind.octets);
    case Type::IpAddress:
    case Type::Opaque:
        return hexadecimal(varbind.octets);
    case Type::Null:
    case Type::NoSuchObject:
    case Type::NoSuchInstance:
    case Type::EndOfMibView:
        break;
    }
    return "-";
}

std::string recordedLine(const Varbind &varbind) {
    return varbind.oid + " " + recordedType(varbind.type) + " " + recordedValue(varbind);
}

} // namespace harness
