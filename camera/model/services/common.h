/**
 * @file
 * What several services have in common, written once: stepper motors, lens drives, and the manual mode.
 */
#ifndef QUARNSNMP_CAMERA_COMMON_H
#define QUARNSNMP_CAMERA_COMMON_H

#include "service.h"

namespace camera {

/** A stepper motor: positions in steps, speeds in steps per second. */
struct StepperMotor {
    std::int32_t position = 0;
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
    std::int32_t speed = 0; ///< of the last move; 0 before the first
    std::int32_t minimumSpeed = 0;
    std::int32_t maximumSpeed = 0;
};

/** A stepper motor's records. */
const Fields<StepperMotor> &stepperFields();

/** Checks a stepper motor's fields against each other. */
std::optional<Problem> checkStepper(const StepperMotor &motor);

/** Moves a stepper motor; kInvalidArgument beyond its positions or speeds. */
Answer moveStepper(StepperMotor &motor, std::int32_t position, std::int32_t speed);

/** The answer of `get_limits_send`. */
template <typename State>
Answer stepperLimits(const Scope<State> &scope) {
    const StepperMotor &motor = scope.state;
    return results(motor.minimum, motor.maximum, motor.minimumSpeed, motor.maximumSpeed);
}

/** What `set_position_send` does. */
template <typename State>
Answer setStepperPosition(const Scope<State> &scope, std::int32_t position, std::int32_t speed) {
    return moveStepper(scope.state, position, speed);
}

/** A drive in the lens that runs one way or the other, or to a position; positions in device units. */
template <typename Value>
struct LensDrive {
    Value position = 0;
    Value minimum = 0;
    Value maximum = 0;
    bool moving = false;
    std::int32_t direction = 0; ///< 0 or 1, the way of the last run
};

/** A lens drive's records. */
template <typename Value>
Fields<LensDrive<Value>> lensDriveFields() {
    using Drive = LensDrive<Value>;
    return {integerField("position", &Drive::position), integerField("minimum", &Drive::minimum),
            integerField("maximum", &Drive::maximum), flagField("moving", &Drive::moving),
            integerField("direction", &Drive::direction, 0, 1)};
}

/** Checks a lens drive's fields against each other. */
template <typename Value>
std::optional<Problem> checkLensDrive(const LensDrive<Value> &drive) {
    return firstOf({checkAtLeast("maximum", drive.maximum, drive.minimum, "minimum"),
                    checkWithin("position", drive.position, drive.minimum, drive.maximum, "minimum to maximum")});
}

/** Moves a lens drive to a position, which ends its run; kInvalidArgument beyond its range. */
template <typename Value>
Answer moveLensDrive(LensDrive<Value> &drive, Value position) {
    if (position < drive.minimum || position > drive.maximum) {
        return {wire::kInvalidArgument};
    }
    drive.position = position;
    drive.moving = false;
    return {};
}

/** What `set_velocity_send` of a lens drive does. */
template <typename State>
Answer runLensDrive(const Scope<State> &scope, std::int32_t direction, std::int32_t run) {
    if (direction < 0 || direction > 1 || run < 0 || run > 1) {
        return {wire::kInvalidArgument};
    }
    scope.state.direction = direction;
    scope.state.moving = run == 1;
    return {};
}

/** What `get_manual_mode_enable_send` does. */
template <typename State>
Answer getManualMode(const Scope<State> &scope) {
    return results(scope.state.manualMode);
}

/** What `set_manual_mode_enable_send` does. */
template <typename State>
Answer setManualMode(const Scope<State> &scope, std::uint8_t enable) {
    scope.state.manualMode = enable != 0;
    return {};
}

} // namespace camera

#endif
