// SPDX-License-Identifier: Apache-2.0
// Reports of the watch module, and entries of the log.
#include <gmock/gmock.h>

#include "event_log.h"
#include "log_entries.h"
#include "watch_report.h"

namespace panel {
namespace {

using nlohmann::json;

const json kSet = {{"timeUs", 1763807423123456},
                   {"durationUs", 812},
                   {"version", "2c"},
                   {"as", "private"},
                   {"sender", "127.0.0.1:40112"},
                   {"operation", "SET"},
                   {"phase", "commit"},
                   {"oid", "1.3.6.1.4.1.1206.4.2.7.4.1.0"},
                   {"type", "OctetString"},
                   {"octets", "02402823"},
                   {"outcome", "noError"}};

/** Returns the report with one member changed; null removes it. */
std::string changed(const std::string &key, const json &value) {
    json report = kSet;
    if (value.is_null()) {
        report.erase(key);
    } else {
        report[key] = value;
    }
    return report.dump();
}

TEST(WatchReportTest, HasTheRequest) {
    const auto report = parseWatchReport(kSet.dump());
    ASSERT_TRUE(report);
    EXPECT_EQ(report->value.oid, ".1.3.6.1.4.1.1206.4.2.7.4.1.0");
    EXPECT_EQ(report->value.octets, std::string("\x02\x40\x28\x23"));
    EXPECT_TRUE(report->isWrite());
    EXPECT_EQ(report->duration.count(), 812);
    EXPECT_EQ(report->lost, 0U);
}

struct MemberRow {
    const char *key;
    json value;
    bool valid;
};

TEST(WatchReportTest, IsChecked) {
    for (const MemberRow &row : {MemberRow{"octets", "", true},
                                 {"octets", std::string(2048, 'A'), true},
                                 {"octets", std::string(2050, 'A'), false},
                                 {"octets", "0", false},
                                 {"octets", "zz", false},
                                 {"octets", 1, false},
                                 {"octets", nullptr, false},
                                 {"number", 1, false},
                                 {"type", "Integer32", false},
                                 {"type", "Strange", false},
                                 {"cut", true, true},
                                 {"cut", false, false},
                                 {"lost", 3, true},
                                 {"lost", 0, false},
                                 {"timeUs", -1, false},
                                 {"timeUs", 1.5, false},
                                 {"timeUs", 9223372036854775807, false},
                                 {"timeUs", nullptr, false},
                                 {"durationUs", "1", false},
                                 {"version", "", true},
                                 {"version", "4", false},
                                 {"as", std::string(1024, 'x'), true},
                                 {"as", std::string(1025, 'x'), false},
                                 {"sender", "", true},
                                 {"operation", "INFORM", false},
                                 {"phase", "free", false},
                                 {"oid", ".1.3.6", true},
                                 {"oid", "1", false},
                                 {"oid", "1.3.x", false},
                                 {"outcome", "undone", true},
                                 {"outcome", "error status 99", true},
                                 {"outcome", "", false},
                                 {"outcome", "<b>", false},
                                 {"further", 1, false}}) {
        EXPECT_EQ(parseWatchReport(changed(row.key, row.value)).has_value(), row.valid) << row.key << " " << row.value;
    }
    for (const std::string text : {"", "[]", "1", "{", "{}", "null"}) {
        EXPECT_FALSE(parseWatchReport(text)) << text;
    }
    EXPECT_FALSE(parseWatchReport(kSet.dump() + std::string(kLongestReport, ' ')));
}

TEST(LogEntryTest, DecodesARequest) {
    const auto entry = requestEntry(*parseWatchReport(kSet.dump()));
    EXPECT_EQ(entry["time"], "2025-11-22T10:30:23.123Z");
    EXPECT_EQ(entry["name"], "positionPan");
    EXPECT_EQ(entry["value"], "02 40 28 23");
    EXPECT_EQ(entry["meaning"], "to 90.00° at speed 64");
    EXPECT_EQ(entry["parts"].size(), 3U);
    EXPECT_EQ(entry["ok"], true);
}

TEST(LogEntryTest, ExplainsATrap) {
    const auto entry = trapEntry({"127.0.0.1:9",
                                  snmp::SecurityLevel::NoAuthNoPriv,
                                  {{".1.3.6.1.6.3.1.1.4.1.0", snmp::Type::Oid, 0, ".1.3.6.1.4.1.99999.1.1.7.0"},
                                   {".1.3.6.1.4.1.99999.1.1.7.0", snmp::Type::Integer, 36, ""}}});
    EXPECT_EQ(entry["meaning"], "temperature is 36 °C: it has moved by more than 2 degrees");
    EXPECT_EQ(entry["values"][0]["value"], "36");
}

TEST(LogEntryTest, DescribesEventsOfTheCamera) {
    const auto meaning = [](const char *event) { return eventEntry(json::parse(event))["meaning"]; };
    EXPECT_EQ(meaning(R"({"event":"move_stopped","target":"positioning/1","axis":"pan","position":90000})"),
              "positioning/1 pan stops at 90000");
    EXPECT_EQ(meaning(R"({"event":"changed","target":"alarm/2","fields":{"state":1}})"), "alarm/2: state 1");
    EXPECT_EQ(meaning(R"({"event":"service_down","service":"alarm"})"), "alarm is down");
    EXPECT_EQ(meaning(R"({"event":"changed","target":7,"fields":[]})"), "7: ");
    EXPECT_EQ(meaning(R"({"event":"new"})"), R"({"event":"new"})");
}

TEST(EventLogTest, ForgetsTheOldestEntry) {
    EventLog log;
    for (std::size_t i = 0; i <= EventLog::kLimit; ++i) {
        log.add(noticeEntry("n", true));
    }
    EXPECT_EQ(log.entries().size(), EventLog::kLimit);
    EXPECT_EQ(log.entries().front().id, 2U);
    EXPECT_THAT(*log.entries().back().json, testing::StartsWith("{\"id\":2001,"));
}

} // namespace
} // namespace panel
