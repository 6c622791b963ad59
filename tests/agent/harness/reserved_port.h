// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Ports for servers of tests that run at the same time.
 */
#ifndef QUARNSNMP_HARNESS_RESERVED_PORT_H
#define QUARNSNMP_HARNESS_RESERVED_PORT_H

#include <cstdint>

namespace harness {

/**
 * A UDP port of the loopback interface that was free when it was chosen. For as long as the object lives, no other
 * object of this class gets it, in any process. Unrelated programs may still take it; they seldom do, because it lies
 * below the range that the kernel chooses from.
 */
class ReservedPort {
public:
    /** @throws std::runtime_error when no free port is found */
    ReservedPort();
    ~ReservedPort();
    ReservedPort(const ReservedPort &) = delete;
    ReservedPort &operator=(const ReservedPort &) = delete;

    std::uint16_t number() const;

    /** Returns true if a process has bound the UDP port, on the loopback interface or on all. */
    static bool isBound(std::uint16_t number);

private:
    int marker_; ///< bound TCP socket of the same number, unused: the mark of the reservation
    std::uint16_t number_;
};

} // namespace harness

#endif
