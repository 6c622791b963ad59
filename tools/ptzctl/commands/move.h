// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Commands that move the camera, switch a feature or change a setting. All throw snmp::Failure.
 */
#ifndef PTZCTL_MOVE_H
#define PTZCTL_MOVE_H

#include <string>
#include <vector>

#include "axes.h"
#include "context.h"

namespace ptzctl {

using AxisList = std::vector<const ptz::Axis *>;

/** Returns the axis of a name, or pan, tilt and zoom for "all". @throws std::invalid_argument for another word */
AxisList axesNamed(const std::string &which);

/** Sends a command to an axis, a stop as stop() does. */
void move(Context &context, const ptz::Axis &axis, const ptz::PositionCommand &command);

/**
 * Stops axes in one request or, if the camera refuses that, one by one. Reads nothing before, and repeats the request
 * without an answer.
 */
void stop(Context &context, const AxisList &axes);

/** Switches an automatic feature. @param feature kAutomaticFocus or kAutomaticIris */
void setAutomatic(Context &context, unsigned int feature, bool on);

/** Recalls a preset. @param number 1 to 255, and not above the number of presets that the camera reports */
void goToPreset(Context &context, int number);

/** Stores the present position as a preset. @param number as in goToPreset() */
void storePreset(Context &context, int number);

/** Switches a relay and verifies its state. @param number 1 to 255 */
void switchRelay(Context &context, int number, bool on);

/** Sets the time-out of continuous moves. @param milliseconds 0 for none */
void setTimeout(Context &context, const AxisList &axes, int milliseconds);

/** Restarts the camera. The response tells whether it has accepted the restart. */
void reboot(Context &context);

} // namespace ptzctl

#endif
