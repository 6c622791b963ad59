// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <set>

#include <fmt/format.h>

#include "definitions.h"
#include "error_status.h"
#include "expected.h"
#include "families.h"
#include "format_value.h"
#include "object_oids.h"
#include "oid_text.h"
#include "tables.h"

namespace ptzctl::check {

namespace {

constexpr double kPerDegree = 100;

const Finding kAbsent = {Result::NotEquipped, "the camera does not have these objects", {}};

std::string degrees(std::int64_t angle) {
    return fmt::format("{:.2f} degrees", static_cast<double>(angle) / kPerDegree);
}

/** Converts an angle of a circle to -180 to 180 degrees. It may be a negative number of 16 bits. */
std::int64_t signedAngle(std::int64_t angle) {
    constexpr std::int64_t kSixteenBits = 65536;
    const std::int64_t onCircle = angle < 0 ? angle + kSixteenBits : angle;
    return onCircle > kCircle / 2 ? onCircle - kCircle : onCircle;
}

Finding judgePanLimits(Context &context) {
    const auto left = numberOf(context, "rangePanLeftLimit");
    const auto right = numberOf(context, "rangePanRightLimit");
    if (!left || !right) {
        return kAbsent;
    }
    return {*left <= *right ? Result::Pass : Result::Fail,
            fmt::format("left limit {}, right limit {}", degrees(*left), degrees(*right)),
            {}};
}

Finding judgeTiltLimits(Context &context) {
    const auto up = numberOf(context, "rangeTiltUpLimit");
    const auto down = numberOf(context, "rangeTiltDownLimit");
    if (!up || !down) {
        return kAbsent;
    }
    return {signedAngle(*up) >= signedAngle(*down) ? Result::Pass : Result::Fail,
            fmt::format("upper limit {}, lower limit {}", degrees(signedAngle(*up)), degrees(signedAngle(*down))),
            {}};
}

Finding judgePanHome(Context &context) {
    const auto left = numberOf(context, "rangePanLeftLimit");
    const auto right = numberOf(context, "rangePanRightLimit");
    const auto home = numberOf(context, "rangePanHomePosition");
    if (!left || !right || !home || *home >= kCircle) {
        return {Result::NotEquipped, "the camera has no home position", {}};
    }
    if (*left > *right || *left == *right) {
        return {Result::Skipped, "the limits of pan span no range", {}};
    }
    return {*home >= *left && *home <= *right ? Result::Pass : Result::Fail,
            fmt::format("home position {}, limits {} and {}", degrees(*home), degrees(*left), degrees(*right)),
            {}};
}

/** Judges the smallest step of an axis against the span of its limits. */
Finding judgeStep(Context &context, const char *stepName, const char *lowName, const char *highName) {
    const auto step = numberOf(context, stepName);
    const auto low = numberOf(context, lowName);
    const auto high = numberOf(context, highName);
    if (!step || !low || !high) {
        return kAbsent;
    }
    const bool isTilt = std::string(lowName) == "rangeTiltDownLimit";
    const std::int64_t span = isTilt ? signedAngle(*high) - signedAngle(*low) : *high - *low;
    if (span <= 0) {
        return {Result::Skipped, "the limits span no range", {}};
    }
    return {*step <= span ? Result::Pass : Result::Fail,
            fmt::format("smallest step {}, range {}", degrees(*step), degrees(span)),
            {}};
}

Finding judgeLensEquipped(Context &context) {
    const auto equipped = octetsOf(context, "systemLensEquipped");
    const auto status = octetsOf(context, "systemLensFeatureStatus");
    if (!equipped || !status || equipped->empty() || status->empty()) {
        return kAbsent;
    }
    const auto has = static_cast<unsigned char>(equipped->front());
    const auto uses = static_cast<unsigned char>(status->front());
    const std::string text = fmt::format("equipped {:02X}, status {:02X}", has, uses);
    if ((uses & ~has) == 0) {
        return {Result::Pass, text, {}};
    }
    if (has == 0) {
        return {Result::Differs, text + ": the camera leaves it to its user to state the equipment", {}};
    }
    return {Result::Fail, text + ": features in use that the camera does not have", {}};
}

/** Inputs or outputs: a public object with a bit each, and a vendor's table with a row each. */
struct SwitchRows {
    const char *bits;
    const char *bitsOid;
    std::array<const char *, 3> columns;
    std::size_t most; ///< number of bits in use
};

constexpr SwitchRows kInputs = {"inputStatus",
                                oids::inputStatus,
                                {oids::alarmStatesKind, oids::alarmStatesNumber, oids::alarmStatesState},
                                ptz::kInputBits};
constexpr SwitchRows kOutputs = {"outputStatus",
                                 oids::outputStatus,
                                 {oids::relayStatesKind, oids::relayStatesNumber, oids::relayStatesState},
                                 ptz::kOutputBits};

/** Compares bits with the states of the rows. @return the finding, or nothing if the bits have changed meanwhile */
std::optional<Finding> compareOnce(Context &context, const SwitchRows &switches) {
    const Value before = context.get(switches.bitsOid);
    const std::vector<snmp::Varbind> states = columnOf(context, switches.columns.back());
    if (states.empty()) {
        return Finding{Result::NotEquipped, "the camera does not have the vendor's table", {}};
    }
    if (before.missing()) {
        return Finding{Result::Fail, fmt::format("{} rows, but no {}", states.size(), switches.bits), {}};
    }
    if (!before.present() || before.varbind.octets.size() != 1) {
        return Finding{Result::Skipped, fmt::format("{} has no octet to compare", switches.bits), {}};
    }
    const Value after = context.get(switches.bitsOid);
    unsigned int expected = 0;
    for (std::size_t i = 0; i < std::min(states.size(), switches.most); ++i) {
        expected |= static_cast<unsigned int>(states[i].number & 1) << i;
    }
    const auto bits = static_cast<unsigned char>(before.varbind.octets.front());
    if (before.varbind != after.varbind) {
        return std::nullopt;
    }
    return Finding{bits == expected ? Result::Pass : Result::Fail,
                   fmt::format("{} {:02X}, states of the {} rows {:02X}", switches.bits, bits, states.size(), expected),
                   {}};
}

Finding judgeBits(Context &context, const SwitchRows &switches) {
    constexpr int kAttempts = 3;
    Finding last = {Result::Skipped, "the states change too often", {}};
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        const std::optional<Finding> finding = compareOnce(context, switches);
        if (finding && finding->result != Result::Fail) {
            return *finding;
        }
        // A state may change between the reads; one that differs each time is wrong.
        last = finding.value_or(last);
    }
    return last;
}

std::set<std::uint32_t> rowNumbers(const std::vector<snmp::Varbind> &column) {
    std::set<std::uint32_t> numbers;
    for (const snmp::Varbind &cell : column) {
        numbers.insert(snmp::parseOid(cell.oid).back());
    }
    return numbers;
}

Detail judgeColumn(Context &context, const char *oid, const std::set<std::uint32_t> &expected) {
    const ptz::Instance instance = ptz::instanceAt(std::string(oid) + ".1");
    Detail detail = {instance.object->mibName, Result::Pass, ""};
    const std::vector<snmp::Varbind> cells = columnOf(context, oid);
    detail.observation = fmt::format("{} {}", cells.size(), cells.size() == 1 ? "row" : "rows");
    if (rowNumbers(cells) != expected) {
        detail.result = Result::Fail;
        detail.observation += fmt::format(" instead of rows 1 to {}", expected.size());
    }
    const snmp::Type type =
        instance.object->syntax.kind == ptz::Kind::Integer ? snmp::Type::Integer : snmp::Type::Octets;
    for (const snmp::Varbind &cell : cells) {
        if (cell.type != type) {
            return {detail.object, Result::Fail,
                    fmt::format("row {} has {} instead of {}", snmp::parseOid(cell.oid).back(),
                                snmp::typeName(cell.type), snmp::typeName(type))};
        }
        const bool isOutside = type == snmp::Type::Integer && (cell.number < instance.object->syntax.lowest ||
                                                               cell.number > instance.object->syntax.highest);
        if (isOutside) {
            return {detail.object, Result::Fail,
                    fmt::format("row {} has {} instead of {} to {}", snmp::parseOid(cell.oid).back(), cell.number,
                                instance.object->syntax.lowest, instance.object->syntax.highest)};
        }
    }
    return detail;
}

Finding judgeTable(Context &context, const SwitchRows &switches) {
    std::size_t most = 0;
    for (const char *column : switches.columns) {
        most = std::max(most, columnOf(context, column).size());
    }
    if (most == 0) {
        return {Result::NotEquipped, "the camera does not have the vendor's table", {}};
    }
    std::set<std::uint32_t> expected;
    for (std::uint32_t row = 1; row <= most; ++row) {
        expected.insert(row);
    }
    std::vector<Detail> details;
    for (const char *column : switches.columns) {
        details.push_back(judgeColumn(context, column, expected));
    }
    return summarize(std::move(details));
}

Finding judgeModuleRows(Context &context) {
    const auto most = numberOf(context, "maxModules");
    const auto number = numberOf(context, "moduleNumber");
    if (!most || !number) {
        return kAbsent;
    }
    const std::size_t rows = columnOf(context, snmp::parentOf(oids::moduleNumber)).size();
    const bool isRight = *number <= *most && static_cast<std::int64_t>(rows) == *most;
    return {
        isRight ? Result::Pass : Result::Fail,
        fmt::format("maxModules {}, {} {}, first moduleNumber {}", *most, rows, rows == 1 ? "row" : "rows", *number),
        {}};
}

Finding judgeDeviceNode(Context &context) {
    const Located node = locate(context, expectedNamed("moduleDeviceNode"));
    if (!node.readable()) {
        return kAbsent;
    }
    std::string oid;
    try {
        oid = snmp::oidText(snmp::parseOid(node.value.varbind.octets));
    } catch (const std::invalid_argument &) {
        return {Result::Fail, snmp::valueText(node.value.varbind) + " is not an OID", {}};
    }
    const Value &next = context.successor(oid);
    const bool serves = next.present() && snmp::isBelow(next.varbind.oid, oid);
    return {serves ? Result::Pass : Result::Fail,
            fmt::format("{}, {} objects below it", snmp::withoutDot(oid), serves ? "with" : "without"),
            {}};
}

} // namespace

