// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Check of the output.
 */
#ifndef PTZCTL_OUTPUT_H
#define PTZCTL_OUTPUT_H

#include <ostream>

namespace ptzctl {

/**
 * Flushes a stream and checks that all of it was written.
 * @throws snmp::Failure with Cause::BadResponse, for example for a full device or a closed pipe
 */
void requireWritten(std::ostream &output);

} // namespace ptzctl

#endif
