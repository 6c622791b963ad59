// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The time that one call may take in all.
 */
#ifndef QUARNSNMP_STANDIN_DEADLINE_H
#define QUARNSNMP_STANDIN_DEADLINE_H

#include <chrono>

#include <sys/time.h>

namespace standin {

using Instant = std::chrono::steady_clock::time_point;

/** Longest duration of a call: waiting for another thread's call, connecting, sending and receiving together. */
inline constexpr std::chrono::milliseconds kCallLimit{2000};

/**
 * The kernel's monotonic clock. It is asked for without the C library, because a preloaded library may let the process
 * see a faster clock, while the time-outs of sockets always run on the kernel's.
 */
Instant now() noexcept;

/** A moment after which a call waits no longer. */
class Deadline {
public:
    /** A deadline that lies `limit` ahead. */
    explicit Deadline(std::chrono::microseconds limit) noexcept;

    Instant instant() const noexcept {
        return end;
    }

    /** The time left as a socket time-out. @return false when none is left; `left` is not written then */
    bool left(timeval &left) const noexcept;

private:
    Instant end;
};

} // namespace standin

#endif
