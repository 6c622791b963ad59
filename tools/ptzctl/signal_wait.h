// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Orderly end on Ctrl-C.
 */
#ifndef PTZCTL_SIGNAL_WAIT_H
#define PTZCTL_SIGNAL_WAIT_H

#include <chrono>
#include <csignal>

namespace ptzctl {

/** Catches SIGINT and SIGTERM during its lifetime. Child processes are not protected from them. */
class SignalWait {
public:
    /** @throws std::system_error */
    SignalWait();
    ~SignalWait();
    SignalWait(const SignalWait &) = delete;
    SignalWait &operator=(const SignalWait &) = delete;

    /** Waits for one of the signals. @return whether one has arrived within the time */
    bool waitFor(std::chrono::milliseconds time) const;

    /** A descriptor that is readable once a signal has arrived. */
    int descriptor() const {
        return descriptor_;
    }

private:
    sigset_t before_{};
    int descriptor_;
};

} // namespace ptzctl

#endif
