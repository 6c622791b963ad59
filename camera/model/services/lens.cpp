// SPDX-License-Identifier: Apache-2.0
#include "lens.h"

#include <algorithm>

namespace camera {

namespace {

/** Returns true if the automatic mode controls a drive, so manual commands are refused. */
template <typename State>
bool isAutomatic(const Scope<State> &scope) {
    if constexpr (std::is_base_of_v<AutoFocus, State>) {
        return !scope.state.manualMode;
    } else if constexpr (std::is_same_v<State, Iris>) {
        const auto exposure = scope.model.template sibling<Exposure>(scope.index);
        return exposure && !exposure->state.manualMode;
    } else {
        return false;
    }
}

/** Starts a manual move. @return kNotSupported in automatic mode */
template <typename State>
Answer moveByHand(const Scope<State> &scope, DriveMove move) {
    if (isAutomatic(scope)) {
        return {wire::kNotSupported};
    }
    commandDrive(scope, std::move(move));
    return {};
}

/** Handles `set_position_send` of a lens drive. @return kInvalidArgument outside its range */
template <typename State, typename Position>
Answer moveLensDrive(const Scope<State> &scope, Position position) {
    if (!canReach(limitsOf(scope.state), position)) {
        return {wire::kInvalidArgument};
    }
    return moveByHand(scope, moveTo(position, scope.state.speed));
}

/** Handles `set_velocity_send` of a lens drive. */
template <typename State>
Answer runLensDrive(const Scope<State> &scope, std::int32_t direction, std::int32_t run) {
    if (direction < 0 || direction > 1 || run < 0 || run > 1) {
        return {wire::kInvalidArgument};
    }
    const std::int32_t speed = run * scope.state.speed;
    return moveByHand(scope, moveAt(direction == 0 ? speed : -speed));
}

/** Handles `set_position_send` of a stepper motor. */
template <typename State>
Answer setStepperPosition(const Scope<State> &scope, std::int32_t position, std::int32_t speed) {
    StepperMotor &motor = scope.state;
    if (!canReach(limitsOf(motor), position) || speed < 0) {
        return {wire::kInvalidArgument};
    }
    const std::int32_t allowed = speed == 0 ? 0 : std::clamp(speed, motor.minimumSpeed, motor.maximumSpeed);
    Answer answer = moveByHand(scope, speed == 0 ? DriveMove{} : moveTo(position, allowed));
    if (answer.status == wire::kSuccess) {
        motor.speed = allowed;
    }
    return answer;
}

/** Handles `get_limits_send`. */
template <typename State>
Answer stepperLimits(const Scope<State> &scope) {
    const StepperMotor &motor = scope.state;
    return results(motor.minimum, motor.maximum, motor.minimumSpeed, motor.maximumSpeed);
}

/** Handles the operations that read position and range of a lens drive. */
template <typename State>
Answer lensPosition(const Scope<State> &scope) {
    return results(scope.state.position, scope.state.minimum, scope.state.maximum);
}

template <typename State>
Answer getManualMode(const Scope<State> &scope) {
    return results(scope.state.manualMode);
}

/** Handles `set_manual_mode_enable_send`, with the same effects as a `set` of the mode. */
template <typename State>
Answer setManualMode(const Scope<State> &scope, std::uint8_t enable) {
    const State before = scope.state;
    scope.state.manualMode = enable != 0;
    State::definition().timeCourse->afterSet(scope, before);
    return {};
}

/** Starts and counts a requested automatic focus run. */
template <typename State, std::uint32_t State::*runs>
Answer runAutoFocus(const Scope<State> &scope) {
    if (!isAutomatic(scope)) {
        return {wire::kNotSupported};
    }
    ++(scope.state.*runs);
    startFocusRun(focusMoment(scope));
    return {};
}

template <typename State>
TimeCourse<State> focusCourse() {
    return {[](const Scope<State> &scope) { advanceFocus(focusMoment(scope)); },
            [](const State &state) { return nextFocusTime(state, state); },
            [](const Scope<State> &scope, const State &before) {
                afterDriveSet(scope, before);
                applyFocusMode(focusMoment(scope));
            }};
}

template <typename State>
double nextDriveTime(const State &state) {
    return nextTime(state);
}

/** Stops the drive where it is, because a restart cuts its power. */
template <typename State>
void restartDrive(const Scope<State> &scope, const State & /*start*/) {
    stopDrive(scope);
}

template <typename State>
void restartFocus(const Scope<State> &scope, const State & /*start*/) {
    stopFocus(focusMoment(scope));
}

/** Moves the iris to its automatic position if the exposure is automatic. */
void applyExposure(const Scope<Iris> &iris) {
    const std::int64_t wanted = iris.state.automaticPosition;
    const bool rests = !iris.state.move && iris.state.position == wanted;
    const bool onItsWay =
        iris.state.move && iris.state.move->kind == DriveMove::Kind::toPosition && iris.state.move->target == wanted;
    if (isAutomatic(iris) && !rests && !onItsWay) {
        commandDrive(iris, moveTo(wanted, iris.state.speed));
    }
}

void afterIrisSet(const Scope<Iris> &scope, const Iris &before) {
    afterDriveSet(scope, before);
    applyExposure(scope);
}

void afterExposureSet(const Scope<Exposure> &scope, const Exposure &before) {
    const auto iris = scope.model.sibling<Iris>(scope.index);
    if (!iris || scope.state.manualMode == before.manualMode) {
        return;
    }
    if (scope.state.manualMode) {
        stopDrive(*iris);
    } else {
        applyExposure(*iris);
    }
}

} // namespace

const Definition<FocusStepper> &FocusStepper::definition() {
    static const Definition<FocusStepper> definition = [] {
        Fields<FocusStepper> fields;
        addBase(fields, stepperFields());
        fields.push_back(integerField("secondPosition", &FocusStepper::secondPosition));
        addBase(fields, autoFocusFields());
        fields.push_back(integerField("quickAutoFocusRuns", &FocusStepper::quickAutoFocusRuns));
        return Definition<FocusStepper>{
            "focus_stepper",
            fields,
            {
                operation("get_limits_send", stepperLimits<FocusStepper>),
                operation("get_manual_mode_enable_send", getManualMode<FocusStepper>),
                operation(
                    "get_position_send",
                    +[](const Scope<FocusStepper> &target) {
                        return results(target.state.position, target.state.secondPosition);
                    }),
                operation("set_manual_mode_enable_send", setManualMode<FocusStepper>),
                operation("set_position_send", setStepperPosition<FocusStepper>),
                operation("start_quick_auto_focus_send", runAutoFocus<FocusStepper, &FocusStepper::quickAutoFocusRuns>),
            },
            [](const FocusStepper &state) {
                return firstOf({checkStepper(state), checkWithin("sharpPosition", state.sharpPosition, state.minimum,
                                                                 state.maximum, "minimum to maximum")});
            },
            focusCourse<FocusStepper>(),
            restartFocus<FocusStepper>};
    }();
    return definition;
}

const Definition<ZoomStepper> &ZoomStepper::definition() {
    static const Definition<ZoomStepper> definition = [] {
        Fields<ZoomStepper> fields;
        addBase(fields, stepperFields());
        fields.push_back(fieldOfViewField(&ZoomStepper::fieldOfView));
        fields.push_back(integerField("magnification", &ZoomStepper::magnification, kNoMagnification));
        return Definition<ZoomStepper>{
            "zoom_stepper",
            fields,
            {
                operation("get_limits_send", stepperLimits<ZoomStepper>),
                operation(
                    "get_position_send",
                    +[](const Scope<ZoomStepper> &target) { return results(target.state.position); }),
                operation("set_position_send", setStepperPosition<ZoomStepper>),
            },
            [](const ZoomStepper &state) { return checkStepper(state); },
            TimeCourse<ZoomStepper>{advanceDrive, nextDriveTime, afterDriveSet},
            restartDrive};
    }();
    return definition;
}

const Definition<LensFocus> &LensFocus::definition() {
    static const Definition<LensFocus> definition = [] {
        Fields<LensFocus> fields;
        addBase(fields, lensDriveFields<std::int32_t>());
        addBase(fields, autoFocusFields());
        fields.push_back(integerField("autoFocusRuns", &LensFocus::autoFocusRuns));
        return Definition<LensFocus>{
            "lens_focus",
            fields,
            {
                operation("do_auto_focus_send", runAutoFocus<LensFocus, &LensFocus::autoFocusRuns>),
                operation("get_manual_focus_position_send", lensPosition<LensFocus>),
                operation("get_manual_mode_enable_send", getManualMode<LensFocus>),
                operation("set_manual_focus_position_send", moveLensDrive<LensFocus, std::int32_t>),
                operation("set_manual_mode_enable_send", setManualMode<LensFocus>),
                operation("set_velocity_send", runLensDrive<LensFocus>),
            },
            [](const LensFocus &state) {
                return checkLensDrive<std::int32_t>(state, "sharpPosition", state.sharpPosition);
            },
            focusCourse<LensFocus>(),
            restartFocus<LensFocus>};
    }();
    return definition;
}

const Definition<Iris> &Iris::definition() {
    static const Definition<Iris> definition = [] {
        Fields<Iris> fields;
        addBase(fields, lensDriveFields<std::uint32_t>());
        fields.push_back(integerField("automaticPosition", &Iris::automaticPosition));
        return Definition<Iris>{"iris",
                                fields,
                                {
                                    operation("get_position_send", lensPosition<Iris>),
                                    operation("set_position_send", moveLensDrive<Iris, std::uint32_t>),
                                    operation("set_velocity_send", runLensDrive<Iris>),
                                },
                                [](const Iris &state) {
                                    return checkLensDrive<std::uint32_t>(state, "automaticPosition",
                                                                         state.automaticPosition);
                                },
                                TimeCourse<Iris>{advanceDrive, nextDriveTime, afterIrisSet},
                                restartDrive};
    }();
    return definition;
}

const Definition<Exposure> &Exposure::definition() {
    static const Definition<Exposure> definition = {
        "exposure",
        {flagField("manualMode", &Exposure::manualMode)},
        {
            operation("get_manual_mode_enable_send", getManualMode<Exposure>),
            operation("set_manual_mode_enable_send", setManualMode<Exposure>),
        },
        [](const Exposure & /*state*/) -> std::optional<Problem> { return std::nullopt; },
        // The exposure itself has no timed events, but its changes affect the iris.
        TimeCourse<Exposure>{[](const Scope<Exposure> & /*scope*/) {},
                             [](const Exposure & /*state*/) { return kNever; }, afterExposureSet}};
    return definition;
}

} // namespace camera
