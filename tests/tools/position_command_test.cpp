// SPDX-License-Identifier: Apache-2.0
// Octets of commands over their whole range, in both orders, and octets as text.
#include <stdexcept>

#include <gtest/gtest.h>

#include "octets_text.h"
#include "position_command.h"

using namespace ptz;
using snmp::hexText;
using snmp::parseHex;

namespace {

constexpr int kOctetValues = 256;
constexpr int kPositions = 65536;

std::string fourOctets(int first, int second, int third, int fourth) {
    return {static_cast<char>(first), static_cast<char>(second), static_cast<char>(third), static_cast<char>(fourth)};
}

class PositionCommandTest : public testing::TestWithParam<ByteOrder> {
protected:
    /** Converts octets with the low octet first to the order of the test. */
    static std::string ordered(const std::string &octets) {
        return GetParam() == ByteOrder::LowFirst ? octets : octets.substr(0, 2) + octets[3] + octets[2];
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Orders, PositionCommandTest, testing::Values(ByteOrder::LowFirst, ByteOrder::HighFirst),
                         [](const auto &order) { return order.param == ByteOrder::LowFirst ? "Low" : "High"; });

TEST_P(PositionCommandTest, EveryPositionKeepsItsOctets) {
    for (int position = 0; position < kPositions; ++position) {
        const PositionCommand command{Mode::Absolute, 64, static_cast<std::uint16_t>(position)};
        const std::string octets = ordered(fourOctets(2, 64, position & 0xFF, position >> 8));
        ASSERT_EQ(encode(command, GetParam()), octets) << position;
        ASSERT_EQ(decode(octets, GetParam()), command) << position;
    }
}

TEST_P(PositionCommandTest, EveryModeAndSpeedIsReadOrRefused) {
    for (int mode = 0; mode < kOctetValues; ++mode) {
        for (int speed = kSlowest; speed <= kFastest; ++speed) {
            const std::string octets = ordered(fourOctets(mode, speed, 0xF4, 0x01));
            if (mode > 3 || (mode == 0 && speed != 0)) {
                ASSERT_THROW(decode(octets, GetParam()), std::invalid_argument) << hexText(octets);
                continue;
            }
            const PositionCommand command{static_cast<Mode>(mode), speed, 500};
            ASSERT_EQ(decode(octets, GetParam()), command) << hexText(octets);
            ASSERT_EQ(encode(command, GetParam()), octets);
        }
    }
}

TEST_P(PositionCommandTest, OtherLengthsAreRefused) {
    for (std::size_t length = 0; length < 10; ++length) {
        if (length != kCommandSize) {
            EXPECT_THROW(decode(std::string(length, '\x02'), GetParam()), std::invalid_argument) << length;
        }
    }
}

TEST_P(PositionCommandTest, InvalidSpeedsAreRefused) {
    EXPECT_THROW(encode({Mode::Stop, 1, 0}, GetParam()), std::invalid_argument);
    EXPECT_THROW(encode({Mode::Delta, 128, 0}, GetParam()), std::invalid_argument);
    EXPECT_THROW(encode({Mode::Delta, -129, 0}, GetParam()), std::invalid_argument);
}

TEST(PositionCommand, OnlyInvalidCommandsAreInitialPositions) {
    for (int first = 0; first < kOctetValues; ++first) {
        for (int second = 0; second < kOctetValues; ++second) {
            const std::string octets = fourOctets(first, second, 0, 0);
            const bool isCommand = first <= 3 && (first != 0 || second == 0);
            ASSERT_EQ(isInitialPosition(octets, ByteOrder::LowFirst), !isCommand) << hexText(octets);
            ASSERT_FALSE(isInitialPosition(octets, ByteOrder::HighFirst));
            ASSERT_EQ(initialPosition(octets), first + 256 * second);
        }
    }
    EXPECT_FALSE(isInitialPosition(fourOctets(0x28, 0x23, 1, 0), ByteOrder::LowFirst));
    EXPECT_FALSE(isInitialPosition(fourOctets(0x28, 0x23, 0, 1), ByteOrder::LowFirst));
    EXPECT_FALSE(isInitialPosition(std::string("\x28\x23\0", 3), ByteOrder::LowFirst));
}

TEST(PositionCommand, ADeltaHasASign) {
    EXPECT_EQ(signedOffset(0), 0);
    EXPECT_EQ(signedOffset(32767), 32767);
    EXPECT_EQ(signedOffset(32768), -32768);
    EXPECT_EQ(signedOffset(65535), -1);
}

TEST(PositionCommand, ModesHaveNames) {
    EXPECT_STREQ(modeName(Mode::Stop), "stop");
    EXPECT_STREQ(modeName(Mode::Continuous), "continuous");
}

TEST(OctetsText, EveryOctetIsWrittenAndRead) {
    for (int octet = 0; octet < kOctetValues; ++octet) {
        const std::string octets = fourOctets(octet, 255 - octet, 0, octet);
        EXPECT_EQ(parseHex(hexText(octets)), octets);
    }
    EXPECT_EQ(hexText(fourOctets(2, 0x7F, 0xE8, 0x80)), "02 7F E8 80");
    EXPECT_EQ(hexText(""), "");
}

TEST(OctetsText, ReadsTheUsualNotations) {
    const std::string octets = fourOctets(2, 0x7F, 0xE8, 0x80);
    for (const char *text : {"027FE880", "02 7f e8 80", "02:7F:E8:80", "0x027fE880"}) {
        EXPECT_EQ(parseHex(text), octets) << text;
    }
    EXPECT_EQ(parseHex(""), "");
}

TEST(OctetsText, RefusesOtherTexts) {
    for (const char *text : {"0", "02 7", "02-7F", "pan", "02  7F", " 02", "02 ", "-1", "0x0x02"}) {
        EXPECT_THROW(parseHex(text), std::invalid_argument) << text;
    }
}

TEST(OctetsText, ControlCharactersAreReplaced) {
    EXPECT_EQ(snmp::printable("QN\033[2J\n\xC3\xA4~ !"), "QN.[2J...~ !");
}
