// SPDX-License-Identifier: Apache-2.0
#include "octets_text.h"

#include <algorithm>
#include <stdexcept>

namespace snmp {

namespace {

constexpr const char kDigits[] = "0123456789ABCDEF";
constexpr int kBase = 16;

int digitOf(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    constexpr int kTen = 10;
    if (digit >= 'a' && digit <= 'f') {
        return digit - 'a' + kTen;
    }
    return digit >= 'A' && digit <= 'F' ? digit - 'A' + kTen : -1;
}

bool isSeparator(char character) {
    return character == ' ' || character == ':';
}

} // namespace

std::string hexText(const std::string &octets) {
    std::string text;
    for (const char octet : octets) {
        const auto value = static_cast<unsigned char>(octet);
        text.append(text.empty() ? "" : " ").append({kDigits[value / kBase], kDigits[value % kBase]});
    }
    return text;
}

std::string parseHex(const std::string &text) {
    std::string octets;
    std::size_t at = text.rfind("0x", 0) == 0 ? 2 : 0;
    while (at < text.size()) {
        const int high = digitOf(text[at]);
        const int low = at + 1 < text.size() ? digitOf(text[at + 1]) : -1;
        if (high < 0 || low < 0) {
            throw std::invalid_argument("'" + text + "' is not octets of two hexadecimal digits each");
        }
        octets += static_cast<char>(high * kBase + low);
        at += 2;
        if (at + 1 < text.size() && isSeparator(text[at])) {
            ++at;
        }
    }
    return octets;
}

std::string printable(const std::string &text) {
    std::string result = text;
    std::replace_if(
        result.begin(), result.end(), [](char octet) { return octet < ' ' || octet > '~'; }, '.');
    return result;
}

} // namespace snmp
