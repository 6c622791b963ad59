// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Services that hang, and the time that reading from them may take.
 *
 * The agent has one thread. While it waits for a service that does not answer, it answers nobody. A read that fails
 * after a second or more therefore holds back further reads of its service: for ten seconds they fail at once, as the
 * slow one did. Then one read tries again. Any call that succeeds ends the hold. Only reads for a GET and the first
 * read of a position cause a hold and are held back. Commands always reach the service; so do the polls of the poll
 * thread, which delay no request, and the few reads of a feature's start.
 *
 * Discovery is held back in the same way. Until the directory has answered for the first time, one slow discovery holds
 * back those of all services; after that, only those of its own service.
 */
#ifndef QUARNSNMP_SERVICE_HEALTH_H
#define QUARNSNMP_SERVICE_HEALTH_H

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include <pthread.h>

#include "zorva-core.h"

/** Record of one service. The agent's thread and the poll thread use it at the same time. */
struct ServiceHealth {
    std::atomic<int64_t> heldUntil{0}; ///< end of the hold in nanoseconds of the monotonic clock; 0 without a hold
    std::atomic<zorva_core_status> status{0}; ///< result of the read that caused the hold
};

/** Start of a call. */
struct CallStart {
    bool held;                ///< true to fail at once, with `status`
    zorva_core_status status; ///< with `held` only
    int64_t time;             ///< nanoseconds of the monotonic clock; 0 for a call that is no read
};

/** One record for each service. Hidden, as the variable below, because every call of the module uses them. */
namespace service_health {
#define ZORVA_SERVICE(service) [[gnu::visibility("hidden")]] extern ServiceHealth service;
#include "service_calls.def"
} // namespace service_health

/** Thread that reads at present: the agent's, while it serves a GET. 0 for none. */
[[gnu::visibility("hidden")]] extern std::atomic<pthread_t> gReadingThread;

/**
 * Declares the further calls of the agent's thread as reads, which may be held back, or as other calls, as at first.
 * Agent's thread only.
 * @return the former state, for the caller to restore
 */
inline bool SetReading(bool reading) {
    const bool before = gReadingThread.load(std::memory_order_relaxed) != 0;
    gReadingThread.store(reading ? pthread_self() : 0, std::memory_order_relaxed);
    return before;
}

/** Starts a call while some thread reads. */
CallStart BeginRead(const ServiceHealth &health);

/** Records a call that failed. */
void RecordFailure(ServiceHealth &health, const CallStart &start, zorva_core_status status);

/** Starts a call of a service. Inline, because commands have nothing to do here. */
inline CallStart BeginCall(const ServiceHealth &health) {
    return gReadingThread.load(std::memory_order_relaxed) == 0 ? CallStart{false, 0, 0} : BeginRead(health);
}

/** Ends a call that was not held back, and records its outcome. @return `status` */
inline zorva_core_status EndCall(ServiceHealth &health, const CallStart &start, zorva_core_status status) {
    if (status != 0) {
        RecordFailure(health, start, status);
    } else if (health.heldUntil.load(std::memory_order_relaxed) != 0) {
        health.heldUntil = 0;
    }
    return status;
}

/** Discovers as zorva::core::getTargetIds() does, and fails at once while discovery is held back. */
bool DiscoverTargets(const char *serviceName, std::vector<std::string> &targetIds);

/** Returns true if the last discovery was held back because the directory hung. Try again once DirectoryAnswers(). */
bool LastDiscoveryHeld();

/** Returns true if the directory has answered, with or without targets, since ForgetHangs(). */
bool DirectoryAnswers();

/** Ends all holds, for a new start. */
void ForgetHangs();

#endif
