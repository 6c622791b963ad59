// SPDX-License-Identifier: Apache-2.0
#include "axis_rules.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "definitions.h"
#include "error_status.h"
#include "expected.h"

namespace ptzctl::check {

namespace {

constexpr int kMostPosition = 65535;
constexpr int kSame = 257; ///< multiples of it have two equal octets
constexpr int kLensSteps = 8;

/** Names of the objects that limit an axis, from its lowest position to its highest. */
struct Limits {
    const char *axis;
    const char *lowest;
    const char *highest;
};

constexpr std::array<Limits, 2> kAxisLimits = {
    {{"pan", "rangePanLeftLimit", "rangePanRightLimit"}, {"tilt", "rangeTiltDownLimit", "rangeTiltUpLimit"}}};

/** Reads a limit, which some cameras answer as a signed number of 16 bits. */
std::optional<int> limitOf(Context &context, const char *name) {
    const std::optional<std::int64_t> number = numberOf(context, name);
    if (!number) {
        return std::nullopt;
    }
    const std::int64_t angle = *number < 0 ? *number + kMostPosition + 1 : *number;
    return angle >= 0 && angle < kCircle ? std::optional(static_cast<int>(angle)) : std::nullopt;
}

/** Judges whether an object answers the number of a preset, which some cameras do as an octet. */
Finding judgePresetAnswer(Context &context, const char *oid, int preset) {
    const Value value = context.get(oid);
    if (value.present() && value.varbind.type == snmp::Type::Integer && value.varbind.number == preset) {
        return {Result::Pass, fmt::format("accepted, answers {}", preset), {}};
    }
    if (value.present() && value.varbind.octets == std::string(1, static_cast<char>(preset))) {
        return {Result::Differs, fmt::format("accepted, answers {} as one octet", preset), {}};
    }
    return {Result::Fail, "accepted, but does not answer the number of the preset", {}};
}

} // namespace

Detail axisDetail(const ptz::Axis &axis, Result result, std::string observation) {
    return {objectOf(axis), result, std::move(observation)};
}

Detail judgeAccepted(const ptz::Axis &axis, const Exchange &exchange, const std::string &what) {
    if (!exchange.valid()) {
        return axisDetail(axis, Result::Error, fmt::format("{}: {}", what, describeResponse(exchange)));
    }
    const long error = exchange.response->error;
    return error == 0 ? axisDetail(axis, Result::Pass, what + " was accepted")
                      : axisDetail(axis, Result::Fail,
                                   fmt::format("{} was refused with {}", what, snmp::describeError(error).name));
}

Detail judgeRefused(const ptz::Axis &axis, const Exchange &exchange, const std::string &what) {
    if (!exchange.valid()) {
        return axisDetail(axis, Result::Error, fmt::format("{}: {}", what, describeResponse(exchange)));
    }
    const long error = exchange.response->error;
    return error == 0 ? axisDetail(axis, Result::Fail, what + " was accepted")
                      : axisDetail(axis, Result::Pass,
                                   fmt::format("{} was refused with {}", what, snmp::describeError(error).name));
}

Finding judgeAxes(Context &context, const std::function<void(MoveGuard &, const ptz::Axis &, Details &)> &judge) {
    Details details;
    MoveGuard guard(context);
    for (const ptz::Axis *axis : guard.axes()) {
        try {
            judge(guard, *axis, details);
        } catch (const NotPossible &reason) {
            details.push_back(axisDetail(*axis, Result::Skipped, reason.what()));
        } catch (const Undecided &error) {
            details.push_back(axisDetail(*axis, Result::Error, error.what()));
        }
    }
    return summarize(std::move(details));
}

bool turns(const ptz::Axis &axis) {
    return axis.range.unit == ptz::Unit::Degrees;
}

bool isWithinLimits(Context &context, const ptz::Axis &axis, int position) {
    const auto *const limits = std::find_if(kAxisLimits.begin(), kAxisLimits.end(),
                                            [&](const Limits &row) { return std::string(axis.name) == row.axis; });
    if (limits == kAxisLimits.end()) {
        return position >= 0 && position <= kMostPosition;
    }
    const int lowest = limitOf(context, limits->lowest).value_or(0);
    const int highest = limitOf(context, limits->highest).value_or(kCircle - 1);
    // A range may contain the position 0 in its middle.
    return lowest <= highest ? position >= lowest && position <= highest : position >= lowest || position <= highest;
}

Targets targetsOf(Context &context, const ptz::Axis &axis) {
    const int step = turns(axis) ? kSame : kSame * kLensSteps;
    const int end = turns(axis) ? kCircle : kMostPosition;
    // Room for another step on both sides, because a camera may stop short of its limits.
    for (int first = 2 * step; first + 2 * step < end; first += step) {
        const std::array<int, 4> positions = {first - step, first, first + step, first + 2 * step};
        if (std::all_of(positions.begin(), positions.end(),
                        [&](int position) { return isWithinLimits(context, axis, position); })) {
            return {static_cast<std::uint16_t>(first), static_cast<std::uint16_t>(first + step)};
        }
    }
    throw NotPossible("its limits leave no room for a step");
}

std::string octetsFor(ptz::Mode mode, int speed, int position) {
    return ptz::encode({mode, speed, static_cast<std::uint16_t>(position)}, ptz::ByteOrder::HighFirst);
}

Finding judgePreset(Context &context, const char *oid) {
    const int preset = context.options().preset;
    if (preset == 0) {
        return {Result::Skipped, "needs --preset", {}};
    }
    const MoveGuard guard(context);
    if (!context.value(oid).present()) {
        return {Result::NotEquipped, "absent", {}};
    }
    const Exchange &exchange = context.set({snmp::integer(oid, preset)});
    Detail detail = judgeAccepted(ptz::axes().front(), exchange, fmt::format("preset {}", preset));
    if (detail.result != Result::Pass) {
        return {detail.result, std::move(detail.observation), {}};
    }
    return judgePresetAnswer(context, oid, preset);
}

} // namespace ptzctl::check
