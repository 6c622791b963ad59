// SPDX-License-Identifier: Apache-2.0
// Axes: commands in degrees and percent, directions, and descriptions of octets.
#include <stdexcept>

#include <gtest/gtest.h>

#include "axes.h"
#include "octets_text.h"

using namespace ptz;

namespace {

constexpr ByteOrder kLow = ByteOrder::LowFirst;
constexpr ByteOrder kHigh = ByteOrder::HighFirst;

std::string octets(const PositionCommand &command, ByteOrder order = kLow) {
    return snmp::hexText(encode(command, order));
}

} // namespace

TEST(Axes, GoToPositions) {
    EXPECT_EQ(octets(commandTo(axisNamed("pan"), 270, 64)), "02 40 78 69");
    EXPECT_EQ(octets(commandTo(axisNamed("pan"), -90, 64)), "02 40 78 69");
    EXPECT_EQ(octets(commandTo(axisNamed("pan"), 180, 64), kHigh), "02 40 46 50");
    EXPECT_EQ(octets(commandTo(axisNamed("pan"), 360, 1)), "02 01 00 00");
    EXPECT_EQ(octets(commandTo(axisNamed("pan"), -0.004, 1)), "02 01 00 00");
    EXPECT_EQ(octets(commandTo(axisNamed("tilt"), -30, 127)), "02 7F E8 80");
    EXPECT_EQ(octets(commandTo(axisNamed("tilt"), 90, 127)), "02 7F 28 23");
    EXPECT_EQ(octets(commandTo(axisNamed("zoom"), 100, 64)), "02 40 FF FF");
    EXPECT_EQ(octets(commandTo(axisNamed("focus"), 50, 64)), "02 40 00 80");
}

TEST(Axes, MakeStepsByTheSignOfTheSpeed) {
    EXPECT_EQ(octets(commandBy(axisNamed("pan"), -5, 64)), "01 C0 F4 01");
    EXPECT_EQ(octets(commandBy(axisNamed("pan"), 327.67, 127)), "01 7F FF 7F");
    EXPECT_EQ(octets(commandBy(axisNamed("iris"), -100, 1)), "01 FF FF FF");
}

TEST(Axes, RefuseTargetsStepsAndSpeedsOutOfRange) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const auto &[name, target] : {std::pair{"pan", 360.01},
                                       {"pan", -361.0},
                                       {"tilt", 90.01},
                                       {"tilt", -91.0},
                                       {"zoom", -0.01},
                                       {"zoom", 100.1},
                                       {"focus", nan},
                                       {"iris", -1.0}}) {
        EXPECT_THROW(commandTo(axisNamed(name), target, 64), std::invalid_argument) << name << " to " << target;
    }
    for (const auto &[name, step] : {std::pair{"pan", 0.0},
                                     {"pan", 0.004},
                                     {"pan", 327.68},
                                     {"tilt", -328.0},
                                     {"zoom", 50.01},
                                     {"focus", 100.1},
                                     {"iris", nan},
                                     {"pan", 1e300}}) {
        EXPECT_THROW(commandBy(axisNamed(name), step, 64), std::invalid_argument) << name << " by " << step;
    }
    for (const int speed : {0, -1, 128}) {
        EXPECT_THROW(commandTo(axisNamed("pan"), 1, speed), std::invalid_argument);
        EXPECT_THROW(commandBy(axisNamed("pan"), 1, speed), std::invalid_argument);
        EXPECT_THROW(commandTowards(axisNamed("pan"), "left", speed, kLow), std::invalid_argument);
    }
    EXPECT_THROW(commandTowards(axisNamed("pan"), "up", 64, kLow), std::invalid_argument);
    EXPECT_THROW(axisNamed("roll"), std::invalid_argument);
}

