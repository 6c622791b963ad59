// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Drives of a lens, shared by its services: motors with one speed, and stepper motors.
 */
#ifndef QUARNSNMP_CAMERA_LENS_DRIVES_H
#define QUARNSNMP_CAMERA_LENS_DRIVES_H

#include "camera_model.h"
#include "drive.h"

namespace camera {

/** Stepper motor: positions in steps, speeds in steps per second. */
struct StepperMotor : Drive<std::int32_t> {
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
    std::int32_t speed = 0; ///< of the last commanded move; 0 before the first
    std::int32_t minimumSpeed = 0;
    std::int32_t maximumSpeed = 0;
};

/** Returns the field records of a stepper motor. */
const Fields<StepperMotor> &stepperFields();

/** Checks the fields of a stepper motor against each other. */
std::optional<Problem> checkStepper(const StepperMotor &motor);

/** Returns the limits of a stepper motor. Commanded speeds are in steps per second. */
DriveLimits limitsOf(const StepperMotor &motor);

/** Default speed of a lens drive, in device units per second. */
inline constexpr std::int32_t kUsualLensSpeed = 1000;

/** Motor with one speed; positions in device units. */
template <typename Position>
struct LensDrive : Drive<Position> {
    Position minimum = 0;
    Position maximum = 0;
    std::int32_t speed = kUsualLensSpeed; ///< in device units per second
};

/** Returns the field records of a lens drive. */
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

/** Checks the fields of a lens drive against each other. @param automaticKey  key of its automatic position */
template <typename Position>
std::optional<Problem> checkLensDrive(const LensDrive<Position> &drive, const std::string &automaticKey,
                                      Position automaticPosition) {
    const std::string range = "minimum to maximum";
    return firstOf({checkAtLeast("maximum", drive.maximum, drive.minimum, "minimum"),
                    checkWithin("position", drive.position, drive.minimum, drive.maximum, range),
                    checkWithin(automaticKey, automaticPosition, drive.minimum, drive.maximum, range)});
}

/** Returns the limits of a lens drive. Its speed is independent of the commanded one. */
template <typename Position>
DriveLimits limitsOf(const LensDrive<Position> &drive) {
    DriveLimits limits;
    limits.minimum = limits.lowest = static_cast<double>(drive.minimum);
    limits.maximum = limits.highest = static_cast<double>(drive.maximum);
    limits.slowest = limits.fastest = drive.speed;
    return limits;
}

/** Returns the receiver of the events of a target's drive. Must not outlive the scope. */
template <typename State>
DriveReport reporter(const Scope<State> &scope) {
    return [&scope](double time, const char *kind, nlohmann::json members) {
        scope.model.report(targetId(State::definition().service, scope.index), time, kind, std::move(members));
    };
}

/** Starts a command of a target's drive. */
template <typename State>
void commandDrive(const Scope<State> &scope, DriveMove move) {
    command(scope.state, std::move(move), limitsOf(scope.state), scope.model.now(), reporter(scope));
}

/** Stops a target's drive where it is; no effect at rest. */
template <typename State>
void stopDrive(const Scope<State> &scope) {
    commandDrive(scope, DriveMove{});
}

/** Updates a target that consists of a drive only. */
template <typename State>
void advanceDrive(const Scope<State> &scope) {
    advance(scope.state, scope.model.now(), reporter(scope));
}

/** Applies the consequences of changed fields for the drive. */
template <typename State>
void afterDriveSet(const Scope<State> &scope, const State &before) {
    afterSet(scope.state, before, limitsOf(scope.state), scope.model.now(), reporter(scope));
}

} // namespace camera

#endif
