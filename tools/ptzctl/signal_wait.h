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

/** Catches SIGINT, SIGTERM and SIGHUP during its lifetime. Child processes are not protected from them. */
class SignalWait {
public:
    /** @throws std::system_error */
    SignalWait();
    ~SignalWait();
    SignalWait(const SignalWait &) = delete;
    SignalWait &operator=(const SignalWait &) = delete;

    /** Waits for one of the signals. @return whether one has arrived within the time */
    bool waitFor(std::chrono::milliseconds time) const;

    /** Takes a signal that has arrived. @return whether there was one */
    bool take() const;

    /** Tests whether take() has taken one. */
    bool hasTaken() const {
        return hasTaken_;
    }

    /** A descriptor that is readable once a signal has arrived. */
    int descriptor() const {
        return descriptor_;
    }

private:
    sigset_t before_{};
    int descriptor_;
    mutable bool hasTaken_ = false;
};

} // namespace ptzctl

#endif