std::vector<Rule> consistencyRules() {
    return {
        {"pan-limits", Level::Reads, "rangePanLeftLimit, rangePanRightLimit",
         "the left limit does not exceed the right one", kLimitSource, judgePanLimits},
        {"tilt-limits", Level::Reads, "rangeTiltUpLimit, rangeTiltDownLimit",
         "the upper limit is not below the lower one", kLimitSource, judgeTiltLimits},
        {"pan-home", Level::Reads, "rangePanHomePosition, rangePanLeftLimit, rangePanRightLimit",
         "the home position is within the limits", kLimitSource, judgePanHome},
        {"pan-step", Level::Reads, "rangeMinimumPanStepAngle, rangePanLeftLimit, rangePanRightLimit",
         "the smallest step does not exceed the range", kLimitSource,
         [](Context &context) {
             return judgeStep(context, "rangeMinimumPanStepAngle", "rangePanLeftLimit", "rangePanRightLimit");
         }},
        {"tilt-step", Level::Reads, "rangeMinimumTiltStepAngle, rangeTiltUpLimit, rangeTiltDownLimit",
         "the smallest step does not exceed the range", kLimitSource,
         [](Context &context) {
             return judgeStep(context, "rangeMinimumTiltStepAngle", "rangeTiltDownLimit", "rangeTiltUpLimit");
         }},
        {"lens-equipped", Level::Reads, "systemLensEquipped, systemLensFeatureStatus",
         "each feature in the status is among the equipment", kLensSource, judgeLensEquipped},
        {"input-bits", Level::Reads, "inputStatus, alarmStatesState", "each bit has the state of its row",
         kVendorSource, [](Context &context) { return judgeBits(context, kInputs); }},
        {"output-bits", Level::Reads, "outputStatus, relayStatesState", "each bit has the state of its row",
         kVendorSource, [](Context &context) { return judgeBits(context, kOutputs); }},
        {"input-table", Level::Reads, "alarmStatesKind, alarmStatesNumber, alarmStatesState",
         "all columns have the same rows, numbered from 1, with values of their type", kVendorSource,
         [](Context &context) { return judgeTable(context, kInputs); }},
        {"relay-table", Level::Reads, "relayStatesKind, relayStatesNumber, relayStatesState",
         "all columns have the same rows, numbered from 1, with values of their type", kVendorSource,
         [](Context &context) { return judgeTable(context, kOutputs); }},
        {"module-rows", Level::Reads, "maxModules, moduleNumber", "the table has maxModules rows", kModuleSource,
         judgeModuleRows},
        {"module-node", Level::Reads, "moduleDeviceNode", "the camera has objects below its device node", kModuleSource,
         judgeDeviceNode},
    };
}

} // namespace ptzctl::check
