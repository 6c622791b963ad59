// SPDX-License-Identifier: Apache-2.0
#include "position_command.h"

#include <array>
#include <stdexcept>

namespace ptz {

namespace {

constexpr unsigned int kOctetBits = 8;
constexpr unsigned int kOctetMask = 0xFF;
constexpr int kSignBit = 0x8000;

constexpr std::array<const char *, 4> kModeNames = {"stop", "delta", "absolute", "continuous"};

unsigned int octetAt(const std::string &octets, std::size_t index) {
    return static_cast<unsigned char>(octets.at(index));
}

std::uint16_t joined(unsigned int low, unsigned int high) {
    return static_cast<std::uint16_t>(low | high << kOctetBits);
}

} // namespace

bool operator==(const PositionCommand &left, const PositionCommand &right) {
    return left.mode == right.mode && left.speed == right.speed && left.position == right.position;
}

std::string encode(const PositionCommand &command, ByteOrder order) {
    if (command.speed < kSlowest || command.speed > kFastest) {
        throw std::invalid_argument("a speed is from -128 to 127, not " + std::to_string(command.speed));
    }
    if (command.mode == Mode::Stop && command.speed != 0) {
        throw std::invalid_argument("a stop has no speed");
    }
    const auto low = static_cast<char>(command.position & kOctetMask);
    const auto high = static_cast<char>(command.position >> kOctetBits);
    const bool lowFirst = order == ByteOrder::LowFirst;
    return {static_cast<char>(command.mode), static_cast<char>(command.speed), lowFirst ? low : high,
            lowFirst ? high : low};
}

PositionCommand decode(const std::string &octets, ByteOrder order) {
    if (octets.size() != kCommandSize) {
        throw std::invalid_argument("a command has 4 octets, not " + std::to_string(octets.size()));
    }
    const unsigned int mode = octetAt(octets, 0);
    if (mode >= kModeNames.size()) {
        throw std::invalid_argument("there is no mode " + std::to_string(mode));
    }
    PositionCommand command;
    command.mode = static_cast<Mode>(mode);
    const auto speed = static_cast<int>(octetAt(octets, 1));
    command.speed = speed <= kFastest ? speed : speed - 2 * (kFastest + 1);
    if (command.mode == Mode::Stop && command.speed != 0) {
        throw std::invalid_argument("a stop has no speed");
    }
    const bool lowFirst = order == ByteOrder::LowFirst;
    command.position = joined(octetAt(octets, lowFirst ? 2 : 3), octetAt(octets, lowFirst ? 3 : 2));
    return command;
}

bool isInitialPosition(const std::string &octets, ByteOrder order) {
    if (order != ByteOrder::LowFirst || octets.size() != kCommandSize || octets[2] != '\0' || octets[3] != '\0') {
        return false;
    }
    // A stop with a speed is invalid, so it can only be a position.
    const unsigned int mode = octetAt(octets, 0);
    return mode >= kModeNames.size() || (mode == 0 && octets[1] != '\0');
}

std::uint16_t initialPosition(const std::string &octets) {
    return joined(octetAt(octets, 0), octetAt(octets, 1));
}

int signedOffset(std::uint16_t position) {
    return position < kSignBit ? position : position - 2 * kSignBit;
}

const char *modeName(Mode mode) {
    return kModeNames.at(static_cast<std::size_t>(mode));
}

} // namespace ptz
