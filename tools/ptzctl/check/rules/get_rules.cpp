// SPDX-License-Identifier: Apache-2.0
// Rules about GET.
#include <algorithm>
#include <chrono>

#include <fmt/format.h>

#include "error_status.h"
#include "expected.h"
#include "families.h"
#include "object_oids.h"
#include "oid_text.h"
#include "stable.h"
#include "tables.h"

namespace ptzctl::check {

namespace {

using snmp::Varbind;
using std::chrono::microseconds;

constexpr const char *kGet = "RFC 3416, 4.2.1";

/** Returns the objects that can be read. */
std::vector<std::pair<const Expected *, Located>> readableObjects(Context &context) {
    std::vector<std::pair<const Expected *, Located>> list;
    for (const Expected &expected : expectedObjects()) {
        try {
            Located located = locate(context, expected);
            if (located.readable()) {
                list.emplace_back(&expected, std::move(located));
            }
        } catch (const Undecided &) {
            continue; // judged by the rules about this object
        }
    }
    return list;
}

/** Compares the response to a GET of many objects with single GETs. */
Detail judgeMany(Context &context, const std::vector<Varbind> &known, const std::string &title, bool mayBeTooBig) {
    std::vector<std::string> names;
    names.reserve(known.size());
    for (const Varbind &varbind : known) {
        names.push_back(varbind.oid);
    }
    const snmp::Response &response = context.read(getRequest(names));
    if (response.error == snmp::kTooBig && mayBeTooBig) {
        return {title, Result::Pass, "tooBig"};
    }
    if (response.error != 0) {
        return {title, Result::Fail,
                fmt::format("{}, error index {}", snmp::describeError(response.error).name, response.errorIndex)};
    }
    for (std::size_t i = 0; i < known.size(); ++i) {
        const Varbind &value = response.varbinds[i];
        const bool isSame = value.type == known[i].type && (!isStable(value.oid) || value == known[i]);
        if (!isSame && !changesByItself(context, value.oid)) {
            return {title, Result::Fail,
                    fmt::format("{} = {}, alone {}", ptz::instanceAt(value.oid).name, snmp::valueText(value),
                                snmp::valueText(known[i]))};
        }
    }
    return {title, Result::Pass, "same values"};
}

Finding judgeManyVarbinds(Context &context) {
    constexpr std::size_t kFew = 5;
    std::vector<Varbind> all;
    for (const auto &[expected, located] : readableObjects(context)) {
        all.push_back(located.value.varbind);
    }
    std::vector<Detail> details;
    for (std::size_t start = 0; start < all.size(); start += kFew) {
        const auto end = std::min(start + kFew, all.size());
        const std::vector<Varbind> some(all.begin() + static_cast<std::ptrdiff_t>(start),
                                        all.begin() + static_cast<std::ptrdiff_t>(end));
        details.push_back(judgeMany(context, some, fmt::format("{} to {}", start + 1, end), false));
    }
    if (!all.empty()) {
        details.push_back(judgeMany(context, all, fmt::format("all {}", all.size()), true));
        std::reverse(all.begin(), all.end());
        details.push_back(judgeMany(context, all, "all, backwards", true));
    }
    return summarize(std::move(details));
}

/** A missing object between others does not affect them. */
Finding judgeMixed(Context &context) {
    const auto objects = readableObjects(context);
    if (objects.empty()) {
        return {Result::NotEquipped, "the camera has none of the objects", {}};
    }
    const std::string missing = std::string(oids::kCctvSubtree) + ".255.255.0";
    const std::string &oid = objects.front().second.oid;
    const std::string &other = objects.back().second.oid;
    const snmp::Response &response = context.read(getRequest({oid, missing, other}));
    if (response.error != 0) {
        return {Result::Fail, snmp::describeError(response.error).name, {}};
    }
    const bool isRight = snmp::hasValue(response.varbinds[0].type) && !snmp::hasValue(response.varbinds[1].type) &&
                         snmp::hasValue(response.varbinds[2].type);
    return {isRight ? Result::Pass : Result::Fail,
            fmt::format("{}, {}, {}", snmp::typeName(response.varbinds[0].type),
                        snmp::typeName(response.varbinds[1].type), snmp::typeName(response.varbinds[2].type)),
            {}};
}

/** Judges the response to GETs of instances that do not exist. */
Detail judgeMissing(Context &context, const std::string &title, const std::vector<std::string> &names) {
    for (const std::string &name : names) {
        const snmp::Response &response = context.read(getRequest({name}));
        if (response.error != 0) {
            return {title, Result::Fail,
                    fmt::format("{} of {}", snmp::describeError(response.error).name, snmp::withoutDot(name))};
        }
        if (snmp::hasValue(response.varbinds.front().type)) {
            return {title, Result::Fail,
                    fmt::format("{} at {}", snmp::valueText(response.varbinds.front()), snmp::withoutDot(name))};
        }
    }
    return {title, Result::Pass, fmt::format("{} wrong instances", names.size())};
}

Finding judgeInstances(Context &context) {
    constexpr std::uint32_t kBeyond = 256; // more than any number of modules
    std::vector<Detail> details;
    for (const auto &[expected, located] : readableObjects(context)) {
        const std::string parent = snmp::parentOf(located.oid);
        std::vector<std::string> names = {parent, parent + "." + std::to_string(kBeyond), located.oid + ".0"};
        if (expected->group != Group::Module) {
            names.push_back(parent + ".1");
        }
        // Some agents take an instance of -1 for the last one.
        names.push_back(parent + ".4294967295");
        details.push_back(judgeMissing(context, expected->name, names));
    }
    details.push_back(judgeMissing(context, "unknown objects",
                                   {std::string(oids::kCctvSubtree) + ".255.255.0",
                                    std::string(oids::kCctvSubtree) + ".1.255.0", oids::kCctvSubtree}));
    return summarize(std::move(details));
}

/** Judges the rows around those of a table. */
Detail judgeRows(Context &context, const char *column) {
    const std::size_t count = columnOf(context, column).size();
    Detail detail = {ptz::instanceAt(std::string(column) + ".1").object->mibName, Result::NotEquipped, "absent"};
    if (count == 0) {
        return detail;
    }
    detail.result = Result::Pass;
    detail.observation = fmt::format("nothing beyond {} {}", count, count == 1 ? "row" : "rows");
    for (const std::string &row : {std::string("0"), std::to_string(count + 1), std::string("4294967295")}) {
        const Value value = context.get(column + ("." + row));
        if (value.present()) {
            return {detail.object, Result::Fail, fmt::format("row {} = {}", row, snmp::valueText(value.varbind))};
        }
        constexpr long kGenErr = 5;
        if (value.error == kGenErr) {
            detail.result = Result::Differs;
            detail.observation = fmt::format("genErr instead of noSuchInstance in row {}", row);
        } else if (value.error != 0) {
            return {detail.object, Result::Fail,
                    fmt::format("{} in row {}", snmp::describeError(value.error).name, row)};
        }
    }
    return detail;
}

Finding judgeRowsOfTables(Context &context) {
    std::vector<Detail> details;
    for (const char *column : {oids::alarmStatesKind, oids::alarmStatesNumber, oids::alarmStatesState,
                               oids::relayStatesKind, oids::relayStatesNumber, oids::relayStatesState}) {
        details.push_back(judgeRows(context, column));
    }
    return summarize(std::move(details));
}

Finding judgeStability(Context &context) {
    constexpr int kReads = 4;
    std::vector<Detail> details;
    for (const auto &[expected, located] : readableObjects(context)) {
        if (!isStable(located.oid)) {
            continue;
        }
        Detail detail = {expected->name, Result::Pass, "unchanged"};
        for (int i = 0; i < kReads; ++i) {
            const Value value = context.get(located.oid);
            if (value.error != 0 || value.varbind != located.value.varbind) {
                detail.result = Result::Fail;
                detail.observation = fmt::format("{}, then {}", snmp::valueText(located.value.varbind),
                                                 value.error != 0 ? snmp::describeError(value.error).name
                                                                  : snmp::valueText(value.varbind));
            }
        }
        details.push_back(detail);
    }
    return summarize(std::move(details));
}

std::string timeText(microseconds time) {
    return fmt::format("{:.1f} ms", static_cast<double>(time.count()) / 1000);
}

Finding judgeLatency(Context &context) {
    constexpr std::size_t kRequests = 20;
    constexpr microseconds kLongest = std::chrono::seconds(1);
    const auto objects = readableObjects(context);
    const std::string oid = objects.empty() ? oids::sysUpTime : objects.front().second.oid;
    std::vector<microseconds> times;
    std::size_t repeated = 0;
    while (times.size() < kRequests) {
        const Exchange &exchange = context.send(getRequest({oid}));
        if (!exchange.response) {
            throw Undecided(fmt::format("{}: {}", describe(exchange.request), describeResponse(exchange)));
        }
        times.push_back(exchange.elapsed);
        repeated += exchange.sent.size() > 1 ? 1U : 0U;
    }
    std::sort(times.begin(), times.end());
    const microseconds median = times[kRequests / 2];
    std::string text = fmt::format("median {}, longest {}", timeText(median), timeText(times.back()));
    if (repeated > 0) {
        text += fmt::format(", {} of {} only answered when repeated", repeated, kRequests);
    }
    // One lost message may be the network's.
    return {median <= kLongest && repeated <= 1 ? Result::Pass : Result::Fail, text, {}};
}

Finding judgeUpTime(Context &context) {
    constexpr int kReads = 3;
    std::int64_t last = 0;
    for (int i = 0; i < kReads; ++i) {
        const Value value = context.get(oids::sysUpTime);
        if (value.missing()) {
            return {Result::NotEquipped, "absent, or hidden from this community or user", {}};
        }
        if (!value.present() || value.varbind.type != snmp::Type::TimeTicks) {
            return {Result::Fail,
                    value.present() ? snmp::typeName(value.varbind.type) + " instead of TimeTicks"
                                    : snmp::describeError(value.error).name,
                    {}};
        }
        if (value.varbind.number < last) {
            return {Result::Fail, fmt::format("{} after {}", value.varbind.number, last), {}};
        }
        last = value.varbind.number;
    }
    return {Result::Pass, "moves forward", {}};
}

} // namespace

bool isStable(const std::string &oid) {
    const auto &all = expectedObjects();
    const auto found = std::find_if(all.begin(), all.end(), [&](const Expected &expected) {
        return oid == expected.instance || oid == expected.dialectInstance;
    });
    return found != all.end() &&
           (found->group == Group::Module || found->group == Group::Limit || found->group == Group::Timeout ||
            found->group == Group::Identity || std::string(found->name) == "systemLensEquipped");
}

bool changesByItself(Context &context, const std::string &oid) {
    constexpr int kReads = 3;
    const Value first = context.value(oid);
    for (int i = 0; i < kReads; ++i) {
        const Value now = context.get(oid);
        if (now.error != first.error || now.varbind != first.varbind) {
            return true;
        }
    }
    return false;
}

std::vector<Rule> getRules() {
    return {
        {"get-many", Level::Reads, "all objects", "a GET of many objects answers what single ones answer", kGet,
         judgeManyVarbinds},
        {"get-missing", Level::Reads, "all objects", "a missing object does not affect others in the same GET", kGet,
         judgeMixed},
        {"wrong-instance", Level::Reads, "all objects",
         "an instance that does not exist is noSuchInstance or noSuchObject", kGet, judgeInstances},
        {"wrong-row", Level::Reads, "alarmStatesTable, relayStatesTable", "a row that does not exist is noSuchInstance",
         kGet, judgeRowsOfTables},
        {"stable-values", Level::Reads, "modules, limits, time-outs, identity",
         "a value that nobody writes stays the same", "the camera's own statements", judgeStability},
        {"latency", Level::Reads, "one object", "half of the requests are answered within a second, without repetition",
         "time-out of common managers", judgeLatency},
        {"uptime", Level::Reads, "sysUpTime", "the time since the start moves forward", "RFC 3418, 2", judgeUpTime},
    };
}

} // namespace ptzctl::check
