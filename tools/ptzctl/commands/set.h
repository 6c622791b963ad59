// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * `set`, and the last step of all commands that write.
 */
#ifndef PTZCTL_SET_H
#define PTZCTL_SET_H

#include <optional>
#include <vector>

#include "camera_requests.h"
#include "context.h"
#include "failure.h"
#include "object_values.h"
#include "reading.h"

namespace ptzctl {

/**
 * Writes objects in one request and reports the values before, the values sent, and the values after.
 * @throws snmp::Failure when the camera refuses the request, does not answer, or answers other values afterwards
 */
void writeAndShow(Context &context, const std::vector<ptz::Assignment> &assignments);

/**
 * Writes one object and reports its value in the response as the value after. It suits a write that ends the agent.
 * @throws snmp::Failure as writeAndShow()
 */
void writeAndShowResponse(Context &context, const ptz::Assignment &assignment);

/**
 * Writes objects in one request or, if the camera refuses that, one by one. Objects that the camera does not have are
 * reported and omitted.
 * @throws snmp::Failure as writeAndShow(), after all objects have been tried; also if the camera has none of them
 */
void writePresent(Context &context, const std::vector<ptz::Assignment> &assignments, const ptz::Delivery &delivery);

/** Makes the failure of a camera that has accepted a command and does not answer any more. */
snmp::Failure silentAfterCommand(const snmp::Failure &failure);

} // namespace ptzctl

#endif
