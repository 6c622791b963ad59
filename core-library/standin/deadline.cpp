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

Deadline::Deadline(std::chrono::microseconds limit) noexcept : end(now() + limit) {}

bool Deadline::left(timeval &left) const noexcept {
    const auto microseconds = std::chrono::duration_cast<std::chrono::microseconds>(end - now()).count();
    // A time-out of nought would mean none at all.
    if (microseconds <= 0) {
        return false;
    }
    left.tv_sec = microseconds / 1000000;
    left.tv_usec = microseconds % 1000000;
    return true;
}

} // namespace standin
