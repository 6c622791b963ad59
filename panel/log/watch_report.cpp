// SPDX-License-Identifier: Apache-2.0
#include "watch_report.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <limits>
#include <stdexcept>
#include <vector>

#include "json_text.h"
#include "octets_text.h"
#include "oid_text.h"
#include "values.h"

namespace panel {

namespace {

using nlohmann::json;

constexpr std::size_t kLongestName = 1024;
constexpr std::size_t kLongestWord = 64;

/** Latest time of a report: the year 2262, the end of the clock's range. */
constexpr std::int64_t kLatest = std::numeric_limits<std::int64_t>::max() / 1000;

/** A malformed report. */
class Malformed : public std::exception {};

struct TypeName {
    const char *name;
    snmp::Type type;
    enum { None, Octets, Number } content;
};

// clang-format off
constexpr std::array<TypeName, 12> kTypes = {{
    {"Integer32",        snmp::Type::Integer,        TypeName::Number},
    {"OctetString",      snmp::Type::Octets,         TypeName::Octets},
    {"ObjectIdentifier", snmp::Type::Oid,            TypeName::None},
    {"Null",             snmp::Type::Null,           TypeName::None},
    {"IpAddress",        snmp::Type::IpAddress,      TypeName::Octets},
    {"Counter32",        snmp::Type::Counter32,      TypeName::Number},
    {"Gauge32",          snmp::Type::Gauge32,        TypeName::Number},
    {"TimeTicks",        snmp::Type::TimeTicks,      TypeName::Number},
    {"Opaque",           snmp::Type::Opaque,         TypeName::Octets},
    {"Counter64",        snmp::Type::Counter64,      TypeName::Number},
    {"noSuchObject",     snmp::Type::NoSuchObject,   TypeName::None},
    {"noSuchInstance",   snmp::Type::NoSuchInstance, TypeName::None},
}};
// clang-format on

const std::vector<std::string> kVersions = {"", "1", "2c", "3"};
const std::vector<std::string> kOperations = {"GET", "GETNEXT", "GETBULK", "SET"};
const std::vector<std::string> kPhases = {"get", "getnext", "reserve1", "reserve2", "action", "commit", "undo"};
const std::vector<std::string> kMembers = {"timeUs", "durationUs", "version", "as",  "sender", "operation", "phase",
                                           "oid",    "type",       "octets",  "cut", "number", "outcome",   "lost"};

bool contains(const std::vector<std::string> &words, const std::string &word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

std::int64_t integer(const json &report, const char *key, std::int64_t lowest, std::int64_t highest) {
    const auto number = camera::integerIn(report.value(key, json()), lowest, highest);
    if (!number) {
        throw Malformed();
    }
    return *number;
}

std::string text(const json &report, const char *key, std::size_t longest) {
    const auto value = camera::textIn(report.value(key, json()), longest);
    if (!value) {
        throw Malformed();
    }
    return *value;
}

std::string word(const json &report, const char *key, const std::vector<std::string> &words) {
    std::string value = text(report, key, kLongestWord);
    if (!contains(words, value)) {
        throw Malformed();
    }
    return value;
}

std::string outcome(const json &report) {
    std::string value = text(report, "outcome", kLongestWord);
    const bool isWord = std::all_of(value.begin(), value.end(), [](unsigned char character) {
        return std::isalnum(character) != 0 || character == ' ';
    });
    if (value.empty() || !isWord) {
        throw Malformed();
    }
    return value;
}

std::string octets(const json &report) {
    const std::string digits = text(report, "octets", 2 * kLongestName);
    // An empty value has no digits, which the parser does not take.
    return digits.empty() ? "" : snmp::parseHex(digits);
}

snmp::Varbind value(const json &report) {
    const std::string name = text(report, "type", kLongestWord);
    const auto *const type =
        std::find_if(kTypes.begin(), kTypes.end(), [&](const TypeName &known) { return name == known.name; });
    if (type == kTypes.end() || report.contains("octets") != (type->content == TypeName::Octets) ||
        report.contains("number") != (type->content == TypeName::Number)) {
        throw Malformed();
    }
    snmp::Varbind varbind;
    varbind.oid = snmp::oidText(snmp::parseOid(text(report, "oid", kLongestName)));
    varbind.type = type->type;
    if (type->content == TypeName::Octets) {
        varbind.octets = octets(report);
    } else if (type->content == TypeName::Number) {
        varbind.number = integer(report, "number", std::numeric_limits<std::int64_t>::min(),
                                 std::numeric_limits<std::int64_t>::max());
    }
    return varbind;
}

WatchReport parsed(const json &report) {
    for (const auto &item : report.items()) {
        if (!contains(kMembers, item.key())) {
            throw Malformed();
        }
    }
    WatchReport result;
    result.time = std::chrono::system_clock::time_point(std::chrono::duration_cast<std::chrono::system_clock::duration>(
        std::chrono::microseconds(integer(report, "timeUs", 0, kLatest))));
    result.duration = std::chrono::microseconds(integer(report, "durationUs", 0, kLatest));
    result.version = word(report, "version", kVersions);
    result.principal = text(report, "as", kLongestName);
    result.sender = text(report, "sender", kLongestWord);
    result.operation = word(report, "operation", kOperations);
    result.phase = word(report, "phase", kPhases);
    result.value = value(report);
    result.isCut = report.contains("cut");
    if (result.isCut && report.at("cut") != true) {
        throw Malformed();
    }
    result.outcome = outcome(report);
    if (report.contains("lost")) {
        result.lost = static_cast<std::uint64_t>(integer(report, "lost", 1, kLatest));
    }
    return result;
}

} // namespace

std::optional<WatchReport> parseWatchReport(std::string_view datagram) {
    if (datagram.size() > kLongestReport) {
        return std::nullopt;
    }
    const json report = camera::parseLine(datagram);
    if (!report.is_object()) {
        return std::nullopt;
    }
    try {
        return parsed(report);
    } catch (const Malformed &) {
        return std::nullopt;
    } catch (const std::invalid_argument &) {
        return std::nullopt; // malformed text of an OID or of octets
    }
}

} // namespace panel
