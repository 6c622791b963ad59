// SPDX-License-Identifier: Apache-2.0
// Rules about SETs. None sends a value that could move, store, switch or restart anything, even if a faulty camera
// obeys it: positions, presets, features, outputs and the restart are never written.
#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "error_status.h"
#include "expected.h"
#include "families.h"
#include "object_oids.h"
#include "octets_text.h"
#include "oid_text.h"
#include "timeout_writes.h"

namespace ptzctl::check {

namespace {

using snmp::Varbind;

constexpr const char *kSet = "RFC 3416, 4.2.5";

/** An object to write with its present value. */
struct Present {
    const Expected *expected;
    Varbind value;
};

/** Returns the writable settings that the camera has, with their present values. */
std::vector<Present> presentSettings(Context &context) {
    std::vector<Present> list;
    for (const char *name : {"rangeTrueNorthOffset", "timeoutPan", "timeoutTilt", "timeoutZoom", "timeoutFocus",
                             "timeoutIris", "systemLensEquipped"}) {
        const Expected &expected = expectedNamed(name);
        const Located located = locate(context, expected);
        if (located.readable()) {
            // Settings may have changed since the first read.
            list.push_back({&expected, context.get(located.oid).varbind});
        }
    }
    return list;
}

/** Tests for a value that no SET may have: the camera's own word for none. */
bool isNoSetting(const Present &present) {
    return present.value.type == snmp::Type::Integer && present.value.number < 0;
}

Detail judgePresent(Context &context, const Present &present) {
    Detail detail = {present.expected->name, Result::Pass, "accepted"};
    if (isNoSetting(present)) {
        return {detail.object, Result::Skipped, fmt::format("{} is no setting to write", present.value.number)};
    }
    context.restoreLater(present.value);
    const Exchange &exchange = context.set({present.value});
    if (!exchange.valid()) {
        return {detail.object, Result::Error, describeResponse(exchange)};
    }
    const bool isTimeout = present.expected->group == Group::Timeout;
    if (isTimeout && lacksSetting({detail.object, present.value}, exchange.response->error)) {
        return {detail.object, Result::Differs, kNoSetting};
    }
    if (exchange.response->error != 0) {
        return {detail.object, Result::Fail,
                fmt::format("{} for the present value {}", snmp::describeError(exchange.response->error).name,
                            snmp::valueText(present.value))};
    }
    const Value after = context.get(present.value.oid);
    if (after.error != 0 || after.varbind != present.value) {
        return {detail.object, Result::Fail,
                fmt::format("{} after a SET of {}", snmp::valueText(after.varbind), snmp::valueText(present.value))};
    }
    return detail;
}

Finding judgePresentValues(Context &context) {
    std::vector<Detail> details;
    for (const Present &present : presentSettings(context)) {
        details.push_back(judgePresent(context, present));
    }
    return summarize(std::move(details));
}

/** Judges the varbind in the response to an accepted SET. */
Detail judgeEcho(const Present &present, const Varbind &answered) {
    constexpr std::size_t kPadded = 8;
    Detail detail = {present.expected->name, Result::Pass, "the varbind of the request"};
    if (answered == present.value) {
        return detail;
    }
    const bool isPadded = answered.type == snmp::Type::Octets && present.value.type == snmp::Type::Octets &&
                          answered.octets.size() == kPadded && answered.octets.rfind(present.value.octets, 0) == 0;
    detail.result = isPadded ? Result::Differs : Result::Fail;
    detail.observation = fmt::format("{} {} instead of {}", snmp::typeName(answered.type), snmp::valueText(answered),
                                     snmp::valueText(present.value));
    if (isPadded) {
        detail.observation += ": only the first octet counts";
    }
    return detail;
}

Finding judgeResponses(Context &context) {
    std::vector<Detail> details;
    for (const Present &present : presentSettings(context)) {
        if (isNoSetting(present)) {
            continue;
        }
        context.restoreLater(present.value);
        const Exchange &exchange = context.set({present.value});
        if (exchange.valid() && exchange.response->error == 0) {
            details.push_back(judgeEcho(present, exchange.response->varbinds.front()));
        } else if (exchange.valid()) {
            const Varbind &returned =
                exchange.response->varbinds.empty() ? present.value : exchange.response->varbinds.front();
            const bool isSame = returned == present.value;
            details.push_back({present.expected->name, isSame ? Result::Pass : Result::Fail,
                               isSame ? "refused with the varbind of the request"
                                      : "refused with another varbind: " + snmp::valueText(returned)});
        } else {
            details.push_back({present.expected->name, Result::Error, describeResponse(exchange)});
        }
    }
    return summarize(std::move(details));
}

/** Judges the refusal of a SET that the camera must not carry out. @param allowed error statuses that explain it */
Detail judgeRefusal(const Exchange &exchange, const std::string &title, const std::vector<long> &allowed) {
    if (!exchange.valid()) {
        return {title, Result::Error, describeResponse(exchange)};
    }
    const long error = exchange.response->error;
    if (error == 0) {
        return {title, Result::Fail, "accepted"};
    }
    const std::string name = snmp::describeError(error).name;
    if (std::find(allowed.begin(), allowed.end(), error) == allowed.end()) {
        return {title, Result::Fail,
                fmt::format("refused with {} instead of {}", name, snmp::describeError(allowed.front()).name)};
    }
    if (exchange.response->errorIndex != 1) {
        return {title, Result::Fail,
                fmt::format("{}, but error index {} instead of 1", name, exchange.response->errorIndex)};
    }
    return {title, Result::Pass, name};
}

/**
 * Tests whether a rule may write a read-only object with its present value. A faulty camera could take that of an
 * output or of a lens feature for a command. The public definition has the latter as writable.
 */
bool maySet(const Expected &expected) {
    const std::string name = expected.name;
    return !expected.writable && name != "outputStatus" && name != "systemLensFeatureStatus";
}

Finding judgeReadOnly(Context &context) {
    std::vector<Detail> details;
    for (const Expected &expected : expectedObjects()) {
        const Located located = maySet(expected) ? locate(context, expected) : Located{};
        if (!located.readable()) {
            continue;
        }
        const Varbind present = context.get(located.oid).varbind;
        if (!snmp::hasValue(present.type)) {
            continue;
        }
        details.push_back(judgeRefusal(context.set({present}), expected.name,
                                       {snmp::kNotWritable, snmp::kNoAccess, snmp::kNoCreation}));
    }
    return summarize(std::move(details));
}

Finding judgeMissingObject(Context &context) {
    const std::string root = oids::kCctvSubtree;
    const std::vector<long> allowed = {snmp::kNoCreation, snmp::kNoAccess, snmp::kNotWritable, snmp::kInconsistentName};
    std::vector<Detail> details;
    for (const std::string &oid : {root + ".255.255.0", root + ".1.255.0"}) {
        details.push_back(judgeRefusal(context.set({snmp::integer(oid, 0)}), snmp::withoutDot(oid), allowed));
    }
    // Another instance of a time-out.
    const Located located = locate(context, expectedNamed("timeoutPan"));
    if (located.readable()) {
        const std::string oid = snmp::parentOf(located.oid) + ".1";
        details.push_back(judgeRefusal(context.set({snmp::integer(oid, located.value.varbind.number)}),
                                       snmp::withoutDot(oid), allowed));
    }
    return summarize(std::move(details));
}

/** Wrong types and lengths of an object, each with the statuses that refuse it. */
Finding judgeWrongValues(Context &context, const std::vector<Setting> &settings,
                         const std::vector<Varbind> &(*wrongOf)(), const std::vector<long> &allowed) {
    std::vector<Detail> details;
    for (const Setting &setting : settings) {
        Detail worst = {setting.name, Result::Pass, ""};
        for (Varbind wrong : wrongOf()) {
            wrong.oid = setting.before.oid;
            context.restoreLater(setting.before);
            const std::string title =
                fmt::format("{} {}", snmp::typeName(wrong.type),
                            wrong.octets.empty() && wrong.number == 0 ? "empty" : snmp::valueText(wrong));
            const Exchange &exchange = context.set({wrong});
            Detail detail = judgeRefusal(exchange, title, allowed);
            if (exchange.valid() && lacksSetting(setting, exchange.response->error)) {
                detail = {title, Result::Differs, kNoSetting};
            }
            if (detail.result != Result::Pass) {
                worst = {setting.name, detail.result, detail.object + ": " + detail.observation};
                if (detail.result == Result::Fail) {
                    break;
                }
            } else if (worst.result == Result::Pass) {
                worst.observation = detail.observation;
            }
        }
        details.push_back(worst);
    }
    return summarize(std::move(details));
}

const std::vector<Varbind> &wrongTypes() {
    static const std::vector<Varbind> all = {
        {"", snmp::Type::Gauge32, 1000, ""},
        {"", snmp::Type::TimeTicks, 1000, ""},
        {"", snmp::Type::Oid, 0, ".1.3.6"},
        {"", snmp::Type::IpAddress, 0, std::string("\x7f\0\0\x01", 4)},
    };
    return all;
}

const std::vector<Varbind> &wrongLengths() {
    static const std::vector<Varbind> all = {
        {"", snmp::Type::Octets, 0, ""},
        {"", snmp::Type::Octets, 0, std::string(1, '\x10')},
        {"", snmp::Type::Octets, 0, std::string("\x10\x27", 2)},
        {"", snmp::Type::Octets, 0, std::string("\0\0\x27\x10", 4)},
        {"", snmp::Type::Octets, 0, std::string("\x10\x27\0\0\0\0\0\0", 8)},
        {"", snmp::Type::Octets, 0, "10000"},
    };
    return all;
}

Finding judgeTypes(Context &context) {
    return judgeWrongValues(context, timeoutSettings(context), wrongTypes, {snmp::kWrongType});
}

Finding judgeLengths(Context &context) {
    return judgeWrongValues(context, timeoutSettings(context), wrongLengths,
                            {snmp::kWrongType, snmp::kWrongLength, snmp::kWrongEncoding, snmp::kWrongValue});
}

Finding judgeAtomic(Context &context) {
    const std::vector<Setting> settings = timeoutSettings(context);
    if (settings.empty()) {
        return {Result::NotEquipped, "the camera has no time-out", {}};
    }
    std::vector<Detail> details;
    const Setting &setting = settings.front();
    const Varbind changed = snmp::integer(setting.before.oid, otherTimeout(setting.before.number));
    std::vector<std::pair<std::string, Varbind>> bad;
    const Located readOnly = locate(context, expectedNamed("rangePanRightLimit"));
    if (readOnly.readable()) {
        bad.emplace_back("a read-only object", readOnly.value.varbind);
    }
    bad.emplace_back("an unknown object", snmp::integer(std::string(oids::kCctvSubtree) + ".255.255.0", 0));
    if (settings.size() > 1) {
        bad.emplace_back("a wrong type", snmp::octetString(settings[1].before.oid, "1000"));
    }
    for (const auto &[title, second] : bad) {
        context.restoreLater(setting.before);
        const Exchange &exchange = context.set({changed, second});
        const Value after = context.get(setting.before.oid);
        if (!exchange.valid()) {
            details.push_back({title, Result::Error, describeResponse(exchange)});
        } else if (exchange.response->error == 0) {
            details.push_back({title, Result::Fail, "accepted"});
        } else if (after.varbind != setting.before) {
            details.push_back({title, Result::Fail,
                               fmt::format("refused, but {} changed from {} to {}", setting.name, setting.before.number,
                                           snmp::valueText(after.varbind))});
        } else if (exchange.response->errorIndex != 2) {
            details.push_back(
                {title, Result::Fail, fmt::format("error index {} instead of 2", exchange.response->errorIndex)});
        } else {
            details.push_back({title, Result::Pass, "nothing applied"});
        }
        context.restore();
    }
    return summarize(std::move(details));
}

Finding judgeManySettings(Context &context) {
    std::vector<Varbind> varbinds;
    for (const Present &present : presentSettings(context)) {
        // An object without a setting would refuse the whole request.
        const bool isTimeout = present.expected->group == Group::Timeout;
        if (!isNoSetting(present) && (!isTimeout || present.value.number > 0)) {
            context.restoreLater(present.value);
            varbinds.push_back(present.value);
        }
    }
    if (varbinds.size() < 2) {
        return {Result::Skipped, "fewer than two settings that can be written", {}};
    }
    const Exchange &exchange = context.set(varbinds);
    if (!exchange.valid()) {
        throw Undecided(describeResponse(exchange));
    }
    const bool isAccepted = exchange.response->error == 0;
    return {isAccepted ? Result::Pass : Result::Fail,
            isAccepted ? fmt::format("{} objects", varbinds.size()) : describeResponse(exchange),
            {}};
}

Finding judgeReadCommunity(Context &context) {
    if (context.options().readCommunity.empty()) {
        return {Result::Skipped, "needs --read-community", {}};
    }
    const std::vector<Setting> settings = timeoutSettings(context);
    if (settings.empty()) {
        return {Result::NotEquipped, "the camera has no time-out", {}};
    }
    const Setting &setting = settings.front();
    Request reading = getRequest({setting.before.oid});
    reading.withReadCommunity = true;
    const Exchange &read = context.send(reading);
    if (!read.valid() || read.response->error != 0 || !snmp::hasValue(read.response->varbinds.front().type)) {
        return {Result::Skipped, "the community cannot read " + setting.name, {}};
    }
    context.restoreLater(setting.before);
    const Exchange &exchange =
        context.set({snmp::integer(setting.before.oid, otherTimeout(setting.before.number))}, true);
    const Value after = context.get(setting.before.oid);
    if (after.varbind != setting.before) {
        return {Result::Fail,
                fmt::format("{} changed from {} to {}", setting.name, setting.before.number,
                            snmp::valueText(after.varbind)),
                {}};
    }
    if (exchange.response && exchange.response->error == 0) {
        return {Result::Fail, "accepted", {}};
    }
    return {Result::Pass, describeResponse(exchange), {}};
}

} // namespace

std::vector<Rule> writeRules() {
    const char *const timeouts = "timeoutPan, timeoutTilt, timeoutZoom, timeoutFocus, timeoutIris";
    const char *const settings = "rangeTrueNorthOffset, time-outs, systemLensEquipped";
    return {
        {"set-present", Level::Writes, settings, "a SET of the present value is accepted and changes nothing", kSet,
         judgePresentValues},
        {"set-response", Level::Writes, settings, "the response to a SET has the varbinds of the request", kSet,
         judgeResponses},
        {"set-many", Level::Writes, settings, "a SET of several objects is accepted as single ones are", kSet,
         judgeManySettings},
        {"set-read-only", Level::Writes, "objects with read-only access", "a SET is refused with notWritable", kSet,
         judgeReadOnly},
        {"set-missing", Level::Writes, "objects that do not exist", "a SET is refused with noCreation", kSet,
         judgeMissingObject},
        {"timeout-set-type", Level::Writes, timeouts, "a SET of another type is refused with wrongType", kSet,
         judgeTypes},
        {"timeout-set-length", Level::Writes, timeouts, "a SET of octets of any length is refused", kSet, judgeLengths},
        {"set-atomic", Level::Writes, "timeoutPan and a second object",
         "a SET with a bad second varbind is refused with error index 2 and applies nothing", kSet, judgeAtomic},
        {"read-community", Level::Writes, "timeoutPan", "a community for reading cannot write", "RFC 3584, 5.2",
         judgeReadCommunity},
    };
}

} // namespace ptzctl::check
