#include "positioning.h"

#include <array>

namespace camera {

namespace {

constexpr std::size_t kAxisCount = 3;
constexpr std::array<Axis Positioning::*, kAxisCount> kAxes = {&Positioning::pan, &Positioning::tilt,
                                                               &Positioning::zoom};
constexpr std::array<const char *, kAxisCount> kAxisKeys = {"pan", "tilt", "zoom"};

const Fields<SoftLimits> &softLimitFields() {
    static const Fields<SoftLimits> fields = {
        flagField("enabled", &SoftLimits::enabled),
        integerField("minimum", &SoftLimits::minimum),
        integerField("maximum", &SoftLimits::maximum),
    };
    return fields;
}

Fields<Axis> axisFields() {
    constexpr std::int32_t kFastest = std::numeric_limits<std::int32_t>::max();
    Fields<Axis> fields = {
        integerField("position", &Axis::position),
        integerField("minimum", &Axis::minimum),
        integerField("maximum", &Axis::maximum),
        flagField("endless", &Axis::endless),
        integerField("velocity", &Axis::velocity, -kFastest, kFastest),
        integerField("minimumSpeed", &Axis::minimumSpeed, 0, kFastest),
        integerField("maximumSpeed", &Axis::maximumSpeed, 0, kFastest),
    };
    addPart(fields, "softPosition", &Axis::softPosition, softLimitFields());
    addPart(fields, "softSpeed", &Axis::softSpeed, softLimitFields());
    return fields;
}

Fields<Positioning> positioningFields() {
    constexpr std::int32_t kLargest = std::numeric_limits<std::int32_t>::max();
    static const Fields<DigitalZoom> digitalZoomFields = {
        flagField("enabled", &DigitalZoom::enabled),
        integerField("maximum", &DigitalZoom::maximum, 0, kLargest),
        integerField("combinedMaximum", &DigitalZoom::combinedMaximum, 0, kLargest),
    };
    Fields<Positioning> fields;
    const Fields<Axis> ofAxis = axisFields();
    for (std::size_t i = 0; i < kAxisCount; ++i) {
        addPart(fields, kAxisKeys.at(i), kAxes.at(i), ofAxis);
    }
    addPart(fields, "digitalZoom", &Positioning::digitalZoom, digitalZoomFields);
    fields.push_back(integerField("velocityCommandTimeout", &Positioning::velocityCommandTimeout));
    fields.push_back(integerField("velocityTimeout", &Positioning::velocityTimeout));
    return fields;
}

/** The highest position of an axis: with digital zoom the zoom goes on beyond what the lens can do. */
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
                    checkWithin(key + ".velocity", axis.velocity, -axis.maximumSpeed, axis.maximumSpeed,
                                "as fast as " + key + ".maximumSpeed either way"),
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

/** Where a move of an axis ends; nothing when the axis cannot get there. */
std::optional<std::int32_t> destination(const Positioning &positioning, const Axis &axis, std::int32_t position) {
    std::int64_t wanted = position;
    if (axis.endless) {
        const std::int64_t turn = std::int64_t{axis.maximum} - axis.minimum + 1;
        wanted = axis.minimum + ((wanted - axis.minimum) % turn + turn) % turn;
    }
    if (wanted < axis.minimum || wanted > highestPosition(positioning, axis)) {
        return std::nullopt;
    }
    auto reached = static_cast<std::int32_t>(wanted);
    if (axis.softPosition.enabled) {
        reached = std::clamp(reached, axis.softPosition.minimum, axis.softPosition.maximum);
    }
    return reached;
}

bool isFraction(double value) {
    return value >= 0.0 && value <= 1.0;
}

Answer moveToPosition(const Scope<Positioning> &scope, std::uint8_t panEnable, std::int32_t pan, double panFraction,
                      std::uint8_t tiltEnable, std::int32_t tilt, double tiltFraction, std::uint8_t zoomEnable,
                      std::int32_t zoom, double zoomFraction, std::int32_t /*priority*/) {
    if ((panEnable != 0 && !isFraction(panFraction)) || (tiltEnable != 0 && !isFraction(tiltFraction)) ||
        (zoomEnable != 0 && !isFraction(zoomFraction))) {
        return {wire::kInvalidArgument};
    }
    return moveAxes(scope.state, {panEnable != 0, pan}, {tiltEnable != 0, tilt}, {zoomEnable != 0, zoom});
}

/** A velocity command is never refused for being too fast: the axis runs as fast as it can and may. */
void runAxis(Axis &axis, bool enabled, std::int32_t velocity) {
    if (enabled) {
        const std::int32_t fastest = axis.softSpeed.enabled ? axis.softSpeed.maximum : axis.maximumSpeed;
        axis.velocity = std::clamp(velocity, -fastest, fastest);
    }
}

Answer setVelocityWithTimeout(const Scope<Positioning> &scope, std::uint8_t panEnable, std::int32_t pan,
                              std::uint8_t tiltEnable, std::int32_t tilt, std::uint8_t zoomEnable, std::int32_t zoom,
                              std::int32_t /*priority*/, std::uint32_t timeoutMilliseconds) {
    runAxis(scope.state.pan, panEnable != 0, pan);
    runAxis(scope.state.tilt, tiltEnable != 0, tilt);
    runAxis(scope.state.zoom, zoomEnable != 0, zoom);
    scope.state.velocityTimeout = timeoutMilliseconds;
    return {};
}

Answer setVelocity(const Scope<Positioning> &scope, std::uint8_t panEnable, std::int32_t pan, std::uint8_t tiltEnable,
                   std::int32_t tilt, std::uint8_t zoomEnable, std::int32_t zoom, std::int32_t priority) {
    const std::uint32_t timeout = scope.state.velocityCommandTimeout;
    return setVelocityWithTimeout(scope, panEnable, pan, tiltEnable, tilt, zoomEnable, zoom, priority,
                                  timeout == 0 ? kEndless : timeout);
}

/** The answer of the operations that read limits with a flag per axis. */
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

/** The answer of the operations that read the limits of the mechanics. */
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
    scope.state = changed;
    return {};
}

Answer clearVelocityLimits(const Scope<Positioning> &scope, std::uint8_t pan, std::uint8_t tilt, std::uint8_t zoom) {
    const std::array<bool, kAxisCount> cleared = {pan != 0, tilt != 0, zoom != 0};
    for (std::size_t i = 0; i < kAxisCount; ++i) {
        if (cleared.at(i)) {
            (scope.state.*kAxes.at(i)).softSpeed.enabled = false;
        }
    }
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

Answer moveAxes(Positioning &positioning, const AxisMove &pan, const AxisMove &tilt, const AxisMove &zoom) {
    const std::array<AxisMove, kAxisCount> moves = {pan, tilt, zoom};
    Positioning changed = positioning;
    for (std::size_t i = 0; i < kAxisCount; ++i) {
        Axis &axis = changed.*kAxes.at(i);
        if (!moves.at(i).enabled) {
            continue;
        }
        const std::optional<std::int32_t> reached = destination(changed, axis, moves.at(i).position);
        if (!reached) {
            return {wire::kInvalidArgument};
        }
        axis.position = *reached;
        axis.velocity = 0;
    }
    positioning = changed;
    return {};
}

const Definition<Positioning> &Positioning::definition() {
    static const Definition<Positioning> definition = {"positioning", positioningFields(), positioningOperations(),
                                                       checkPositioning};
    return definition;
}

} // namespace camera
