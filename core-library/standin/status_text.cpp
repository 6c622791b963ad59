// SPDX-License-Identifier: Apache-2.0
#include "status.h"
#include "zorva-core.h"

const char *zorva::core::statusToString(zorva_core_status status) {
    switch (static_cast<wire::Status>(status)) {
    case wire::kSuccess:
        return "success";
    case wire::kFailed:
        return "the device failed";
    case wire::kInvalidArgument:
        return "invalid argument";
    case wire::kUnknownTarget:
        return "no such target";
    case wire::kUnknownOperation:
        return "no such operation";
    case wire::kNotSupported:
        return "not supported";
    case wire::kServiceDown:
        return "service is not running";
    case wire::kNotInitialised:
        return "library is not initialised";
    case wire::kInvalidHandle:
        return "invalid handle";
    case wire::kUnreachable:
        return "service cannot be reached";
    case wire::kTimedOut:
        return "no answer in time";
    case wire::kConnectionLost:
        return "connection lost";
    case wire::kBadResponse:
        return "answer not understood";
    case wire::kNoMemory:
        return "out of memory";
    }
    return "unknown status";
}
