// SPDX-License-Identifier: Apache-2.0
#include "lens_drives.h"

namespace camera {

const Fields<StepperMotor> &stepperFields() {
    static const Fields<StepperMotor> all = [] {
        constexpr std::int32_t kFastest = std::numeric_limits<std::int32_t>::max();
        Fields<StepperMotor> fields;
        addBase(fields, driveFields<std::int32_t>());
        fields.push_back(integerField("minimum", &StepperMotor::minimum));
        fields.push_back(integerField("maximum", &StepperMotor::maximum));
        fields.push_back(
            readOnlyField<StepperMotor>("speed", "an integer", [](const StepperMotor &motor) { return motor.speed; }));
        fields.push_back(integerField("minimumSpeed", &StepperMotor::minimumSpeed, 0, kFastest));
        fields.push_back(integerField("maximumSpeed", &StepperMotor::maximumSpeed, 0, kFastest));
        return fields;
    }();
    return all;
}

std::optional<Problem> checkStepper(const StepperMotor &motor) {
    return firstOf({checkAtLeast("maximum", motor.maximum, motor.minimum, "minimum"),
                    checkWithin("position", motor.position, motor.minimum, motor.maximum, "minimum to maximum"),
                    checkWithin("minimumSpeed", motor.minimumSpeed, 0, motor.maximumSpeed, "0 to maximumSpeed")});
}

DriveLimits limitsOf(const StepperMotor &motor) {
    DriveLimits limits;
    limits.minimum = limits.lowest = motor.minimum;
    limits.maximum = limits.highest = motor.maximum;
    limits.slowest = motor.minimumSpeed;
    limits.fastest = motor.maximumSpeed;
    return limits;
}

} // namespace camera
