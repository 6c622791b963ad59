// SPDX-License-Identifier: Apache-2.0
/** @file Time limit of a call. */
#ifndef QUARNSNMP_STANDIN_DEADLINE_H
#define QUARNSNMP_STANDIN_DEADLINE_H

#include <chrono>

#include <sys/time.h>

namespace standin {

using Instant = std::chrono::steady_clock::time_point;

/** Longest duration of a call, including the wait for another thread's call and the time to connect. */
inline constexpr std::chrono::milliseconds kCallLimit{2000};

/**
 * Reads the kernel's monotonic clock. Bypasses the C library, because a preloaded library may present a faster clock to
 * the process, while socket time-outs always follow the kernel's.
 */
Instant now() noexcept;

/** The moment at which a call gives up. */
class Deadline {
public:
    /** Sets the deadline to `limit` from now. */
    explicit Deadline(std::chrono::microseconds limit) noexcept;

    Instant instant() const noexcept {
        return end_;
    }

    /** Converts the remaining time to a socket time-out. @return false, with `timeout` unchanged, when none is left */
    bool remaining(timeval &timeout) const noexcept;

private:
    Instant end_;
};

} // namespace standin

#endif
