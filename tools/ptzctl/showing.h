// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Commands that only read.
 */
#ifndef PTZCTL_SHOWING_H
#define PTZCTL_SHOWING_H

#include <string>
#include <vector>

#include "context.h"

namespace ptzctl {

/** `status`: everything at a glance. What the camera does not have is left out. */
void showStatus(Context &context);

/** `inputs`: the alarm inputs, one a line. @throws Failure when the camera has none */
void showInputs(Context &context);

/** `limits`: where the axes end, how fine they are, and how many presets there are. */
void showLimits(Context &context);

/** `timeouts`: when continuous moves end by themselves. */
void showTimeouts(Context &context);

/** `get`: objects by their names. @throws Failure when one of them cannot be read; the others are shown */
void showObjects(Context &context, const std::vector<std::string> &names);

} // namespace ptzctl

#endif
