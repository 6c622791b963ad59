// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The faults by family.
 */
#ifndef QUARNSNMP_CHECK_FAULT_FAMILIES_H
#define QUARNSNMP_CHECK_FAULT_FAMILIES_H

#include <vector>

#include "faults.h"

namespace wrong {

std::vector<Fault> objectFaults();      ///< objects that are absent, of another type or out of range
std::vector<Fault> consistencyFaults(); ///< values that contradict each other
std::vector<Fault> readFaults();        ///< GET, GETNEXT and GETBULK
std::vector<Fault> writeFaults();       ///< SETs of settings
std::vector<Fault> moveFaults();        ///< commands of axes and presets
std::vector<Fault> responseFaults();    ///< responses that do not match the request

} // namespace wrong

#endif
