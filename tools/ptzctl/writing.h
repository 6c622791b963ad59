// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Writing objects, and showing what they held before, what was sent, and what they hold then.
 */
#ifndef PTZCTL_WRITING_H
#define PTZCTL_WRITING_H

#include <vector>

#include "context.h"

namespace ptzctl {

/**
 * Reads objects, writes them in one request, and reads them again. An object that cannot be read is written all the
 * same.
 * @throws Failure when the camera refuses the request or does not answer
 */
void writeAndShow(Context &context, const std::vector<Variable> &values);

/** As the other one, when somebody has read already. @param before  one for each value, in their order */
void writeAndShow(Context &context, const std::vector<Variable> &values, const std::vector<Reading> &before);

} // namespace ptzctl

#endif
