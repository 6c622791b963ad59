// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The live screen of `watch`.
 */
#ifndef PTZCTL_SCREEN_H
#define PTZCTL_SCREEN_H

#include <ctime>
#include <string>

#include "command_line.h"

namespace ptzctl {

/** The line above a look: the camera when there is one only, since several have headings; when, and how it goes on. */
std::string screenHeading(const Invocation &invocation, std::time_t now);

/**
 * A look as it is shown after another one.
 * @param text      its lines
 * @param previous  the lines of the look before; empty for the first
 * @return the lines, with a mark at those that are new; with none when there are more or fewer lines than before
 */
std::string changesMarked(const std::string &text, const std::string &previous, const Style &style);

} // namespace ptzctl

#endif
