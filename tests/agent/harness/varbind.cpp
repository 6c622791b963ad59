// SPDX-License-Identifier: Apache-2.0
#include "varbind.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <stdexcept>
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

std::string typeName(Type type) {
    const auto *found =
        std::find_if(kTypeNames.begin(), kTypeNames.end(), [type](const auto &entry) { return entry.first == type; });
    return found != kTypeNames.end() ? found->second : hexadecimal(std::string(1, static_cast<char>(type)));
}

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

Varbind octets(const std::string &oid, const std::string &value) {
    return {oid, Type::Octets, 0, value};
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

std::string text(const Varbind &varbind) {
    return varbind.oid + " " + typeName(varbind.type) + " " + valueText(varbind);
}

std::ostream &operator<<(std::ostream &stream, const Varbind &varbind) {
    return stream << text(varbind);
}

std::vector<std::uint32_t> parseOid(const std::string &oid) {
    std::vector<std::uint32_t> numbers;
    const char *position = oid.data();
    const char *const end = position + oid.size();
    if (position != end && *position == '.') {
        ++position;
    }
    while (true) {
        std::uint32_t number = 0;
        const auto [next, error] = std::from_chars(position, end, number);
        if (error != std::errc()) {
            throw std::invalid_argument("not an object identifier: '" + oid + "'");
        }
        numbers.push_back(number);
        if (next == end) {
            return numbers;
        }
        if (*next != '.') {
            throw std::invalid_argument("not an object identifier: '" + oid + "'");
        }
        position = next + 1;
    }
}

std::string oidText(const std::vector<std::uint32_t> &numbers) {
    std::string result;
    for (const std::uint32_t number : numbers) {
        result += "." + std::to_string(number);
    }
    return result;
}

bool isBelow(const std::string &oid, const std::string &root) {
    const std::vector<std::uint32_t> numbers = parseOid(oid);
    const std::vector<std::uint32_t> start = parseOid(root);
    return numbers.size() >= start.size() && std::equal(start.begin(), start.end(), numbers.begin());
}

bool comesBefore(const std::string &left, const std::string &right) {
    return parseOid(left) < parseOid(right);
}

} // namespace harness
