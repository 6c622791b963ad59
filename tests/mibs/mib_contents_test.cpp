// SPDX-License-Identifier: Apache-2.0
// The objects and notifications of the MIB modules, against the users' reference, which is held to the code by a test
// of its own, and against recorded walks of agents.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mib_modules.h"
#include "objects_document.h"

namespace {

using namespace mibs;
using testing::SizeIs;
using testing::UnorderedElementsAreArray;

constexpr const char *kTraps = "QUARN-CAMERA-TRAPS-MIB";
constexpr const char *kLast = "QUARN-NTCIP-1205-MIB"; // which imports all others with objects that can be read
constexpr const char *kNtcip = "1.3.6.1.4.1.1206";

/** The syntax as the reference writes it. */
std::string syntaxOf(const Object &object) {
    if (object.convention == "CameraText") {
        return "DisplayString";
    }
    if (object.type != "OCTET STRING") {
        return object.type;
    }
    std::string sizes;
    for (const auto &[low, high] : object.ranges) {
        sizes += (sizes.empty() ? "" : " | ") + std::to_string(low) + (low != high ? ".." + std::to_string(high) : "");
    }
    return "OCTET STRING (SIZE (" + sizes + "))";
}

/** An object as the reference names it: a column by its table and its number, with its first row. */
std::string rowOf(const Object &object) {
    const std::string number = object.identifier.substr(object.identifier.rfind('.'));
    const bool isColumn = !object.table.empty();
    return (isColumn ? object.table + number : object.name) + " " + object.identifier + (isColumn ? ".1 " : ".0 ") +
           object.access + " " + syntaxOf(object);
}

std::vector<std::string> rowsOf(const std::vector<Object> &objects) {
    std::vector<std::string> rows;
    std::transform(objects.begin(), objects.end(), std::back_inserter(rows), rowOf);
    return rows;
}

/** The rows of the reference, each once: two kinds of lens have objects of the same identifiers. */
std::set<std::string> documentedRows() {
    std::set<std::string> rows;
    for (const bool stepper : {false, true}) {
        for (const objects_document::ObjectRow &row : objects_document::objects("stepper", stepper)) {
            rows.insert(row.name + " " + row.identifier + " " + row.access + " " + row.syntax);
        }
    }
    return rows;
}

/** A line of a recorded walk against the object that it is an instance of. */
void expectFits(const std::map<std::string, Object> &objects, const std::string &line) {
    const std::size_t first = line.find(' ');
    const std::size_t second = line.find(' ', first + 1);
    const std::string instance = line.substr(1, first - 1);
    const std::string type = line.substr(first + 1, second - first - 1);
    const std::string value = line.substr(second + 1);
    const auto found = objects.find(instance.substr(0, instance.rfind('.')));
    ASSERT_NE(found, objects.end()) << line;
    const Object &object = found->second;
    const std::map<std::string, std::string> types{
        {"integer", "INTEGER"}, {"gauge32", "Gauge32"}, {"octets", "OCTET STRING"}};
    EXPECT_EQ(types.at(type), object.type) << line;
    if (value == "*") {
        return; // any value
    }
    // Texts stand in quotes, other octets as two digits each after 0x.
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

TEST(MibContents, HaveEachObjectOfTheReferenceAndNoOther) {
    const LoadedModules modules({kLast});
    EXPECT_THAT(rowsOf(modules.objects()), UnorderedElementsAreArray(documentedRows()));
}

TEST(MibContents, HaveTheNotificationsOfTheReference) {
    const LoadedModules modules({kTraps});
    std::vector<std::string> found;
    for (const Notification &notification : modules.notifications()) {
        found.push_back(notification.name + " " + notification.identifier);
    }
    std::vector<std::string> documented;
    for (const objects_document::TrapRow &trap : objects_document::traps()) {
        documented.push_back(trap.name + "Changed " + trap.identifier);
    }
    ASSERT_THAT(documented, SizeIs(3));
    EXPECT_THAT(found, UnorderedElementsAreArray(documented));
}

TEST(MibContents, ANotificationCarriesAValueUnderItsOwnIdentifier) {
    const LoadedModules modules({kTraps});
    EXPECT_THAT(modules.notifications(), SizeIs(3));
    for (const Notification &notification : modules.notifications()) {
        ASSERT_THAT(notification.objects, SizeIs(1)) << notification.name;
        const Object &object = notification.objects.front();
        EXPECT_EQ(object.identifier + ".0", notification.identifier) << object;
        EXPECT_EQ(object.access, "accessible-for-notify") << object;
        EXPECT_EQ(object.type, "Gauge32") << object;
    }
    EXPECT_THAT(modules.objects(), SizeIs(3)) << "and there is nothing to read";
}

TEST(MibContents, AdmitEveryValueOfTheRecordedWalks) {
    const LoadedModules modules({kLast});
    std::map<std::string, Object> objects;
    for (const Object &object : modules.objects()) {
        objects.emplace(object.identifier, object);
    }
    const std::vector<std::string> lines = recordedLines();
    EXPECT_GT(lines.size(), objects.size());
    for (const std::string &line : lines) {
        expectFits(objects, line);
    }
}

// What an object can answer, whatever the recorded cameras do.
TEST(MibContents, AdmitTheEndsOfWhatAnObjectCanAnswer) {
    struct Ends {
        const char *object;
        std::int64_t lowest;
        std::int64_t highest;
    };
    const LoadedModules modules({kLast});
    std::map<std::string, Object> objects;
    for (const Object &object : modules.objects()) {
        objects.emplace(object.name, object);
    }
    for (const Ends &ends : {Ends{"rangeTiltUpLimit", -32768, 32767}, Ends{"rangeTiltDownLimit", -32768, 32767},
                             Ends{"rangePanLeftLimit", 0, 65535}, Ends{"rangePanRightLimit", 0, 65535},
                             Ends{"rangeTrueNorthOffset", 0, 65535}, Ends{"rangeMaximumPreset", 0, 255},
                             Ends{"timeoutPan", -2147483648, 2147483647}, Ends{"rebootDevice", -2147483648, 2147483647},
                             Ends{"temperature", 0, 4294967295}, Ends{"power", 0, 255}, Ends{"voltage", 0, 255},
                             Ends{"alarmStatesState", 0, 255}, Ends{"relayStatesState", 0, 255}}) {
        const Object &object = objects.at(ends.object);
        EXPECT_TRUE(object.admits(ends.lowest)) << object;
        EXPECT_TRUE(object.admits(ends.highest)) << object;
    }
    EXPECT_FALSE(objects.at("rangeTrueNorthOffset").admits(1));
    EXPECT_FALSE(objects.at("rangeTiltUpLimit").admits(32768));
}

TEST(MibContents, PutNothingUnderNtcipButItsOwnObjects) {
    const LoadedModules modules({kLast});
    std::set<std::string> served;
    for (const Object &object : modules.objects()) {
        for (std::string arc = object.identifier; arc.rfind(kNtcip, 0) == 0; arc.erase(arc.rfind('.'))) {
            served.insert(arc);
        }
    }
    for (const std::string &module : shippedModules()) {
        for (const std::string &identifier : modules.identifiersOf(module)) {
            if (identifier.rfind(kNtcip, 0) == 0) {
                EXPECT_EQ(served.count(identifier), 1U) << module << " " << identifier;
            }
        }
    }
    EXPECT_THAT(served, testing::Contains("1.3.6.1.4.1.1206.4.2.7.4.1"));
}
