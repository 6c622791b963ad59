// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A fuzzer's input as numbers and octets, in the order of its octets: seeds can be written by hand.
 */
#ifndef QUARNSNMP_FUZZ_INPUT_H
#define QUARNSNMP_FUZZ_INPUT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace fuzz {

/** Reads from an input, which must outlive it. What lies beyond its end reads as zeros and empty texts. */
class Input {
public:
    Input(const std::uint8_t *data, std::size_t size) : rest_(reinterpret_cast<const char *>(data), size) {}

    bool isEmpty() const {
        return rest_.empty();
    }

    std::uint8_t octet() {
        const std::string_view taken = take(1);
        return taken.empty() ? std::uint8_t{0} : static_cast<std::uint8_t>(taken.front());
    }

    /** An octet as a choice among `choices`, which is not 0. */
    std::size_t choice(std::size_t choices) {
        return octet() % choices;
    }

    /** A number with a sign: an octet says how many octets follow, at most 8, the low-order one first. */
    std::int64_t integer() {
        constexpr std::size_t kLongest = 8;
        const std::string_view octets = take(choice(kLongest + 1));
        std::uint64_t number = 0;
        for (std::size_t i = 0; i < octets.size(); ++i) {
            number |= static_cast<std::uint64_t>(static_cast<std::uint8_t>(octets[i])) << 8U * i;
        }
        const bool isNegative = !octets.empty() && (static_cast<std::uint8_t>(octets.back()) & 0x80U) != 0;
        if (isNegative && octets.size() < kLongest) {
            number |= ~std::uint64_t{0} << 8U * octets.size();
        }
        return static_cast<std::int64_t>(number);
    }

    /** Octets, the number of which an octet in front of them says. */
    std::string octets() {
        return std::string(take(octet()));
    }

    /** All that is left. */
    std::string_view rest() {
        return take(rest_.size());
    }

private:
    std::string_view take(std::size_t wanted) {
        const std::string_view taken = rest_.substr(0, std::min(wanted, rest_.size()));
        rest_.remove_prefix(taken.size());
        return taken;
    }

    std::string_view rest_;
};

} // namespace fuzz

#endif
