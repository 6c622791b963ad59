// SPDX-License-Identifier: Apache-2.0
#include "axis.h"

#include <algorithm>

namespace camera {

namespace {

const Fields<SoftLimits> &softLimitFields() {
    static const Fields<SoftLimits> fields = {
        flagField("enabled", &SoftLimits::enabled),
        integerField("minimum", &SoftLimits::minimum),
        integerField("maximum", &SoftLimits::maximum),
    };
    return fields;
}

} // namespace

const Fields<Axis> &axisFields() {
    static const Fields<Axis> all = [] {
        constexpr std::int32_t kFastest = std::numeric_limits<std::int32_t>::max();
        Fields<Axis> fields;
        addBase(fields, driveFields<std::int32_t>());
        fields.push_back(integerField("minimum", &Axis::minimum));
        fields.push_back(integerField("maximum", &Axis::maximum));
        fields.push_back(flagField("endless", &Axis::endless));
        fields.push_back(readOnlyField<Axis>("priority", "an integer or null", [](const Axis &axis) {
            return axis.priority ? nlohmann::json(*axis.priority) : nlohmann::json();
        }));
        fields.push_back(integerField("minimumSpeed", &Axis::minimumSpeed, 0, kFastest));
        fields.push_back(integerField("maximumSpeed", &Axis::maximumSpeed, 0, kFastest));
        fields.push_back(integerField("acceleration", &Axis::acceleration, 0, kFastest));
        addPart(fields, "softPosition", &Axis::softPosition, softLimitFields());
        addPart(fields, "softSpeed", &Axis::softSpeed, softLimitFields());
        return fields;
    }();
    return all;
}

DriveLimits limitsOf(const Axis &axis, std::int32_t highest) {
    const SoftLimits &positions = axis.softPosition;
    const SoftLimits &speeds = axis.softSpeed;
    const auto allowed = [&speeds](std::int32_t speed) {
        return speeds.enabled ? std::clamp(speed, speeds.minimum, speeds.maximum) : speed;
    };
    DriveLimits limits;
    limits.minimum = axis.minimum;
    limits.maximum = highest;
    limits.lowest = positions.enabled ? positions.minimum : axis.minimum;
    limits.highest = positions.enabled ? positions.maximum : highest;
    limits.unitSpeed = axis.maximumSpeed - axis.minimumSpeed;
    limits.slowest = allowed(axis.minimumSpeed);
    limits.fastest = allowed(axis.maximumSpeed);
    limits.acceleration = axis.acceleration;
    limits.turn = axis.endless ? limits.maximum - limits.minimum + 1.0 : 0.0;
    limits.circles = axis.endless && !positions.enabled;
    return limits;
}

} // namespace camera
