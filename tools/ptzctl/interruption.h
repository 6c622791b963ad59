// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Being ended by Ctrl-C in an orderly way.
 */
#ifndef PTZCTL_INTERRUPTION_H
#define PTZCTL_INTERRUPTION_H

#include <chrono>
#include <csignal>

namespace ptzctl {

/** Catches SIGINT and SIGTERM for as long as it lives. Processes that are started meanwhile are ended by them. */
class Interruption {
public:
    /** @throws std::system_error */
    Interruption();
    ~Interruption();
    Interruption(const Interruption &) = delete;
    Interruption &operator=(const Interruption &) = delete;

    /** Waits. @return whether one of the signals has come by then, which ends the waiting */
    bool within(std::chrono::milliseconds time) const;

    /** Can be read from when one of the signals has come. */
    int descriptor() const {
        return descriptor_;
    }

private:
    sigset_t before_{};
    int descriptor_;
};

} // namespace ptzctl

#endif
