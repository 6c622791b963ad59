// SPDX-License-Identifier: Apache-2.0
#include "service_health.h"

#include <chrono>
#include <cstring>

namespace {

constexpr int64_t kSlow = 1'000'000'000;      // shortest failed read that causes a hold
constexpr int64_t kHoldTime = 10'000'000'000; // length of a hold
constexpr zorva_core_status kNotFound = 1;    // of a discovery, which has no status of its own

/** Health of the discovery of one service. */
struct Discovery {
    const char *service;
    ServiceHealth health;
};

#define ZORVA_SERVICE(service) {#service, {}},
Discovery gDiscoveries[] = {
#include "service_calls.def"
};

ServiceHealth gDirectory;
// The agent's thread only, as all discovery.
bool gDirectoryAnswers = false;
bool gLastDiscoveryHeld = false;

int64_t Now() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void EndHold(ServiceHealth &health) {
    health.heldUntil = 0;
}

ServiceHealth &DiscoveryHealth(const char *serviceName) {
    for (Discovery &discovery : gDiscoveries) {
        if (std::strcmp(discovery.service, serviceName) == 0) {
            return discovery.health;
        }
    }
    return gDirectory;
}

} // namespace

std::atomic<pthread_t> gReadingThread{0};

namespace service_health {
#define ZORVA_SERVICE(service) ServiceHealth service;
#include "service_calls.def"
} // namespace service_health

CallStart BeginRead(const ServiceHealth &health) {
    if (gReadingThread != pthread_self()) {
        return {false, 0, 0};
    }
    const int64_t now = Now();
    return now < health.heldUntil ? CallStart{true, health.status, now} : CallStart{false, 0, now};
}

void RecordFailure(ServiceHealth &health, const CallStart &start, zorva_core_status status) {
    const int64_t now = start.time != 0 ? Now() : 0;
    if (now - start.time >= kSlow) {
        health.status = status;
        health.heldUntil = now + kHoldTime;
    }
}

bool DiscoverTargets(const char *serviceName, std::vector<std::string> &targetIds) {
    ServiceHealth &health = gDirectoryAnswers ? DiscoveryHealth(serviceName) : gDirectory;
    const bool formerlyReading = SetReading(true);
    const CallStart start = BeginCall(health);
    const bool found = !start.held && zorva::core::getTargetIds(serviceName, targetIds);
    if (!start.held) {
        EndCall(health, start, found ? 0 : kNotFound);
    }
    SetReading(formerlyReading);
    gLastDiscoveryHeld = start.held && !gDirectoryAnswers;
    gDirectoryAnswers = gDirectoryAnswers || found || health.heldUntil == 0;
    return found;
}

bool LastDiscoveryHeld() {
    return gLastDiscoveryHeld;
}

bool DirectoryAnswers() {
    return gDirectoryAnswers;
}

void ForgetHangs() {
#define ZORVA_SERVICE(service) EndHold(service_health::service);
#include "service_calls.def"
    for (Discovery &discovery : gDiscoveries) {
        EndHold(discovery.health);
    }
    EndHold(gDirectory);
    gDirectoryAnswers = false;
    gLastDiscoveryHeld = false;
}
