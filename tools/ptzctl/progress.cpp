// SPDX-License-Identifier: Apache-2.0
#include "progress.h"

namespace ptzctl {

namespace {

constexpr const char *kClearLine = "\r\033[K";

} // namespace

Progress::Progress(std::ostream &terminal, std::size_t cameras) : terminal_(terminal), cameras_(cameras) {}

Progress::~Progress() {
    terminal_ << kClearLine << std::flush;
}

void Progress::add(const Outcome &outcome) {
    constexpr std::chrono::milliseconds kInterval(100);
    ++ended_;
    failed_ += outcome.code != ExitCode::Done ? 1 : 0;
    const auto now = std::chrono::steady_clock::now();
    if (shown_ && now - *shown_ < kInterval) {
        return;
    }
    shown_ = now;
    terminal_ << kClearLine << ended_ << " of " << cameras_ << " cameras";
    if (failed_ != 0) {
        terminal_ << ", " << failed_ << " without success";
    }
    terminal_ << std::flush;
}

} // namespace ptzctl
