// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <set>

#include <fmt/format.h>

#include "definitions.h"
#include "error_status.h"
#include "expected.h"
#include "families.h"
#include "octets_text.h"
#include "oid_text.h"
#include "position_command.h"
#include "timeout_writes.h"

namespace ptzctl::check {

namespace {

using snmp::Type;
using State = Located::State;

/** Octets of the longest command, with a position of three octets. */
constexpr std::size_t kLongestCommand = 5;

/** Objects with common rules, and where their definitions come from. */
struct GroupRecord {
    Group group;
    const char *name;
    const char *source;
};

const std::vector<GroupRecord> &groups() {
    static const std::vector<GroupRecord> all = {
        {Group::Module, "module", kModuleSource},
        {Group::Limit, "limit", kLimitSource},
        {Group::Timeout, "timeout", kTimeoutSource},
        {Group::Preset, "preset", kPresetSource},
        {Group::Position, "position", "NTCIP 1205, cctvPosition (1206.4.2.7.4)"},
        {Group::Lens, "lens", kLensSource},
        {Group::Io, "io", "NTCIP 1205, inputs and outputs (1206.4.2.7.6 to 8)"},
        {Group::Identity, "identity", kVendorSource},
        {Group::Health, "health", kVendorSource},
    };
    return all;
}

using Objects = std::vector<const Expected *>;

/** Returns the objects that pass a test. */
template <typename Test>
Objects objectsWith(Test test) {
    Objects list;
    for (const Expected &expected : expectedObjects()) {
        if (test(expected)) {
            list.push_back(&expected);
        }
    }
    return list;
}

std::string namesOf(const Objects &objects) {
    std::string text;
    for (const Expected *expected : objects) {
        text += (text.empty() ? "" : ", ") + std::string(expected->name);
    }
    return text;
}

/** Judges an object whose value can be read. */
using Judgement = Detail (*)(const Expected &expected, const Located &located);

Detail detailOf(const Expected &expected, Result result, std::string observation) {
    return {expected.name, result, std::move(observation)};
}

/** Judges the place of an object. */
Detail judgeInstance(const Expected &expected, const Located &located) {
    const std::string at = "at " + snmp::withoutDot(located.oid);
    switch (located.state) {
    case State::AtDialect:
        return detailOf(expected, Result::Differs,
                        fmt::format("{} instead of {}", at, snmp::withoutDot(expected.instance)));
    case State::Elsewhere:
        return detailOf(expected, Result::Fail,
                        fmt::format("{} instead of {}", at, snmp::withoutDot(expected.instance)));
    default:
        return detailOf(expected, Result::Pass, at);
    }
}

Detail judgeType(const Expected &expected, const Located &located) {
    const snmp::Varbind &value = located.value.varbind;
    if (value.type == expected.type) {
        return detailOf(expected, Result::Pass, snmp::typeName(value.type));
    }
    const char *const dialect = expected.typeDialect != nullptr ? expected.typeDialect(value) : nullptr;
    const std::string text = fmt::format("{} instead of {}", snmp::typeName(value.type), snmp::typeName(expected.type));
    return dialect != nullptr ? detailOf(expected, Result::Differs, fmt::format("{}: {}", text, dialect))
                              : detailOf(expected, Result::Fail, text);
}

/** Judges a number or a count within limits. */
Detail judgeWithin(const Expected &expected, const snmp::Varbind &value, std::int64_t number, const std::string &text) {
    if (number >= expected.lowest && number <= expected.highest) {
        return detailOf(expected, Result::Pass, text);
    }
    const char *const dialect = expected.valueDialect != nullptr ? expected.valueDialect(value) : nullptr;
    if (dialect != nullptr) {
        return detailOf(expected, Result::Differs, fmt::format("{}: {}", text, dialect));
    }
    const std::string limits = expected.lowest == expected.highest
                                   ? std::to_string(expected.lowest)
                                   : fmt::format("{} to {}", expected.lowest, expected.highest);
    return detailOf(expected, Result::Fail, fmt::format("{} instead of {}", text, limits));
}

Detail judgeLength(const Expected &expected, const Located &located) {
    const snmp::Varbind &value = located.value.varbind;
    if (value.type != Type::Octets) {
        return detailOf(expected, Result::Skipped, "no OCTET STRING");
    }
    const std::size_t size = value.octets.size();
    return judgeWithin(expected, value, static_cast<std::int64_t>(size),
                       fmt::format("{} {}", size, size == 1 ? "octet" : "octets"));
}

Detail judgeRange(const Expected &expected, const Located &located) {
    const snmp::Varbind &value = located.value.varbind;
    if (value.type != expected.type) {
        const bool isDialect = expected.typeDialect != nullptr && expected.typeDialect(value) != nullptr;
        return detailOf(expected, isDialect ? Result::Pass : Result::Skipped, snmp::valueText(value));
    }
    return judgeWithin(expected, value, value.number, std::to_string(value.number));
}

/** Judges the octets of a text, which an operator's terminal shows. */
Detail judgeText(const Expected &expected, const Located &located) {
    const snmp::Varbind &value = located.value.varbind;
    if (value.type != Type::Octets) {
        return detailOf(expected, Result::Skipped, "no OCTET STRING");
    }
    const bool isText = std::all_of(value.octets.begin(), value.octets.end(), [](char octet) {
        return (octet >= ' ' && octet <= '~') || octet == '\r' || octet == '\n';
    });
    return detailOf(expected, isText ? Result::Pass : Result::Fail,
                    isText ? snmp::valueText(value) : "octets that are no text: " + snmp::hexText(value.octets));
}

/** Reads the position of a command in two octets, or a shorter or longer one with the high octet first. */
std::int64_t positionOf(const std::string &octets) {
    std::int64_t position = 0;
    for (std::size_t i = 2; i < octets.size(); ++i) {
        position = position * 256 + static_cast<unsigned char>(octets[i]);
    }
    return position;
}

/** Judges a command that a position object answers. */
Detail judgeCommand(const Expected &expected, const Located &located) {
    constexpr std::int64_t kMost = 65535;
    const std::string &octets = located.value.varbind.octets;
    const std::string text = snmp::hexText(octets);
    if (located.value.varbind.type != Type::Octets || octets.size() > kLongestCommand) {
        return detailOf(expected, Result::Skipped, "no command");
    }
    if (octets.empty()) {
        return detailOf(expected, Result::Pass, "no command yet");
    }
    if (ptz::isInitialPosition(octets, ptz::ByteOrder::LowFirst)) {
        return detailOf(expected, Result::Differs, text + ": the position before the first command");
    }
    const auto mode = static_cast<unsigned char>(octets.front());
    const bool isStop = mode == 0;
    if (mode > static_cast<unsigned char>(ptz::Mode::Continuous) || (isStop && octets.size() > 1 && octets[1] != 0)) {
        return detailOf(expected, Result::Fail, text + (isStop ? ": a stop with a speed" : ": an unknown mode"));
    }
    const bool isAngle = std::string(expected.set) == "pan" || std::string(expected.set) == "tilt";
    const bool isTarget = mode == static_cast<unsigned char>(ptz::Mode::Absolute);
    const std::int64_t most = isAngle && isTarget ? kCircle - 1 : kMost;
    if (positionOf(octets) <= most) {
        return detailOf(expected, Result::Pass, text);
    }
    const bool isLowFirst =
        octets.size() == ptz::kCommandSize && positionOf({octets[0], octets[1], octets[3], octets[2]}) <= most;
    return detailOf(expected, isLowFirst ? Result::Differs : Result::Fail,
                    text + (isLowFirst ? ": a position with the low octet first" : ": a position out of range"));
}

Finding judgeEach(Context &context, const Objects &objects, Judgement judge, bool needsValue) {
    std::vector<Detail> details;
    for (const Expected *expected : objects) {
        try {
            const Located located = locate(context, *expected);
            if (located.state == State::Absent) {
                details.push_back(detailOf(*expected, Result::NotEquipped, "absent"));
            } else if (needsValue && !located.readable()) {
                details.push_back(detailOf(*expected, Result::Skipped, "no value at its instance"));
            } else {
                details.push_back(judge(*expected, located));
            }
        } catch (const Undecided &error) {
            details.push_back(detailOf(*expected, Result::Error, error.what()));
        }
    }
    return summarize(std::move(details));
}

/** What the rules of a group judge. */
struct Aspect {
    const char *name;
    const char *expectation;
    Judgement judge;
    bool needsValue;
    bool (*concerns)(const Expected &expected);
};

bool isText(const Expected &expected) {
    return expected.type == Type::Octets && expected.lowest == 0 && expected.group != Group::Position;
}

const std::vector<Aspect> &aspects() {
    static const std::vector<Aspect> all = {
        {"instance", "each object answers at its public instance", judgeInstance, false,
         [](const Expected &) { return true; }},
        {"type", "each value has the type of the public definition", judgeType, true,
         [](const Expected &) { return true; }},
        {"length", "each value has as many octets as the public definition allows", judgeLength, true,
         [](const Expected &expected) { return expected.type == Type::Octets; }},
        {"range", "each number is within the public range", judgeRange, true,
         [](const Expected &expected) { return expected.type == Type::Integer; }},
        {"command", "each position is a command: mode, speed, and a position with the high octet first", judgeCommand,
         true, [](const Expected &expected) { return expected.group == Group::Position; }},
        {"text", "each text consists of printable ASCII", judgeText, true, isText},
    };
    return all;
}

void addAspects(const GroupRecord &record, std::vector<Rule> &list) {
    for (const Aspect &aspect : aspects()) {
        const Objects objects = objectsWith(
            [&](const Expected &expected) { return expected.group == record.group && aspect.concerns(expected); });
        if (objects.empty()) {
            continue;
        }
        list.push_back({fmt::format("{}-{}", record.name, aspect.name), Level::Reads, namesOf(objects),
                        aspect.expectation, record.source, [objects, &aspect](Context &context) {
                            return judgeEach(context, objects, aspect.judge, aspect.needsValue);
                        }});
    }
}

/** Judges the ranges of time-outs: their present values and, if it may write, the refusal of others. */
Finding judgeTimeoutRange(Context &context, const Objects &objects) {
    Finding finding = judgeEach(context, objects, judgeRange, true);
    if (!context.options().writes) {
        return finding;
    }
    std::vector<Detail> details = std::move(finding.details);
    const std::vector<Detail> refusals = judgeTimeoutsOutOfRange(context);
    details.insert(details.end(), refusals.begin(), refusals.end());
    return summarize(std::move(details));
}

/** Judges whether a camera has all objects of a set or none. */
Finding judgePresence(Context &context, const Objects &objects) {
    std::vector<Detail> details;
    bool any = false;
    for (const Expected *expected : objects) {
        try {
            const Located located = locate(context, *expected);
            const bool isAbsent = located.state == State::Absent;
            any = any || !isAbsent;
            if (located.state == State::Unreadable) {
                details.push_back(detailOf(*expected, Result::Fail,
                                           "a GET answers " + snmp::describeError(located.value.error).name));
            } else {
                details.push_back(detailOf(*expected, isAbsent ? Result::NotEquipped : Result::Pass,
                                           isAbsent ? "absent" : "present"));
            }
        } catch (const Undecided &error) {
            details.push_back(detailOf(*expected, Result::Error, error.what()));
        }
    }
    for (Detail &detail : details) {
        if (any && detail.result == Result::NotEquipped) {
            detail = {detail.object, Result::Fail, "absent, although the camera has others of the set"};
        }
    }
    return summarize(std::move(details));
}

void addPresence(std::vector<Rule> &list) {
    std::set<std::string> known;
    for (const Expected &first : expectedObjects()) {
        if (!known.insert(first.set).second) {
            continue;
        }
        const Objects objects =
            objectsWith([&](const Expected &expected) { return std::string(expected.set) == first.set; });
        const auto record = std::find_if(groups().begin(), groups().end(),
                                         [&](const GroupRecord &group) { return group.group == first.group; });
        list.push_back({fmt::format("{}-presence", first.set), Level::Reads, namesOf(objects),
                        objects.size() > 1 ? "the camera has all of these objects or none, and can read them"
                                           : "the camera can read this object if it has it",
                        record->source, [objects](Context &context) { return judgePresence(context, objects); }});
    }
}

} // namespace

std::vector<Rule> objectRules() {
    std::vector<Rule> list;
    addPresence(list);
    for (const GroupRecord &record : groups()) {
        addAspects(record, list);
    }
    for (Rule &rule : list) {
        if (rule.name == "timeout-range") {
            rule.expectation = "each time-out is from 0 to 65535 and, with --writes, a SET of others is refused";
            rule.judge = [objects = objectsWith([](const Expected &expected) {
                              return expected.group == Group::Timeout;
                          })](Context &context) { return judgeTimeoutRange(context, objects); };
        }
    }
    return list;
}

} // namespace ptzctl::check
