// SPDX-License-Identifier: Apache-2.0
#include "watch_socket.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <utility>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "directory_check.h"
#include "net_snmp.h"

namespace watch {

namespace {

constexpr std::size_t kMaxWaiting = 1000;
constexpr timeval kFlushInterval = {0, 5000};
constexpr int kMaxFruitlessFlushes = 200; ///< a second

/** A report that the kernel has not taken. */
struct Waiting {
    std::string datagram;
    std::size_t lost; ///< reports that were lost before it, which it says
};

int gDescriptor = -1;
sockaddr_un gAddress{};
std::deque<Waiting> gWaiting; ///< in the order of the requests
std::size_t gLost = 0;        ///< since the last report that was kept
unsigned int gAlarm = 0;      ///< of the agent's main loop while reports wait; otherwise 0
int gFruitlessFlushes = 0;

/** How the kernel took a datagram. */
enum class Delivery { Done, QueueFull, NoReceiver };

Delivery deliver(const std::string &datagram) {
    // With the address each time: a receiver that starts again has a new socket at the same path.
    if (sendto(gDescriptor, datagram.data(), datagram.size(), MSG_NOSIGNAL,
               reinterpret_cast<const sockaddr *>(&gAddress), sizeof gAddress) >= 0) {
        return Delivery::Done;
    }
    return errno == EAGAIN || errno == ENOBUFS || errno == EINTR ? Delivery::QueueFull : Delivery::NoReceiver;
}

/** Sends waiting reports until the kernel refuses one. @return whether any was taken */
bool deliverWaiting() {
    bool progress = false;
    while (!gWaiting.empty()) {
        switch (deliver(gWaiting.front().datagram)) {
        case Delivery::Done:
            gWaiting.pop_front();
            progress = true;
            break;
        case Delivery::NoReceiver:
            gWaiting.clear();
            break;
        case Delivery::QueueFull:
            return progress;
        }
    }
    return progress;
}

void stopFlushing() {
    if (gAlarm != 0) {
        snmp_alarm_unregister(gAlarm);
        gAlarm = 0;
    }
    gFruitlessFlushes = 0;
}

/** The agent's alarm while reports wait. */
void flush(unsigned int /*alarm*/, void * /*data*/) {
    gFruitlessFlushes = deliverWaiting() ? 0 : gFruitlessFlushes + 1;
    if (gFruitlessFlushes >= kMaxFruitlessFlushes) {
        for (const Waiting &waiting : gWaiting) {
            gLost += waiting.lost + 1;
        }
        gWaiting.clear();
    }
    if (gWaiting.empty()) {
        stopFlushing();
    }
}

void keep(std::string datagram) {
    if (gWaiting.size() >= kMaxWaiting) {
        ++gLost;
        return;
    }
    gWaiting.push_back({std::move(datagram), gLost});
    gLost = 0;
    if (gAlarm == 0) {
        gAlarm = snmp_alarm_register_hr(kFlushInterval, SA_REPEAT, flush, nullptr);
    }
}

} // namespace

std::string openSocket() {
    const char *directory =
        std::getenv("QUARNSNMP_CAMERA_DIR"); // NOLINT(concurrency-mt-unsafe): the agent's own thread
    if (directory == nullptr || *directory == '\0') {
        return "QUARNSNMP_CAMERA_DIR is not set";
    }
    const std::string path = std::string(directory) + "/watch.sock";
    if (path.size() >= sizeof gAddress.sun_path) {
        return "the path " + path + " is too long for a socket";
    }
    // The reports contain communities.
    if (const auto reason = wire::unsafeDirectory(directory)) {
        return *reason;
    }
    gAddress = {};
    gAddress.sun_family = AF_UNIX;
    std::memcpy(&gAddress.sun_path[0], path.c_str(), path.size() + 1);
    gDescriptor = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (gDescriptor < 0) {
        return std::string("no socket: ") + std::strerror(errno); // NOLINT(concurrency-mt-unsafe)
    }
    return "";
}

void closeSocket() noexcept {
    stopFlushing();
    gWaiting = {};
    gLost = 0;
    if (gDescriptor >= 0) {
        close(gDescriptor);
        gDescriptor = -1;
    }
}

void send(const Observation &observation) {
    if (gDescriptor < 0) {
        return;
    }
    std::string datagram = observationText(observation, gLost);
    deliverWaiting();
    const Delivery delivery = gWaiting.empty() ? deliver(datagram) : Delivery::QueueFull;
    if (delivery == Delivery::Done) {
        gLost = 0;
    } else if (delivery == Delivery::QueueFull) {
        keep(std::move(datagram));
    }
}

} // namespace watch
