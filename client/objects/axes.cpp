// SPDX-License-Identifier: Apache-2.0
#include "axes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <stdexcept>

#include <fmt/format.h>

#include "object_oids.h"
#include "octets_text.h"

namespace ptz {

namespace {

constexpr int kEnd = 65535;
constexpr double kPerDegree = 100.0;
constexpr double kFullPercent = 100.0;

constexpr Steps kSignedSteps = {32767, true};
constexpr Steps kUnsignedSteps = {kEnd, false};

/** Positions on a circle. @param negative first position that people count below zero */
constexpr Range degrees(double lowest, double highest, int negative) {
    constexpr int kTurn = 36000;
    return {Unit::Degrees, lowest, highest, kTurn, negative};
}

constexpr Range percent() {
    return {Unit::Percent, 0, kFullPercent, 0, 0};
}

constexpr Directions directions(const char *forward, const char *backward) {
    return {forward, backward, false};
}

constexpr Directions swappedInPublic(Directions directions) {
    directions.swappedInPublic = true;
    return directions;
}

// clang-format off
constexpr Axes kAxes = {{
    {"pan",   "Pan",   oids::positionPan,       oids::timeoutPan,   degrees(-360, 360, 36000), kSignedSteps,
     directions("right", "left"), 0},
    {"tilt",  "Tilt",  oids::positionTilt,      oids::timeoutTilt,  degrees(-90, 90, 27000),   kSignedSteps,
     directions("up", "down"), 0},
    {"zoom",  "Zoom",  oids::positionZoomLens,  oids::timeoutZoom,  percent(),                 kSignedSteps,
     directions("in", "out"), 0},
    {"focus", "Focus", oids::positionFocusLens, oids::timeoutFocus, percent(),                 kUnsignedSteps,
     directions("far", "near"), kAutomaticFocus},
    {"iris",  "Iris",  oids::positionIrisLens,  oids::timeoutIris,  percent(),                 kUnsignedSteps,
     swappedInPublic(directions("open", "close")), kAutomaticIris},
}};
// clang-format on

double scaleOf(const Axis &axis) {
    return axis.range.unit == Unit::Degrees ? kPerDegree : kEnd / kFullPercent;
}

/** Text after a number. */
const char *unitSign(const Axis &axis) {
    return axis.range.unit == Unit::Degrees ? "°" : " %";
}

const char *unitName(const Axis &axis) {
    return axis.range.unit == Unit::Degrees ? "degrees" : "percent";
}

std::string amount(const Axis &axis, double value) {
    return fmt::format("{:.2f}{}", value, unitSign(axis));
}

int checkedSpeed(int speed) {
    if (speed < 1 || speed > kFastest) {
        throw std::invalid_argument("the speed must be from 1 to 127, not " + std::to_string(speed));
    }
    return speed;
}

/** Tests whether a positive speed moves backward. */
bool isSwapped(const Axis &axis, ByteOrder order) {
    return axis.directions.swappedInPublic && order == ByteOrder::HighFirst;
}

/** Returns the step of a delta in positions, with the sign of its speed. */
int stepOf(const Axis &axis, const PositionCommand &command) {
    const int offset = axis.steps.isSigned ? signedOffset(command.position) : command.position;
    return command.speed < 0 ? -offset : offset;
}

} // namespace

const Axes &axes() {
    return kAxes;
}

const Axis &axisNamed(const std::string &name) {
    const auto *const found =
        std::find_if(kAxes.begin(), kAxes.end(), [&](const Axis &axis) { return name == axis.name; });
    if (found == kAxes.end()) {
        throw std::invalid_argument("there is no axis '" + name + "'; the axes are pan, tilt, zoom, focus and iris");
    }
    return *found;
}

const Axis *axisAt(const std::string &positionOid) {
    const auto *const found =
        std::find_if(kAxes.begin(), kAxes.end(), [&](const Axis &axis) { return positionOid == axis.positionOid; });
    return found == kAxes.end() ? nullptr : &*found;
}

PositionCommand commandTo(const Axis &axis, double target, int speed) {
    if (!(target >= axis.range.lowest && target <= axis.range.highest)) {
        throw std::invalid_argument(fmt::format("{} goes to positions from {:g} to {:g} {}, not to {:g}", axis.name,
                                                axis.range.lowest, axis.range.highest, unitName(axis), target));
    }
    long position = std::lround(target * scaleOf(axis));
    if (axis.range.circle != 0) {
        position = (position % axis.range.circle + axis.range.circle) % axis.range.circle;
    }
    return {Mode::Absolute, checkedSpeed(speed), static_cast<std::uint16_t>(position)};
}

PositionCommand commandBy(const Axis &axis, double step, int speed) {
    const double largest = axis.steps.largest / scaleOf(axis);
    const double positions = std::round(std::abs(step) * scaleOf(axis));
    if (!(positions >= 1 && positions <= axis.steps.largest)) {
        throw std::invalid_argument(fmt::format("{} makes steps from {:.2f} to {:.2f} {} in either direction, not {:g}",
                                                axis.name, std::ceil(kPerDegree / scaleOf(axis)) / kPerDegree,
                                                std::floor(largest * kPerDegree) / kPerDegree, unitName(axis), step));
    }
    return {Mode::Delta, step < 0 ? -checkedSpeed(speed) : checkedSpeed(speed), static_cast<std::uint16_t>(positions)};
}

PositionCommand commandTowards(const Axis &axis, const std::string &direction, int speed, ByteOrder order) {
    if (direction != axis.directions.forward && direction != axis.directions.backward) {
        throw std::invalid_argument(fmt::format("{} runs {} or {}, not {}", axis.name, axis.directions.forward,
                                                axis.directions.backward, direction));
    }
    const bool positive = (direction == axis.directions.forward) != isSwapped(axis, order);
    return {Mode::Continuous, positive ? checkedSpeed(speed) : -checkedSpeed(speed), 0};
}

double valueOf(const Axis &axis, std::uint16_t position) {
    const bool below = axis.range.circle != 0 && position >= axis.range.negative;
    return (below ? position - axis.range.circle : position) / scaleOf(axis);
}

std::string positionText(const Axis &axis, std::uint16_t position) {
    return amount(axis, valueOf(axis, position));
}

std::string describe(const Axis &axis, const PositionCommand &command, ByteOrder order) {
    const std::string atSpeed = fmt::format(" at speed {}", std::abs(command.speed));
    switch (command.mode) {
    case Mode::Stop:
        return "stop";
    case Mode::Delta:
        return fmt::format("by {:+.2f}{}", stepOf(axis, command) / scaleOf(axis), unitSign(axis)) + atSpeed;
    case Mode::Absolute:
        return "to " + positionText(axis, command.position) + atSpeed;
    case Mode::Continuous:
        break;
    }
    if (command.speed == 0) {
        return "halt";
    }
    return ((command.speed > 0) != isSwapped(axis, order) ? axis.directions.forward : axis.directions.backward) +
           atSpeed;
}

std::string describeOctets(const Axis &axis, const std::string &octets, ByteOrder order) {
    if (isInitialPosition(octets, order)) {
        return "no command yet; it was at " + positionText(axis, initialPosition(octets));
    }
    try {
        return describe(axis, decode(octets, order), order);
    } catch (const std::invalid_argument &reason) {
        return fmt::format("{}: {}", snmp::hexText(octets), reason.what());
    }
}

nlohmann::ordered_json octetsJson(const Axis &axis, const std::string &octets, ByteOrder order) {
    nlohmann::ordered_json result = {{"octets", snmp::hexText(octets)}};
    if (isInitialPosition(octets, order)) {
        result["initial"] = true;
        result[unitName(axis)] = valueOf(axis, initialPosition(octets));
        return result;
    }
    try {
        const PositionCommand command = decode(octets, order);
        result["mode"] = modeName(command.mode);
        result["speed"] = command.speed;
        result["position"] = command.position;
        if (command.mode == Mode::Absolute) {
            result[unitName(axis)] = valueOf(axis, command.position);
        } else if (command.mode == Mode::Delta) {
            result[unitName(axis)] = stepOf(axis, command) / scaleOf(axis);
        }
    } catch (const std::invalid_argument &reason) {
        result["problem"] = reason.what();
    }
    return result;
}

} // namespace ptz
