// SPDX-License-Identifier: Apache-2.0
#include "visible_text.h"

#include <nlohmann/json.hpp>

namespace camera {

namespace {

/** Returns the JSON escape of a control character, which may be any octets. */
std::string escaped(std::string_view character) {
    const nlohmann::json text = character;
    const std::string json = text.dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
    return json.substr(1, json.size() - 2);
}

/** Returns the number of octets of the control character at the start of a text; 0 without one. */
std::size_t controlLength(std::string_view text) {
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < 0x20 || first == 0x7f) {
        return 1;
    }
    const bool isC1 = first == 0xc2 && text.size() > 1 && static_cast<unsigned char>(text[1]) >= 0x80 &&
                      static_cast<unsigned char>(text[1]) < 0xa0;
    return isC1 ? 2 : 0;
}

} // namespace

std::string visible(std::string_view text, std::string_view kept) {
    std::string result;
    while (!text.empty()) {
        const std::size_t length = controlLength(text);
        if (length == 0 || kept.find(text[0]) != std::string_view::npos) {
            result += text[0];
            text.remove_prefix(1);
        } else {
            result += escaped(text.substr(0, length));
            text.remove_prefix(length);
        }
    }
    return result;
}

} // namespace camera
