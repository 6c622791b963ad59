// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A lock whose wait has an end.
 */
#ifndef QUARNSNMP_STANDIN_TURN_H
#define QUARNSNMP_STANDIN_TURN_H

#include <condition_variable>
#include <mutex>

#include "deadline.h"

namespace standin {

/**
 * Lets one thread at a time do something that may take seconds. A condition variable rather than std::timed_mutex,
 * because a thread sanitizer does not see the latter's wait on the monotonic clock.
 */
class Turn {
public:
    /** Waits for the turn. @return false when the deadline came first */
    bool take(const Deadline &deadline) {
        std::unique_lock<std::mutex> lock(mutex);
        while (taken) {
            if (now() >= deadline.instant()) {
                return false;
            }
            released.wait_until(lock, deadline.instant());
        }
        taken = true;
        return true;
    }

    /** Takes the turn if nobody has it. */
    bool tryTake() {
        const std::lock_guard<std::mutex> lock(mutex);
        const bool free = !taken;
        taken = true;
        return free;
    }

    /** Gives the turn to whoever waits. */
    void giveBack() {
        const std::lock_guard<std::mutex> lock(mutex);
        taken = false;
        released.notify_one();
    }

private:
    std::mutex mutex;
    std::condition_variable released;
    bool taken = false;
};

} // namespace standin

#endif
