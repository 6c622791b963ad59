// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Arithmetic on 32-bit integers that wraps instead of overflowing, for values of services, which may be any number.
 */
#ifndef QUARNSNMP_WRAPPING_H
#define QUARNSNMP_WRAPPING_H

#include <cstdint>

inline int32_t WrappingAdd(int32_t left, int32_t right) {
    return static_cast<int32_t>(static_cast<uint32_t>(left) + static_cast<uint32_t>(right));
}

inline int32_t WrappingSubtract(int32_t left, int32_t right) {
    return static_cast<int32_t>(static_cast<uint32_t>(left) - static_cast<uint32_t>(right));
}

inline int32_t WrappingMultiply(int32_t left, int32_t right) {
    return static_cast<int32_t>(static_cast<uint32_t>(left) * static_cast<uint32_t>(right));
}

#endif
