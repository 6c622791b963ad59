// SPDX-License-Identifier: Apache-2.0
#include "deadline.h"

#include <ctime>

#include <sys/syscall.h>
#include <unistd.h>

namespace standin {

Instant now() noexcept {
    timespec time{};
    ::syscall(SYS_clock_gettime, CLOCK_MONOTONIC, &time);
    return Instant(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

Deadline::Deadline(std::chrono::microseconds limit) noexcept : end_(now() + limit) {}

bool Deadline::remaining(timeval &timeout) const noexcept {
    const auto microseconds = std::chrono::duration_cast<std::chrono::microseconds>(end_ - now()).count();
    // The kernel treats a time-out of zero as no time-out.
    if (microseconds <= 0) {
        return false;
    }
    timeout.tv_sec = microseconds / 1000000;
    timeout.tv_usec = microseconds % 1000000;
    return true;
}

} // namespace standin
