// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * `traps`: reception of notifications.
 */
#ifndef PTZCTL_TRAPS_H
#define PTZCTL_TRAPS_H

#include <ostream>

#include "invocation.h"

namespace ptzctl {

/**
 * Receives notifications and prints each as one line, until Ctrl-C or up to the count of the invocation.
 * @throws snmp::Failure when the address is not available, or the library rejects the SNMPv3 user
 */
void receiveTraps(const Invocation &invocation, std::ostream &output, std::ostream &errors);

} // namespace ptzctl

#endif
