// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Ctrl-C during a check, which must restore what it has changed.
 */
#ifndef PTZCTL_CHECK_INTERRUPTION_H
#define PTZCTL_CHECK_INTERRUPTION_H

namespace ptzctl::check {

/** Notes SIGINT, SIGTERM and SIGHUP from now on instead of ending this process. */
void noteInterruptions();

/** Tests whether one has arrived. */
bool interrupted();

} // namespace ptzctl::check

#endif
