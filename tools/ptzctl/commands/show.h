// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Commands that only read. All throw snmp::Failure.
 */
#ifndef PTZCTL_SHOW_H
#define PTZCTL_SHOW_H

#include <vector>

#include "context.h"
#include "object_table.h"

namespace ptzctl {

/** `status`: an overview without the objects that the camera does not have. */
void showStatus(Context &context);

/** `inputs`: the alarm inputs. @throws snmp::Failure when the camera has none */
void showInputs(Context &context);

/** `limits`: limits and resolution of the axes, and the number of presets. */
void showLimits(Context &context);

/** `timeouts`: time-outs of continuous moves. */
void showTimeouts(Context &context);

/** `get`: any objects. @throws snmp::Failure when one of them cannot be read, after the report of all others */
void showObjects(Context &context, const std::vector<ptz::Instance> &instances);

} // namespace ptzctl

#endif
