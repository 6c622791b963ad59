// SPDX-License-Identifier: Apache-2.0
// Contents of the MIB modules: objects as in the list of objects, notifications as in the users' reference, and limits
// that admit the values of recorded walks.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <map>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mib_modules.h"
#include "object_oids.h"
#include "object_table.h"
#include "objects_document.h"
#include "oid_text.h"

namespace {

using namespace mibs;
using testing::SizeIs;
using testing::UnorderedElementsAreArray;

constexpr const char *kTraps = "QUARN-CAMERA-TRAPS-MIB";
constexpr const char *kLast = "QUARN-NTCIP-1205-MIB"; // imports all other modules with readable objects

/** An object of a module or of the list, for comparisons. */
struct Row {
    std::string name;
    std::string oid; ///< without the instance
    std::string access;
    std::string type;    ///< on the wire
    std::int64_t lowest; ///< of the value, or of the count of octets
    std::int64_t highest;
    bool isText; ///< of the convention for texts
};

bool operator==(const Row &left, const Row &right) {
    return left.name == right.name && left.oid == right.oid && left.access == right.access && left.type == right.type &&
           left.lowest == right.lowest && left.highest == right.highest && left.isText == right.isText;
}

void PrintTo(const Row &row, std::ostream *stream) {
    *stream << row.name << " " << row.oid << " " << row.access << " " << row.type << " " << row.lowest << ".."
            << row.highest << (row.isText ? " text" : "");
}

Row rowOf(const Object &object) {
    Row row{object.name, object.oid, object.access, object.type, 0, 0, object.convention == "CameraText"};
    if (!object.ranges.empty()) {
        const auto [lowest, highest] = std::minmax_element(object.ranges.begin(), object.ranges.end());
        row.lowest = lowest->first;
        row.highest = highest->second;
    } else if (object.type == "Gauge32") {
        row.highest = std::numeric_limits<std::uint32_t>::max();
    } else {
        row.lowest = std::numeric_limits<std::int32_t>::min();
        row.highest = std::numeric_limits<std::int32_t>::max();
    }
    return row;
}

Row rowOf(const ptz::Object &object) {
    // The list has the instance of a scalar, and a column without the row.
    const std::string registered = object.isColumn ? object.oid : snmp::parentOf(object.oid);
    const char *const access = object.access == ptz::Access::ReadWrite ? "read-write" : "read-only";
    const std::string type = object.syntax.kind == ptz::Kind::Integer   ? "INTEGER"
                             : object.syntax.kind == ptz::Kind::Gauge32 ? "Gauge32"
                                                                        : "OCTET STRING";
    const bool isText = object.syntax.kind == ptz::Kind::Text;
    return {object.mibName, registered, access, type, object.syntax.lowest, object.syntax.highest, isText};
}

template <typename Objects>
std::vector<Row> rowsOf(const Objects &objects) {
    std::vector<Row> rows;
    std::transform(objects.begin(), objects.end(), std::back_inserter(rows),
                   [](const auto &object) { return rowOf(object); });
    return rows;
}

/** Checks a line of a recorded walk against its object. */
void expectFits(const std::map<std::string, Object> &objects, const std::string &line) {
    const std::size_t first = line.find(' ');
    const std::size_t second = line.find(' ', first + 1);
    const std::string instance = line.substr(0, first);
    const std::string type = line.substr(first + 1, second - first - 1);
    const std::string value = line.substr(second + 1);
    const auto found = objects.find(snmp::parentOf(instance));
    ASSERT_NE(found, objects.end()) << line;
    const Object &object = found->second;
    const std::map<std::string, std::string> types{
        {"integer", "INTEGER"}, {"gauge32", "Gauge32"}, {"octets", "OCTET STRING"}};
    EXPECT_EQ(types.at(type), object.type) << line;
    if (value == "*") {
        return; // any value
    }
    // Texts are in quotes; other octets have two digits each after 0x.
    const auto digits = static_cast<std::int64_t>(value.size()) - 2;
    const std::int64_t number = type != "octets" ? std::stoll(value) : value.front() == '"' ? digits : digits / 2;
    EXPECT_TRUE(object.admits(number)) << line;
}

std::vector<std::string> recordedLines() {
    std::vector<std::string> lines;
    for (const auto &file : std::filesystem::directory_iterator(QUARNSNMP_GOLDEN_DIRECTORY)) {
        std::ifstream stream(file.path());
        for (std::string line; std::getline(stream, line);) {
            lines.push_back(line);
        }
    }
    return lines;
}

} // namespace

