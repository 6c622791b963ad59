// SPDX-License-Identifier: Apache-2.0
/** @file Exception barrier around the functions of the interface, whose callers may be C code. */
#ifndef QUARNSNMP_STANDIN_BOUNDARY_H
#define QUARNSNMP_STANDIN_BOUNDARY_H

#include <new>

#include "status.h"

namespace standin {

/** Runs `body`, which returns a status, and converts an exception into a status. */
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
