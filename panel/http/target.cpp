// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cctype>

#include "http_request.h"

namespace panel {

namespace {

int hexValue(char digit) {
    constexpr int kTen = 10;
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    if (digit >= 'a' && digit <= 'f') {
        return digit - 'a' + kTen;
    }
    return digit >= 'A' && digit <= 'F' ? digit - 'A' + kTen : -1;
}

bool isControl(char character) {
    constexpr unsigned char kDelete = 0x7F;
    const auto octet = static_cast<unsigned char>(character);
    return octet < ' ' || octet == kDelete;
}

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

/** Splits "NAME=VALUE&NAME=VALUE". */
std::optional<Query> parseQuery(std::string_view text) {
    Query query;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('&'), text.size());
        const std::string_view item = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        const std::size_t equals = std::min(item.find('='), item.size());
        const auto name = percentDecoded(item.substr(0, equals));
        const auto value = percentDecoded(item.substr(std::min(equals + 1, item.size())));
        if (!name || !value) {
            return std::nullopt;
        }
        query.emplace(*name, *value);
    }
    return query;
}

} // namespace

std::optional<std::string> percentDecoded(std::string_view text) {
    constexpr int kSixteen = 16;
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded += text[i];
            continue;
        }
        if (i + 2 >= text.size()) {
            return std::nullopt;
        }
        const int high = hexValue(text[i + 1]);
        const int low = hexValue(text[i + 2]);
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        decoded += static_cast<char>(high * kSixteen + low);
        i += 2;
    }
    return decoded;
}

std::optional<Target> parseTarget(std::string_view target) {
    constexpr std::string_view kScheme = "http://";
    Target result;
    if (startsWith(target, kScheme)) {
        target.remove_prefix(kScheme.size());
        const std::size_t end = std::min(target.find_first_of("/?"), target.size());
        result.authority = target.substr(0, end);
        target.remove_prefix(end);
        if (result.authority.empty()) {
            return std::nullopt;
        }
    } else if (target.empty() || target.front() != '/') {
        return std::nullopt;
    }
    const std::size_t mark = std::min(target.find('?'), target.size());
    const auto path = percentDecoded(target.substr(0, mark));
    const auto query = parseQuery(target.substr(std::min(mark + 1, target.size())));
    if (!path || !query || std::any_of(path->begin(), path->end(), isControl)) {
        return std::nullopt;
    }
    result.path = path->empty() ? "/" : *path;
    result.query = *query;
    return result;
}

} // namespace panel
