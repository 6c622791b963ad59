// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The statuses of the stand-in library and of the simulated camera. 0 is success; statuses below 100 come from a
 * service, the others from the library itself.
 */
#ifndef QUARNSNMP_STATUS_H
#define QUARNSNMP_STATUS_H

#include "zorva-core.h"

namespace wire {

enum Status : zorva_core_status {
    kSuccess = 0,
    kFailed = 1,           ///< the device could not do it
    kInvalidArgument = 2,  ///< an argument of the wrong type, number or range
    kUnknownTarget = 3,    ///< the service has no such target
    kUnknownOperation = 4, ///< the service has no such operation
    kNotSupported = 5,     ///< the device does not do this, or not in its present mode
    kServiceDown = 6,      ///< the service exists but is not running

    kNotInitialised = 100, ///< zorva_core_init() has not been called
    kInvalidHandle = 101,  ///< a handle that was never given out, is closed, or belongs to something else
    kUnreachable = 102,    ///< nothing listens where the service should be
    kTimedOut = 103,       ///< no answer in time
    kConnectionLost = 104, ///< the connection ended between request and answer
    kBadAnswer = 105,      ///< the answer could not be understood
    kNoMemory = 106        ///< memory ran out in the library
};

} // namespace wire

#endif
