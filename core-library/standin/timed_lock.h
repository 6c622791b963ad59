// SPDX-License-Identifier: Apache-2.0
/** @file A mutual-exclusion lock with a deadline. */
#ifndef QUARNSNMP_STANDIN_TIMED_LOCK_H
#define QUARNSNMP_STANDIN_TIMED_LOCK_H

#include <condition_variable>
#include <mutex>

#include "deadline.h"

namespace standin {

/**
 * Serialises operations that may take seconds. Built on a condition variable rather than std::timed_mutex, because
 * ThreadSanitizer does not see a wait of the latter on the monotonic clock.
 */
class TimedLock {
public:
    /** Waits for the lock. @return false when the deadline passes first */
    bool lockUntil(const Deadline &deadline) {
        std::unique_lock<std::mutex> lock(mutex_);
        while (isLocked_) {
            if (now() >= deadline.instant()) {
                return false;
            }
            released_.wait_until(lock, deadline.instant());
        }
        isLocked_ = true;
        return true;
    }

    /** Takes the lock if it is free. @return false when another thread holds it */
    bool tryLock() {
        const std::lock_guard<std::mutex> lock(mutex_);
        const bool wasFree = !isLocked_;
        isLocked_ = true;
        return wasFree;
    }

    /** Releases the lock and wakes one waiting thread. */
    void unlock() {
        const std::lock_guard<std::mutex> lock(mutex_);
        isLocked_ = false;
        released_.notify_one();
    }

private:
    std::mutex mutex_;
    std::condition_variable released_;
    bool isLocked_ = false;
};

} // namespace standin

#endif
