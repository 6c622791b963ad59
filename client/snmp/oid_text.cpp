// SPDX-License-Identifier: Apache-2.0
#include "oid_text.h"

#include <charconv>
#include <stdexcept>

namespace snmp {

std::vector<std::uint32_t> parseOid(const std::string &oid) {
    constexpr std::size_t kLongest = 128;
    std::vector<std::uint32_t> numbers;
    const char *at = oid.data() + (oid.rfind('.', 0) == 0 ? 1 : 0);
    const char *const end = oid.data() + oid.size();
    bool valid = true;
    do {
        std::uint32_t number = 0;
        const auto [next, error] = std::from_chars(at, end, number);
        numbers.push_back(number);
        valid = error == std::errc() && (next == end || *next == '.');
        at = next == end ? nullptr : next + 1;
    } while (valid && at != nullptr);
    if (!valid || numbers.size() < 2 || numbers.size() > kLongest) {
        throw std::invalid_argument("'" + oid + "' is not an OID");
    }
    return numbers;
}

std::string withoutDot(const std::string &oid) {
    return oid.rfind('.', 0) == 0 ? oid.substr(1) : oid;
}

std::string parentOf(const std::string &oid) {
    return oid.substr(0, oid.rfind('.'));
}

bool isBelow(const std::string &oid, const std::string &root) {
    return oid == root || oid.rfind(root + ".", 0) == 0;
}

bool comesBefore(const std::string &left, const std::string &right) {
    return parseOid(left) < parseOid(right);
}

} // namespace snmp
