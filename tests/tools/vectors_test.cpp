// SPDX-License-Identifier: Apache-2.0
// The test vectors of position commands: the file is up to date, and its octets are right.
#include <cstdlib>
#include <fstream>
#include <iterator>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "axes.h"
#include "octets_text.h"
#include "position_vectors.h"
#include "temporary_directory.h"

using nlohmann::ordered_json;

namespace {

std::string fileText() {
    std::ifstream file(POSITION_VECTORS);
    return {std::istreambuf_iterator<char>(file), {}};
}

ptz::ByteOrder orderOf(const ordered_json &row) {
    return row.at("byteOrder") == "low" ? ptz::ByteOrder::LowFirst : ptz::ByteOrder::HighFirst;
}

/** Returns the octets of the commands with a meaning, low octet first and high octet first. */
std::vector<std::string> octetsOf(const std::string &axis, const std::string &meaning) {
    std::vector<std::string> result;
    const ordered_json all = vectors::positionVectors();
    for (const ordered_json &row : all.at("commands")) {
        if (row.at("axis") == axis && row.at("meaning") == meaning) {
            result.push_back(row.at("octets"));
        }
    }
    return result;
}

} // namespace

TEST(Vectors, TheFileIsUpToDate) {
    const std::string generated = vectors::positionVectors().dump(1) + "\n";
    if (std::getenv("QUARNSNMP_UPDATE_VECTORS") != nullptr) { // NOLINT(concurrency-mt-unsafe): one thread
        support::writeFile(POSITION_VECTORS, generated);
    }
    EXPECT_EQ(fileText(), generated) << "QUARNSNMP_UPDATE_VECTORS=1 writes the file";
}

TEST(Vectors, CommandsAreEncodedAndDecoded) {
    const ordered_json commands = vectors::positionVectors().at("commands");
    EXPECT_GT(commands.size(), 100U);
    for (const ordered_json &row : commands) {
        const ptz::PositionCommand command = {static_cast<ptz::Mode>(row.at("mode").get<int>()), row.at("speed"),
                                              row.at("position")};
        const std::string octets = snmp::parseHex(row.at("octets"));
        EXPECT_EQ(ptz::encode(command, orderOf(row)), octets) << row;
        EXPECT_EQ(ptz::decode(octets, orderOf(row)), command) << row;
        EXPECT_EQ(ptz::describeOctets(ptz::axisNamed(row.at("axis")), octets, orderOf(row)), row.at("meaning")) << row;
    }
}

// Octets as the documents and public texts have them, written by hand.
TEST(Vectors, WellKnownOctetsAreAmongThem) {
    using testing::ElementsAre;
    EXPECT_THAT(octetsOf("pan", "to 180.00° at speed 64"), ElementsAre("02405046", "02404650"));
    // Once for 270 and once for -90 degrees.
    EXPECT_THAT(octetsOf("pan", "to 270.00° at speed 64"), ElementsAre("02407869", "02406978", "02407869", "02406978"));
    EXPECT_THAT(octetsOf("tilt", "to -30.00° at speed 64"), ElementsAre("0240E880", "024080E8"));
    EXPECT_THAT(octetsOf("pan", "by -5.00° at speed 64"), ElementsAre("01C0F401", "01C001F4"));
    EXPECT_THAT(octetsOf("pan", "left at speed 127"), ElementsAre("03810000", "03810000"));
    EXPECT_THAT(octetsOf("iris", "open at speed 127"), ElementsAre("037F0000", "03810000"));
    EXPECT_THAT(octetsOf("zoom", "stop"), ElementsAre("00000000", "00000000"));
}

TEST(Vectors, AResponseHasAMeaningOrAProblem) {
    const ordered_json all = vectors::positionVectors();
    EXPECT_GT(all.at("responses").size(), 20U);
    for (const ordered_json &row : all.at("responses")) {
        EXPECT_EQ(row.count("problem") + row.count("initial") + row.count("mode"), 1U) << row;
    }
}

// Refused by the camera, although the first two octets and the size may be those of a command.
TEST(Vectors, RefusedOctetsHaveAnOrderWhereItMatters) {
    const ordered_json all = vectors::positionVectors();
    EXPECT_GT(all.at("refused").size(), 20U);
    for (const ordered_json &row : all.at("refused")) {
        if (row.contains("byteOrder") && row.at("reason") == "a position of 36000 or more") {
            EXPECT_EQ(ptz::decode(snmp::parseHex(row.at("octets")), orderOf(row)).position, 36000) << row;
        }
    }
}
