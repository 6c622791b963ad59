// SPDX-License-Identifier: Apache-2.0
#include "positioning.h"

#include <cmath>
#include <utility>

#include "camera_model.h"

namespace camera {

namespace {

constexpr std::array<Axis Positioning::*, kAxisCount> kAxes = {&Positioning::pan, &Positioning::tilt,
                                                               &Positioning::zoom};
constexpr std::array<const char *, kAxisCount> kAxisKeys = {"pan", "tilt", "zoom"};

Fields<Positioning> positioningFields() {
    constexpr std::int32_t kLargest = std::numeric_limits<std::int32_t>::max();
    static const Fields<DigitalZoom> digitalZoomFields = {
        flagField("enabled", &DigitalZoom::enabled),
        integerField("maximum", &DigitalZoom::maximum, 0, kLargest),
        integerField("combinedMaximum", &DigitalZoom::combinedMaximum, 0, kLargest),
    };
    Fields<Positioning> fields;
    for (std::size_t i = 0; i < kAxisCount; ++i) {
        addPart(fields, kAxisKeys.at(i), kAxes.at(i), axisFields());
    }
    addPart(fields, "digitalZoom", &Positioning::digitalZoom, digitalZoomFields);
    fields.push_back(fieldOfViewField(&Positioning::fieldOfView));
    fields.push_back(integerField("velocityCommandTimeout", &Positioning::velocityCommandTimeout));
    fields.push_back(readOnlyField<Positioning>("velocityTimeout", "an integer",
                                                [](const Positioning &state) { return state.velocityTimeout; }));
    fields.push_back(flagField("respectPriorities", &Positioning::respectPriorities));
    return fields;
}

/** Returns the highest position of an axis. Digital zoom extends the range of the lens. */
std::int32_t highestPosition(const Positioning &positioning, const Axis &axis) {
    const bool digital = &axis == &positioning.zoom && positioning.digitalZoom.enabled;
    return digital ? std::max(axis.maximum, positioning.digitalZoom.combinedMaximum) : axis.maximum;
}

std::optional<Problem> checkSoftLimits(const std::string &key, const SoftLimits &limits, std::int32_t lowest,
                                       std::int32_t highest, const std::string &range) {
    if (!limits.enabled) {
        return std::nullopt;
    }
    return firstOf({checkWithin(joinPath(key, "minimum"), limits.minimum, lowest, highest, range),
                    checkWithin(joinPath(key, "maximum"), limits.maximum, limits.minimum, highest,
                                joinPath(key, "minimum") + " to " + range.substr(range.rfind(' ') + 1))});
}

std::optional<Problem> checkAxis(const Positioning &positioning, const std::string &key, const Axis &axis) {
    const std::int32_t highest = highestPosition(positioning, axis);
    const std::string top = highest > axis.maximum ? "digitalZoom.combinedMaximum" : key + ".maximum";
    const std::string positions = key + ".minimum to " + top;
    const std::string speeds = "0 to " + key + ".maximumSpeed";
    return firstOf({checkAtLeast(key + ".maximum", axis.maximum, axis.minimum, key + ".minimum"),
                    checkWithin(key + ".position", axis.position, axis.minimum, highest, positions),
                    checkWithin(key + ".minimumSpeed", axis.minimumSpeed, 0, axis.maximumSpeed, speeds),
                    checkSoftLimits(key + ".softPosition", axis.softPosition, axis.minimum, highest, positions),
                    checkSoftLimits(key + ".softSpeed", axis.softSpeed, 0, axis.maximumSpeed, speeds)});
}

std::optional<Problem> checkPositioning(const Positioning &positioning) {
    for (std::size_t i = 0; i < kAxisCount; ++i) {
        if (auto problem = checkAxis(positioning, kAxisKeys.at(i), positioning.*kAxes.at(i))) {
            return problem;
        }
    }
    return std::nullopt;
}

/** Calls a function with the index of each axis, the axis, and the receiver of its events. */
template <typename Function>
void forEachAxis(const Scope<Positioning> &scope, Function function) {
    for (std::size_t i = 0; i < kAxisCount; ++i) {
        Axis &axis = scope.state.*kAxes.at(i);
        const DriveReport report = [&scope, i](double time, const char *kind, nlohmann::json members) {
            members["axis"] = kAxisKeys.at(i);
            scope.model.report(targetId(Positioning::definition().service, scope.index), time, kind,
                               std::move(members));
        };
        function(i, axis, report);
    }
}

DriveLimits limitsOf(const Positioning &positioning, const Axis &axis) {
    return limitsOf(axis, highestPosition(positioning, axis));
}

void advancePositioning(const Scope<Positioning> &scope) {
    forEachAxis(scope, [&](std::size_t /*i*/, Axis &axis, const DriveReport &report) {
        advance(axis, scope.model.now(), report);
    });
}

double nextPositioningTime(const Positioning &state) {
    return std::min({nextTime(state.pan), nextTime(state.tilt), nextTime(state.zoom)});
}

void applyAllLimits(const Scope<Positioning> &scope) {
    forEachAxis(scope, [&](std::size_t /*i*/, Axis &axis, const DriveReport &report) {
        applyLimits(axis, limitsOf(scope.state, axis), scope.model.now(), report);
    });
}

void afterSet(const Scope<Positioning> &scope, const Positioning &before) {
    forEachAxis(scope, [&](std::size_t i, Axis &axis, const DriveReport &report) {
        afterSet(axis, before.*kAxes.at(i), limitsOf(scope.state, axis), scope.model.now(), report);
    });
}

/** Stops all motors where they are, because a restart cuts their power. Keeps positions and settings. */
void restartPositioning(const Scope<Positioning> &scope, const Positioning & /*start*/) {
    forEachAxis(scope, [&](std::size_t /*i*/, Axis &axis, const DriveReport &report) {
        if (axis.move) {
            halt(axis);
            report(scope.model.now(), "move_stopped", {{"position", axis.position}});
        }
        axis.priority.reset();
    });
    scope.state.velocityTimeout = kEndless;
}

/** Command of each axis; nothing for an axis that continues its present move. */
using AxisMoves = std::array<std::optional<DriveMove>, kAxisCount>;

/** Returns true if a present move takes precedence over a command. */
bool isOutranked(const Positioning &state, const AxisMoves &moves, std::int32_t priority) {
    for (std::size_t i = 0; i < kAxisCount; ++i) {
        const Axis &axis = state.*kAxes.at(i);
        if (state.respectPriorities && moves.at(i) && axis.move && axis.priority && priority > *axis.priority) {
            return true;
        }
    }
    return false;
}

Answer commandAxes(const Scope<Positioning> &scope, const AxisMoves &moves, std::int32_t priority) {
    if (isOutranked(scope.state, moves, priority)) {
        return {wire::kNotSupported};
    }
    forEachAxis(scope, [&](std::size_t i, Axis &axis, const DriveReport &report) {
        if (moves.at(i)) {
            axis.priority = priority;
            command(axis, *moves.at(i), limitsOf(scope.state, axis), scope.model.now(), report);
        }
    });
    return {};
}

Answer moveToPosition(const Scope<Positioning> &scope, std::uint8_t panEnable, std::int32_t pan, double panFraction,
                      std::uint8_t tiltEnable, std::int32_t tilt, double tiltFraction, std::uint8_t zoomEnable,
                      std::int32_t zoom, double zoomFraction, std::int32_t priority) {
    return moveAxes(scope,
                    {{{panEnable != 0, pan, panFraction},
                      {tiltEnable != 0, tilt, tiltFraction},
                      {zoomEnable != 0, zoom, zoomFraction}}},
                    priority);
}

Answer setVelocityWithTimeout(const Scope<Positioning> &scope, std::uint8_t panEnable, std::int32_t pan,
                              std::uint8_t tiltEnable, std::int32_t tilt, std::uint8_t zoomEnable, std::int32_t zoom,
                              std::int32_t priority, std::uint32_t timeoutMilliseconds) {
    constexpr double kMillisecondsPerSecond = 1000.0;
    const bool endless = timeoutMilliseconds == 0 || timeoutMilliseconds == kEndless;
    const std::array<bool, kAxisCount> enabled = {panEnable != 0, tiltEnable != 0, zoomEnable != 0};
    const std::array<std::int32_t, kAxisCount> velocities = {pan, tilt, zoom};
    AxisMoves moves;
    for (std::size_t i = 0; i < kAxisCount; ++i) {
        if (enabled.at(i)) {
            const double seconds = timeoutMilliseconds / kMillisecondsPerSecond;
            moves.at(i) = moveAt(velocities.at(i), endless ? kNever : scope.model.now() + seconds);
        }
    }
    Answer answer = commandAxes(scope, moves, priority);
    if (answer.status == wire::kSuccess) {
        scope.state.velocityTimeout = endless ? kEndless : timeoutMilliseconds;
    }
    return answer;
}

Answer setVelocity(const Scope<Positioning> &scope, std::uint8_t panEnable, std::int32_t pan, std::uint8_t tiltEnable,
                   std::int32_t tilt, std::uint8_t zoomEnable, std::int32_t zoom, std::int32_t priority) {
    return setVelocityWithTimeout(scope, panEnable, pan, tiltEnable, tilt, zoomEnable, zoom, priority,
                                  scope.state.velocityCommandTimeout);
}

/** Handles the operations that read soft limits. */
template <SoftLimits Axis::*limits>
Answer getSoftLimits(const Scope<Positioning> &scope) {
    Answer answer;
    for (const auto axis : kAxes) {
        const SoftLimits &soft = scope.state.*axis.*limits;
        for (const nlohmann::json &value : results(soft.enabled, soft.minimum, soft.maximum).results) {
            answer.results.push_back(value);
        }
    }
    return answer;
}

/** Handles the operations that read the limits of the mechanics. */
template <std::int32_t Axis::*minimum, std::int32_t Axis::*maximum>
Answer getLimits(const Scope<Positioning> &scope) {
    const Positioning &state = scope.state;
    return results(state.pan.*minimum, state.pan.*maximum, state.tilt.*minimum, state.tilt.*maximum,
                   state.zoom.*minimum, state.zoom.*maximum);
}

Answer setSoftVelocityLimits(const Scope<Positioning> &scope, std::uint8_t panEnable, std::int32_t panMin,
                             std::int32_t panMax, std::uint8_t tiltEnable, std::int32_t tiltMin, std::int32_t tiltMax,
                             std::uint8_t zoomEnable, std::int32_t zoomMin, std::int32_t zoomMax) {
    const std::array<SoftLimits, kAxisCount> wanted = {SoftLimits{panEnable != 0, panMin, panMax},
                                                       SoftLimits{tiltEnable != 0, tiltMin, tiltMax},
                                                       SoftLimits{zoomEnable != 0, zoomMin, zoomMax}};
    Positioning changed = scope.state;
    for (std::size_t i = 0; i < kAxisCount; ++i) {
        if (wanted.at(i).enabled) {
            (changed.*kAxes.at(i)).softSpeed = wanted.at(i);
        }
    }
    if (checkPositioning(changed)) {
        return {wire::kInvalidArgument};
    }
    scope.state = std::move(changed);
    applyAllLimits(scope);
    return {};
}

Answer clearVelocityLimits(const Scope<Positioning> &scope, std::uint8_t pan, std::uint8_t tilt, std::uint8_t zoom) {
    const std::array<bool, kAxisCount> cleared = {pan != 0, tilt != 0, zoom != 0};
    for (std::size_t i = 0; i < kAxisCount; ++i) {
        if (cleared.at(i)) {
            (scope.state.*kAxes.at(i)).softSpeed.enabled = false;
        }
    }
    applyAllLimits(scope);
    return {};
}

Operations<Positioning> positioningOperations() {
    using Target = const Scope<Positioning> &;
    return {
        operation("clear_velocity_limits_send", clearVelocityLimits),
        operation(
            "get_digital_zoom_enable_send", +[](Target target) { return results(target.state.digitalZoom.enabled); }),
        operation("get_implementation_position_limits_send", getLimits<&Axis::minimum, &Axis::maximum>),
        operation("get_implementation_velocity_limits_send", getLimits<&Axis::minimumSpeed, &Axis::maximumSpeed>),
        operation(
            "get_max_optical_and_digital_zoom_send",
            +[](Target target) {
                const DigitalZoom &digital = target.state.digitalZoom;
                return results(target.state.zoom.maximum, digital.maximum, digital.combinedMaximum);
            }),
        operation(
            "get_position_send",
            +[](Target target) {
                const Positioning &state = target.state;
                return results(state.pan.position, state.tilt.position, state.zoom.position);
            }),
        operation("get_soft_position_limits_send", getSoftLimits<&Axis::softPosition>),
        operation("get_soft_velocity_limits_send", getSoftLimits<&Axis::softSpeed>),
        operation(
            "get_velocity_command_timeout_send",
            +[](Target target) { return results(target.state.velocityCommandTimeout); }),
        operation("move_to_position_with_speed_percentage_send", moveToPosition),
        operation("set_soft_velocity_limits_send", setSoftVelocityLimits),
        operation(
            "set_velocity_command_timeout_send",
            +[](Target target, std::uint32_t milliseconds) {
                target.state.velocityCommandTimeout = milliseconds;
                return Answer{};
            }),
        operation("set_velocity_send", setVelocity),
        operation("set_velocity_with_timeout_send", setVelocityWithTimeout),
    };
}

} // namespace

Answer moveAxes(const Scope<Positioning> &scope, const std::array<Destination, kAxisCount> &destinations,
                std::int32_t priority) {
    AxisMoves moves;
    for (std::size_t i = 0; i < kAxisCount; ++i) {
        const Destination &wanted = destinations.at(i);
        if (!wanted.enabled) {
            continue;
        }
        const DriveLimits limits = limitsOf(scope.state, scope.state.*kAxes.at(i));
        if (!canReach(limits, wanted.position) || !std::isfinite(wanted.fraction) || wanted.fraction < 0.0) {
            return {wire::kInvalidArgument};
        }
        moves.at(i) = moveTo(wanted.position, wanted.fraction);
    }
    return commandAxes(scope, moves, priority);
}

const Definition<Positioning> &Positioning::definition() {
    static const Definition<Positioning> definition = {
        "positioning",
        positioningFields(),
        positioningOperations(),
        checkPositioning,
        TimeCourse<Positioning>{advancePositioning, nextPositioningTime, afterSet},
        restartPositioning};
    return definition;
}

} // namespace camera
