// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The drives in a lens, written once for the services that have them: motors with one speed, and stepper motors.
 */
#ifndef QUARNSNMP_CAMERA_LENS_DRIVES_H
#define QUARNSNMP_CAMERA_LENS_DRIVES_H

#include "camera_model.h"
#include "drive.h"

namespace camera {

/** A stepper motor: positions in steps, speeds in steps per second. */
struct StepperMotor : Drive<std::int32_t> {
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
    std::int32_t speed = 0; ///< of the last commanded move; 0 before the first
    std::int32_t minimumSpeed = 0;
    std::int32_t maximumSpeed = 0;
};

/** A stepper motor's records. */
const Fields<StepperMotor> &stepperFields();

/** Checks a stepper motor's fields against each other. */
std::optional<Problem> checkStepper(const StepperMotor &motor);

/** What bounds a stepper motor's moves; speeds are commanded in steps per second. */
DriveLimits limitsOf(const StepperMotor &motor);

/** Speed of a motor whose camera file does not say it, in device units per second. */
inline constexpr std::int32_t kUsualLensSpeed = 1000;

/** A motor that has one speed; positions in device units. */
template <typename Position>
struct LensDrive : Drive<Position> {
    Position minimum = 0;
    Position maximum = 0;
    std::int32_t speed = kUsualLensSpeed; ///< in device units per second
};

/** A lens drive's records. */
template <typename Position>
Fields<LensDrive<Position>> lensDriveFields() {
    using State = LensDrive<Position>;
    Fields<State> fields;
    addBase(fields, driveFields<Position>());
    fields.push_back(integerField("minimum", &State::minimum));
    fields.push_back(integerField("maximum", &State::maximum));
    fields.push_back(integerField("speed", &State::speed, 1));
    return fields;
}

/** Checks a lens drive's fields against each other; `automaticKey` is that of the position for the automatic. */
template <typename Position>
std::optional<Problem> checkLensDrive(const LensDrive<Position> &drive, const std::string &automaticKey,
                                      Position automaticPosition) {
    const std::string range = "minimum to maximum";
    return firstOf({checkAtLeast("maximum", drive.maximum, drive.minimum, "minimum"),
                    checkWithin("position", drive.position, drive.minimum, drive.maximum, range),
                    checkWithin(automaticKey, automaticPosition, drive.minimum, drive.maximum, range)});
}

/** What bounds a lens drive's moves; whatever speed is commanded, it has its own. */
template <typename Position>
DriveLimits limitsOf(const LensDrive<Position> &drive) {
    DriveLimits limits;
    limits.minimum = limits.lowest = static_cast<double>(drive.minimum);
    limits.maximum = limits.highest = static_cast<double>(drive.maximum);
    limits.slowest = limits.fastest = drive.speed;
    return limits;
}

/** Reports what happens to the drive of a target; must not outlive the scope. */
template <typename State>
DriveReport reporter(const Scope<State> &scope) {
    return [&scope](double time, const char *kind, nlohmann::json members) {
        scope.model.report(targetId(State::definition().service, scope.index), time, kind, std::move(members));
    };
}

/** Gives the drive of a target a command. */
template <typename State>
void commandDrive(const Scope<State> &scope, DriveMove move) {
    command(scope.state, std::move(move), limitsOf(scope.state), scope.model.now(), reporter(scope));
}

/** Stops the drive of a target where it is; does nothing when it rests. */
template <typename State>
void stopDrive(const Scope<State> &scope) {
    commandDrive(scope, DriveMove{});
}

/** What time does to a target that is nothing but a drive. */
template <typename State>
void advanceDrive(const Scope<State> &scope) {
    advance(scope.state, scope.model.now(), reporter(scope));
}

/** Draws the consequences for the drive of fields that were set. */
template <typename State>
void afterDriveSet(const Scope<State> &scope, const State &before) {
    afterSet(scope.state, before, limitsOf(scope.state), scope.model.now(), reporter(scope));
}

} // namespace camera

#endif
