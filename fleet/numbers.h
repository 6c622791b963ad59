// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Numbers in texts.
 */
#ifndef QUARNSNMP_FLEET_NUMBERS_H
#define QUARNSNMP_FLEET_NUMBERS_H

#include <charconv>
#include <optional>
#include <string_view>

namespace fleet {

/** Returns the number that is the whole text; nothing if there is none, or none from `lowest` to `highest`. */
inline std::optional<unsigned> numberIn(std::string_view text, unsigned lowest, unsigned highest) {
    unsigned number = 0;
    const char *const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || last != end || number < lowest || number > highest) {
        return std::nullopt;
    }
    return number;
}

} // namespace fleet

#endif