TEST(Axes, MoveInNamedDirections) {
    for (const Axis &axis : axes()) {
        EXPECT_EQ(octets(commandTowards(axis, axis.directions.forward, 127, kLow)), "03 7F 00 00") << axis.name;
        EXPECT_EQ(octets(commandTowards(axis, axis.directions.backward, 127, kLow)), "03 81 00 00") << axis.name;
        for (const ByteOrder order : {kLow, kHigh}) {
            for (const char *word : {axis.directions.forward, axis.directions.backward}) {
                EXPECT_EQ(describe(axis, commandTowards(axis, word, 5, order), order),
                          std::string(word) + " at speed 5");
            }
        }
    }
}

TEST(Axes, APositiveSpeedClosesTheIrisInThePublicEncoding) {
    EXPECT_EQ(octets(commandTowards(axisNamed("iris"), "close", 127, kHigh)), "03 7F 00 00");
    EXPECT_EQ(octets(commandTowards(axisNamed("focus"), "far", 127, kHigh)), "03 7F 00 00");
}

TEST(Axes, EveryPositionOfACircleConvertsToAnAngleAndBack) {
    for (const char *name : {"pan", "tilt"}) {
        const Axis &axis = axisNamed(name);
        for (int position = 0; position < axis.range.circle; ++position) {
            const double angle = valueOf(axis, static_cast<std::uint16_t>(position));
            if (angle <= axis.range.highest) {
                ASSERT_EQ(commandTo(axis, angle, 1).position, position) << name;
            }
        }
    }
    for (int position = 0; position < 65536; ++position) {
        const double percent = valueOf(axisNamed("zoom"), static_cast<std::uint16_t>(position));
        ASSERT_EQ(commandTo(axisNamed("zoom"), percent, 1).position, position);
    }
}

TEST(Axes, OctetsAreDescribed) {
    const struct {
        const char *axis;
        const char *octets;
        const char *text;
    } cases[] = {
        {"pan", "02 40 78 69", "to 270.00° at speed 64"},
        {"tilt", "02 7F E8 80", "to -30.00° at speed 127"},
        {"pan", "01 C0 F4 01", "by -5.00° at speed 64"},
        {"pan", "01 40 D0 8A", "by -300.00° at speed 64"},
        {"pan", "01 C0 D0 8A", "by +300.00° at speed 64"},
        {"focus", "01 01 FF FF", "by +100.00 % at speed 1"},
        {"pan", "03 80 00 00", "left at speed 128"},
        {"zoom", "03 00 00 00", "halt"},
        {"pan", "00 00 00 00", "stop"},
        {"pan", "28 23 00 00", "no command yet; it was at 90.00°"},
        {"pan", "04 00 00 01", "04 00 00 01: there is no mode 4"},
        {"pan", "02 40", "02 40: a command has 4 octets, not 2"},
    };
    for (const auto &example : cases) {
        EXPECT_EQ(describeOctets(axisNamed(example.axis), snmp::parseHex(example.octets), kLow), example.text);
    }
}

TEST(Axes, OctetsAreDescribedInJson) {
    const auto json = [](const char *axis, const char *text) {
        return octetsJson(axisNamed(axis), snmp::parseHex(text), kLow).dump();
    };
    EXPECT_EQ(json("tilt", "027FE880"),
              R"({"octets":"02 7F E8 80","mode":"absolute","speed":127,"position":33000,"degrees":-30.0})");
    EXPECT_EQ(json("pan", "01C0F401"),
              R"({"octets":"01 C0 F4 01","mode":"delta","speed":-64,"position":500,"degrees":-5.0})");
    EXPECT_EQ(json("zoom", "03400000"), R"({"octets":"03 40 00 00","mode":"continuous","speed":64,"position":0})");
    EXPECT_EQ(json("pan", "28230000"), R"({"octets":"28 23 00 00","initial":true,"degrees":90.0})");
    EXPECT_EQ(json("pan", "09"), R"({"octets":"09","problem":"a command has 4 octets, not 1"})");
}
