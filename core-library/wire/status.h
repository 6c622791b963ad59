// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Status codes of the stand-in library and of the simulated camera. 0 is success; codes below 100 come from a service,
 * the others from the library itself.
 */
#ifndef QUARNSNMP_STATUS_H
#define QUARNSNMP_STATUS_H

#include "zorva-core.h"

namespace wire {

enum Status : zorva_core_status {
    kSuccess = 0,
    kFailed = 1,           ///< the device failed to carry out the operation
    kInvalidArgument = 2,  ///< wrong number of arguments, or an argument of the wrong type or out of range
    kUnknownTarget = 3,    ///< the service has no such target
    kUnknownOperation = 4, ///< the service has no such operation
    kNotSupported = 5,     ///< the device does not support the operation, or not in its current mode
    kServiceDown = 6,      ///< the service exists but is not running

    kNotInitialised = 100, ///< zorva_core_init() has not been called
    kInvalidHandle = 101,  ///< the handle never existed, is closed, or is of another kind
    kUnreachable = 102,    ///< no process listens on the service's socket, or its directory is unsafe
    kTimedOut = 103,       ///< no response within the time limit
    kConnectionLost = 104, ///< the connection ended between request and response
    kBadResponse = 105,    ///< malformed response
    kNoMemory = 106        ///< the library ran out of memory
};

} // namespace wire

#endif
