// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Commands that move the camera, switch something, or change a setting. All of them throw Failure.
 */
#ifndef PTZCTL_DRIVING_H
#define PTZCTL_DRIVING_H

#include <cstdint>
#include <string>
#include <vector>

#include "axes.h"
#include "context.h"

namespace ptzctl {

/** Sends a command to an axis. */
void drive(Context &context, const Axis &axis, const PositionCommand &command);

/** Stops one axis or, with "all", pan, tilt and zoom in one request; those of them that the camera does not have are
 * left out. */
void stop(Context &context, const std::string &which);

/** Switches the automatic focus or iris. @param feature one of the bits kAutomaticFocus and kAutomaticIris */
void setAutomatic(Context &context, unsigned int feature, bool on);

/** Goes to a preset, or stores the present position as one. @param number 1 to 255; no more than the camera says that
 * it has */
void goToPreset(Context &context, int number);
void storePreset(Context &context, int number);

/** Switches a relay and looks whether it has. @param number from 1, to 255 */
void switchRelay(Context &context, int number, bool on);

/** Sets when continuous moves of an axis, or of pan, tilt and zoom with "all", end. @param milliseconds 0 for never */
void setTimeout(Context &context, const std::string &which, int milliseconds);

/** Restarts the camera. */
void reboot(Context &context);

} // namespace ptzctl

#endif
