// SPDX-License-Identifier: Apache-2.0
#include "signal_wait.h"

#include <cerrno>
#include <system_error>

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace ptzctl {

SignalWait::SignalWait() : descriptor_(-1) {
    sigset_t caught;
    sigemptyset(&caught);
    sigaddset(&caught, SIGINT);
    sigaddset(&caught, SIGTERM);
    sigaddset(&caught, SIGHUP);
    pthread_sigmask(SIG_BLOCK, &caught, &before_);
    descriptor_ = signalfd(-1, &caught, SFD_CLOEXEC);
    if (descriptor_ < 0) {
        throw std::system_error(errno, std::generic_category(), "signalfd");
    }
}

SignalWait::~SignalWait() {
    // A caught signal stays pending, and would end the process once it is unblocked.
    while (take()) {
    }
    close(descriptor_);
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

bool SignalWait::waitFor(std::chrono::milliseconds time) const {
    pollfd watched{descriptor_, POLLIN, 0};
    return poll(&watched, 1, static_cast<int>(time.count())) > 0;
}

bool SignalWait::take() const {
    signalfd_siginfo caught{};
    const bool isThere = waitFor(std::chrono::milliseconds(0)) && read(descriptor_, &caught, sizeof caught) > 0;
    hasTaken_ = hasTaken_ || isThere;
    return isThere;
}

} // namespace ptzctl
