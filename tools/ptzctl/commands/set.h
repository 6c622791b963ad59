// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * `set`, and the last step of all commands that write.
 */
#ifndef PTZCTL_SET_H
#define PTZCTL_SET_H

#include <vector>

#include "context.h"
#include "object_values.h"
#include "reading.h"

namespace ptzctl {

/**
 * Reads objects, writes them in one request, reads them again, and reports all three values. Objects that cannot be
 * read are written all the same.
 * @throws snmp::Failure when the camera refuses the request or does not answer
 */
void writeAndShow(Context &context, const std::vector<ptz::Assignment> &assignments);

/** Does the same with readings that the caller already has. @param before one for each assignment, in the same order */
void writeAndShow(Context &context, const std::vector<ptz::Assignment> &assignments,
                  const std::vector<ptz::Reading> &before);

/** Returns the instances of assignments. */
std::vector<ptz::Instance> instancesOf(const std::vector<ptz::Assignment> &assignments);

} // namespace ptzctl

#endif
