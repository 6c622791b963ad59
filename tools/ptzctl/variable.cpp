// SPDX-License-Identifier: Apache-2.0
#include "variable.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

#include <fmt/format.h>

#include "octets_text.h"

namespace ptzctl {

namespace {

bool isText(const std::string &octets) {
    return !octets.empty() && printable(octets) == octets;
}

} // namespace

Variable integer(const std::string &identifier, std::int64_t value) {
    return {identifier, Type::Integer, value, ""};
}

Variable octetString(const std::string &identifier, const std::string &value) {
    return {identifier, Type::Octets, 0, value};
}

std::string typeName(Type type) {
    switch (type) {
    case Type::Integer:
        return "INTEGER";
    case Type::Octets:
        return "OCTET STRING";
    case Type::Null:
        return "NULL";
    case Type::ObjectIdentifier:
        return "OBJECT IDENTIFIER";
    case Type::IpAddress:
        return "IpAddress";
    case Type::Counter32:
        return "Counter32";
    case Type::Gauge32:
        return "Gauge32";
    case Type::TimeTicks:
        return "TimeTicks";
    case Type::Opaque:
        return "Opaque";
    case Type::Counter64:
        return "Counter64";
    case Type::NoSuchObject:
        return "noSuchObject";
    case Type::NoSuchInstance:
        return "noSuchInstance";
    case Type::EndOfMibView:
        return "endOfMibView";
    }
    return fmt::format("type {:02X}", static_cast<unsigned int>(type));
}

bool hasValue(Type type) {
    return type != Type::Null && type != Type::NoSuchObject && type != Type::NoSuchInstance &&
           type != Type::EndOfMibView;
}

std::string valueText(const Variable &variable) {
    switch (variable.type) {
    case Type::Integer:
    case Type::Counter32:
    case Type::Gauge32:
    case Type::TimeTicks:
    case Type::Counter64:
        return std::to_string(variable.number);
    case Type::ObjectIdentifier:
        return variable.octets;
    case Type::Octets:
    case Type::IpAddress:
    case Type::Opaque:
        return isText(variable.octets) ? "\"" + variable.octets + "\"" : hexText(variable.octets);
    default:
        return typeName(variable.type);
    }
}

std::vector<std::uint32_t> parseIdentifier(const std::string &text) {
    constexpr std::size_t kLongest = 128;
    std::vector<std::uint32_t> numbers;
    const char *at = text.data() + (text.rfind('.', 0) == 0 ? 1 : 0);
    const char *const end = text.data() + text.size();
    bool valid = true;
    do {
        std::uint32_t number = 0;
        const auto [next, error] = std::from_chars(at, end, number);
        numbers.push_back(number);
        valid = error == std::errc() && (next == end || *next == '.');
        at = next == end ? nullptr : next + 1;
    } while (valid && at != nullptr);
    if (!valid || numbers.size() < 2 || numbers.size() > kLongest) {
        throw std::invalid_argument("'" + text + "' is not an object identifier");
    }
    return numbers;
}

bool isBelow(const std::string &identifier, const std::string &root) {
    return identifier == root || identifier.rfind(root + ".", 0) == 0;
}

} // namespace ptzctl
