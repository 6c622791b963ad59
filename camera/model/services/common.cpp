#include "common.h"

namespace camera {

const Fields<StepperMotor> &stepperFields() {
    constexpr std::int32_t kFastest = std::numeric_limits<std::int32_t>::max();
    static const Fields<StepperMotor> fields = {
        integerField("position", &StepperMotor::position),
        integerField("minimum", &StepperMotor::minimum),
        integerField("maximum", &StepperMotor::maximum),
        integerField("speed", &StepperMotor::speed, 0, kFastest),
        integerField("minimumSpeed", &StepperMotor::minimumSpeed, 0, kFastest),
        integerField("maximumSpeed", &StepperMotor::maximumSpeed, 0, kFastest),
    };
    return fields;
}

std::optional<Problem> checkStepper(const StepperMotor &motor) {
    return firstOf({checkAtLeast("maximum", motor.maximum, motor.minimum, "minimum"),
                    checkWithin("position", motor.position, motor.minimum, motor.maximum, "minimum to maximum"),
                    checkWithin("minimumSpeed", motor.minimumSpeed, 0, motor.maximumSpeed, "0 to maximumSpeed"),
                    checkWithin("speed", motor.speed, 0, motor.maximumSpeed, "0 to maximumSpeed")});
}

Answer moveStepper(StepperMotor &motor, std::int32_t position, std::int32_t speed) {
    if (position < motor.minimum || position > motor.maximum || speed < motor.minimumSpeed ||
        speed > motor.maximumSpeed) {
        return {wire::kInvalidArgument};
    }
    motor.position = position;
    motor.speed = speed;
    return {};
}

} // namespace camera
