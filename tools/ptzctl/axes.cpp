// SPDX-License-Identifier: Apache-2.0
#include "axes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <stdexcept>

#include <fmt/format.h>

#include "octets_text.h"

namespace ptzctl {

namespace {

constexpr int kTurn = 36000;
constexpr int kEnd = 65535;
constexpr int kSigned = 32767;
constexpr double kPerDegree = 100.0;
constexpr double kFullPercent = 100.0;

// clang-format off
constexpr Axes kAxes = {{
    {"pan",   "Pan",   "positionPan",       "timeoutPan",   Unit::Degrees, -360, 360, kTurn, kTurn, kSigned, true,
     "right", "left",  0, false},
    {"tilt",  "Tilt",  "positionTilt",      "timeoutTilt",  Unit::Degrees,  -90,  90, kTurn, 27000, kSigned, true,
     "up",    "down",  0, false},
    {"zoom",  "Zoom",  "positionZoomLens",  "timeoutZoom",  Unit::Percent,    0, 100, 0,     0,     kSigned, true,
     "in",    "out",   0, false},
    {"focus", "Focus", "positionFocusLens", "timeoutFocus", Unit::Percent,    0, 100, 0,     0,     kEnd,    false,
     "far",   "near",  kAutomaticFocus, false},
    {"iris",  "Iris",  "positionIrisLens",  "timeoutIris",  Unit::Percent,    0, 100, 0,     0,     kEnd,    false,
     "open",  "close", kAutomaticIris, true},
}};
// clang-format on

double scaleOf(const Axis &axis) {
    return axis.unit == Unit::Degrees ? kPerDegree : kEnd / kFullPercent;
}

/** What follows a number. */
const char *unitSign(const Axis &axis) {
    return axis.unit == Unit::Degrees ? "°" : " %";
}

const char *unitName(const Axis &axis) {
    return axis.unit == Unit::Degrees ? "degrees" : "percent";
}

std::string amount(const Axis &axis, double value) {
    return fmt::format("{:.2f}{}", value, unitSign(axis));
}

int checkedSpeed(int speed) {
    if (speed < 1 || speed > kFastest) {
        throw std::invalid_argument("a speed is from 1 to 127, not " + std::to_string(speed));
    }
    return speed;
}

/** Whether a positive speed is the axis's second word. */
bool isReversed(const Axis &axis, ByteOrder order) {
    return axis.reversedInPublic && order == ByteOrder::HighFirst;
}

/** The step of a delta in octets, with the sign that its speed gives it. */
int stepOf(const Axis &axis, const PositionCommand &command) {
    const int offset = axis.signedSteps ? signedOffset(command.position) : command.position;
    return command.speed < 0 ? -offset : offset;
}

} // namespace

const Axes &axes() {
    return kAxes;
}

const Axis &axisOf(const std::string &name) {
    const auto *const found =
        std::find_if(kAxes.begin(), kAxes.end(), [&](const Axis &axis) { return name == axis.name; });
    if (found == kAxes.end()) {
        throw std::invalid_argument("there is no axis '" + name + "'; the axes are pan, tilt, zoom, focus and iris");
    }
    return *found;
}

PositionCommand commandTo(const Axis &axis, double target, int speed) {
    if (!(target >= axis.lowest && target <= axis.highest)) {
        throw std::invalid_argument(fmt::format("{} goes to positions from {:g} to {:g} {}, not to {:g}", axis.name,
                                                axis.lowest, axis.highest, unitName(axis), target));
    }
    long position = std::lround(target * scaleOf(axis));
    if (axis.circle != 0) {
        position = (position % axis.circle + axis.circle) % axis.circle;
    }
    return {Mode::Absolute, checkedSpeed(speed), static_cast<std::uint16_t>(position)};
}

PositionCommand commandBy(const Axis &axis, double step, int speed) {
    const double largest = axis.largestStep / scaleOf(axis);
    const double octets = std::round(std::abs(step) * scaleOf(axis));
    if (!(octets >= 1 && octets <= axis.largestStep)) {
        throw std::invalid_argument(fmt::format("{} makes steps from {:.2f} to {:.2f} {} in either direction, not {:g}",
                                                axis.name, std::ceil(kPerDegree / scaleOf(axis)) / kPerDegree,
                                                std::floor(largest * kPerDegree) / kPerDegree, unitName(axis), step));
    }
    return {Mode::Delta, step < 0 ? -checkedSpeed(speed) : checkedSpeed(speed), static_cast<std::uint16_t>(octets)};
}

PositionCommand commandTowards(const Axis &axis, const std::string &direction, int speed, ByteOrder order) {
    if (direction != axis.forward && direction != axis.backward) {
        throw std::invalid_argument(
            fmt::format("{} runs {} or {}, not {}", axis.name, axis.forward, axis.backward, direction));
    }
    const bool positive = (direction == axis.forward) != isReversed(axis, order);
    return {Mode::Continuous, positive ? checkedSpeed(speed) : -checkedSpeed(speed), 0};
}

double valueOf(const Axis &axis, std::uint16_t position) {
    const bool below = axis.circle != 0 && position >= axis.negative;
    return (below ? position - axis.circle : position) / scaleOf(axis);
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
    return ((command.speed > 0) != isReversed(axis, order) ? axis.forward : axis.backward) + atSpeed;
}

std::string describeOctets(const Axis &axis, const std::string &octets, ByteOrder order) {
    if (isInitialPosition(octets, order)) {
        return "no command yet; it was at " + positionText(axis, initialPosition(octets));
    }
    try {
        return describe(axis, decode(octets, order), order);
    } catch (const std::invalid_argument &reason) {
        return fmt::format("{}: {}", hexText(octets), reason.what());
    }
}

nlohmann::ordered_json octetsJson(const Axis &axis, const std::string &octets, ByteOrder order) {
    nlohmann::ordered_json result = {{"octets", hexText(octets)}};
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

} // namespace ptzctl
