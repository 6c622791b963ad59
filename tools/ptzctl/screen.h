// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Live screen of `watch`.
 */
#ifndef PTZCTL_SCREEN_H
#define PTZCTL_SCREEN_H

#include <ctime>
#include <string>

#include "invocation.h"

namespace ptzctl {

/** Writes the line above the status: the only camera, the time, and the interval. */
std::string screenHeading(const Invocation &invocation, std::time_t now);

/**
 * Marks the lines that differ from the previous screen. Without the same number of lines, no line is marked.
 * @param text      lines of the screen
 * @param previous  lines of the previous screen; empty for the first one
 */
std::string markChanges(const std::string &text, const std::string &previous, const Style &style);

} // namespace ptzctl

#endif