TEST(MibContents, HaveEachObjectOfTheListAndNoOther) {
    const LoadedModules modules({kLast});
    EXPECT_THAT(rowsOf(modules.objects()), UnorderedElementsAreArray(rowsOf(ptz::objects())));
}

TEST(MibContents, HaveTheNotificationsOfTheReference) {
    const LoadedModules modules({kTraps});
    std::vector<std::string> found;
    for (const Notification &notification : modules.notifications()) {
        found.push_back(notification.name + " " + snmp::withoutDot(notification.oid));
    }
    std::vector<std::string> documented;
    for (const objects_document::TrapRow &trap : objects_document::traps()) {
        documented.push_back(trap.name + "Changed " + trap.oid);
    }
    ASSERT_THAT(documented, testing::Not(testing::IsEmpty()));
    EXPECT_THAT(found, UnorderedElementsAreArray(documented));
}

TEST(MibContents, ANotificationCarriesAValueUnderItsOwnOid) {
    const LoadedModules modules({kTraps});
    for (const Notification &notification : modules.notifications()) {
        ASSERT_THAT(notification.objects, SizeIs(1)) << notification.name;
        const Object &object = notification.objects.front();
        EXPECT_EQ(object.oid + ".0", notification.oid) << object;
        EXPECT_EQ(object.access, "accessible-for-notify") << object;
        EXPECT_EQ(object.type, "Gauge32") << object;
    }
    EXPECT_THAT(modules.objects(), SizeIs(modules.notifications().size())) << "the module has a readable object";
}

TEST(MibContents, AdmitEveryValueOfTheRecordedWalks) {
    const LoadedModules modules({kLast});
    std::map<std::string, Object> objects;
    for (const Object &object : modules.objects()) {
        objects.emplace(object.oid, object);
    }
    const std::vector<std::string> lines = recordedLines();
    EXPECT_GT(lines.size(), objects.size());
    for (const std::string &line : lines) {
        expectFits(objects, line);
    }
}

TEST(MibContents, AdmitNothingBetweenTheTwoOffsetsOfTrueNorth) {
    const LoadedModules modules({kLast});
    const std::vector<Object> objects = modules.objects();
    const auto offset = std::find_if(objects.begin(), objects.end(),
                                     [](const Object &object) { return object.name == "rangeTrueNorthOffset"; });
    ASSERT_NE(offset, objects.end());
    EXPECT_TRUE(offset->admits(0) && offset->admits(65535)) << *offset;
    EXPECT_FALSE(offset->admits(1) || offset->admits(65534)) << *offset;
}

TEST(MibContents, PutNothingUnderNtcipButItsOwnObjects) {
    const LoadedModules modules({kLast});
    std::set<std::string> served;
    for (const Object &object : modules.objects()) {
        for (std::string arc = object.oid; snmp::isBelow(arc, oids::kNtcipSubtree); arc = snmp::parentOf(arc)) {
            served.insert(arc);
        }
    }
    for (const std::string &module : shippedModules()) {
        for (const std::string &named : modules.oidsOf(module)) {
            if (snmp::isBelow(named, oids::kNtcipSubtree)) {
                EXPECT_EQ(served.count(named), 1U) << module << " " << named;
            }
        }
    }
    EXPECT_THAT(served, testing::Contains(oids::registered::positionPan));
}
