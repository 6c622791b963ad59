// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Progress of a command for many cameras.
 */
#ifndef PTZCTL_PROGRESS_H
#define PTZCTL_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <optional>
#include <ostream>

#include "outcome.h"

namespace ptzctl {

/** A line on a terminal that counts outcomes. The end of its lifetime removes it. */
class Progress {
public:
    Progress(std::ostream &terminal, std::size_t cameras);
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    void add(const Outcome &outcome);

private:
    std::ostream &terminal_;
    std::size_t cameras_;
    std::size_t ended_ = 0;
    std::size_t failed_ = 0;
    std::optional<std::chrono::steady_clock::time_point> shown_; ///< time of the last update
};

} // namespace ptzctl

#endif
