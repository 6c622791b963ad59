// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * What every function of the interface is wrapped in: the callers are C code, through which no exception may pass.
 */
#ifndef QUARNSNMP_STANDIN_BOUNDARY_H
#define QUARNSNMP_STANDIN_BOUNDARY_H

#include <new>

#include "status.h"

namespace standin {

/** Runs `body`, which returns a status, and makes a status of what it throws. */
template <typename Body>
zorva_core_status guarded(const Body &body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc &) {
        return wire::kNoMemory;
    } catch (...) {
        return wire::kFailed;
    }
}

} // namespace standin

#endif
