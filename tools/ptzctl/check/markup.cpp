// SPDX-License-Identifier: Apache-2.0
#include "markup.h"

#include <cstdint>

#include <fmt/format.h>

namespace ptzctl::check {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

/** A character of a text in UTF-8. */
struct Character {
    std::uint32_t code = 0;
    std::size_t size = 0; ///< in octets; 0 for octets that are not UTF-8
};

/** Kinds of first octets: their fixed bits, the number of octets, and the lowest code that needs as many. */
struct Lead {
    unsigned char mask;
    unsigned char bits;
    unsigned char size;
    std::uint32_t lowest;
};

constexpr Lead kLeads[] = {{0x80, 0x00, 1, 0}, {0xE0, 0xC0, 2, 0x80}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}};

bool isCharacter(std::uint32_t code) {
    constexpr std::uint32_t kHighest = 0x10FFFF;
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    return code <= kHighest && !isSurrogate && (code & 0xFFFEU) != 0xFFFE;
}

Character firstOf(std::string_view text) {
    const auto octet = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    for (const Lead &lead : kLeads) {
        if ((octet(0) & lead.mask) != lead.bits || text.size() < lead.size) {
            continue;
        }
        std::uint32_t code = octet(0) & static_cast<unsigned char>(~lead.mask);
        for (std::size_t i = 1; i < lead.size; ++i) {
            if ((octet(i) & 0xC0U) != 0x80) {
                return {};
            }
            code = code << 6U | (octet(i) & 0x3FU);
        }
        return code >= lead.lowest && isCharacter(code) ? Character{code, lead.size} : Character{};
    }
    return {};
}

bool isControl(std::uint32_t code) {
    const bool isC0 = code < 0x20 && code != '\n';
    return isC0 || (code >= 0x7F && code < 0xA0);
}

/** Tests for characters that change the direction of the text, and could show a report in another order. */
bool isDirection(std::uint32_t code) {
    return code == 0x200E || code == 0x200F || (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

std::string entityOf(char character) {
    switch (character) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\'':
        return "&#39;";
    case '\n':
        return "&#10;"; // an attribute would lose it
    default:
        return std::string(1, character);
    }
}

} // namespace

std::string markup(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const Character character = firstOf(text);
        if (character.size == 0) {
            result += kReplacement;
            text.remove_prefix(1);
            continue;
        }
        if (isControl(character.code)) {
            result += fmt::format("\\x{:02X}", character.code);
        } else if (isDirection(character.code)) {
            result += fmt::format("\\u{:04X}", character.code);
        } else if (character.size == 1) {
            result += entityOf(text[0]);
        } else {
            result += text.substr(0, character.size);
        }
        text.remove_prefix(character.size);
    }
    return result;
}

} // namespace ptzctl::check
