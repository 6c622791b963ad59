// SPDX-License-Identifier: Apache-2.0
#include "timeout_writes.h"

#include <limits>

#include <fmt/format.h>

#include "error_status.h"
#include "expected.h"

namespace ptzctl::check {

namespace {

constexpr std::int64_t kMost = 65535;
constexpr std::int64_t kSixteenBits = 65536;

/**
 * Returns values out of range. Most have the low 16 bits of the present value: a camera that cuts them keeps its
 * time-out.
 */
std::vector<std::int64_t> wrongValues(std::int64_t present) {
    constexpr std::int64_t kLarge = 70000;
    const std::int64_t low = present & kMost;
    constexpr std::int64_t kHighBits = std::numeric_limits<std::int32_t>::max() - kMost;
    std::vector<std::int64_t> values = {low + kSixteenBits, kLarge, kHighBits + low};
    // A camera that has a negative number of its own takes them.
    if (present >= 0) {
        values.insert(values.end(), {low - kSixteenBits, std::numeric_limits<std::int32_t>::min() + low});
    }
    return values;
}

/** Sends a value out of range. */
Detail judgeValue(Context &context, const Setting &setting, std::int64_t wrong) {
    context.restoreLater(setting.before);
    const Exchange &exchange = context.set({snmp::integer(setting.before.oid, wrong)});
    if (!exchange.valid()) {
        return {setting.name, Result::Error, describeResponse(exchange)};
    }
    const long error = exchange.response->error;
    if (error == 0) {
        const Value after = context.get(setting.before.oid);
        const bool isCut = wrong < 0 && after.present() && after.varbind.number == (wrong & kMost);
        return {setting.name, isCut ? Result::Differs : Result::Fail,
                fmt::format("accepts {}{}", wrong, isCut ? fmt::format(" as {}, its low 16 bits", wrong & kMost) : "")};
    }
    const std::string name = snmp::describeError(error).name;
    if (lacksSetting(setting, error)) {
        return {setting.name, Result::Differs, kNoSetting};
    }
    if (error != snmp::kWrongValue && error != snmp::kInconsistentValue) {
        return {setting.name, Result::Fail, fmt::format("{} is refused with {} instead of wrongValue", wrong, name)};
    }
    if (exchange.response->errorIndex != 1) {
        return {setting.name, Result::Fail,
                fmt::format("{} is refused with error index {} instead of 1", wrong, exchange.response->errorIndex)};
    }
    return {setting.name, Result::Pass, "values out of range are refused"};
}

} // namespace

std::vector<Setting> timeoutSettings(Context &context) {
    std::vector<Setting> settings;
    for (const Expected &expected : expectedObjects()) {
        const bool isTimeout = expected.group == Group::Timeout;
        const Located located = isTimeout ? locate(context, expected) : Located{};
        if (!located.readable()) {
            continue;
        }
        const Value now = context.get(located.oid);
        if (now.present() && now.varbind.type == snmp::Type::Integer) {
            settings.push_back({expected.name, now.varbind});
        }
    }
    return settings;
}

bool lacksSetting(const Setting &setting, long error) {
    constexpr long kGenErr = 5;
    return error == kGenErr && setting.before.number == 0;
}

std::int64_t otherTimeout(std::int64_t present) {
    if (present < 0) {
        return present & kMost;
    }
    return present < kMost ? present + 1 : kMost - 1;
}

std::vector<Detail> judgeTimeoutsOutOfRange(Context &context) {
    std::vector<Detail> details;
    for (const Setting &setting : timeoutSettings(context)) {
        Detail worst = {setting.name, Result::Pass, ""};
        for (const std::int64_t wrong : wrongValues(setting.before.number)) {
            const Detail detail = judgeValue(context, setting, wrong);
            const bool isWorse = worst.result == Result::Pass || isTrouble(detail.result);
            worst = isWorse ? detail : worst;
            context.restore();
            if (detail.result == Result::Fail) {
                break;
            }
        }
        details.push_back(worst);
    }
    return details;
}

} // namespace ptzctl::check
