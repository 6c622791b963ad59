// SPDX-License-Identifier: Apache-2.0
/** @file Receiver of the reports about requests, as a panel is one. */
#ifndef QUARNSNMP_BENCH_REPORT_DRAIN_H
#define QUARNSNMP_BENCH_REPORT_DRAIN_H

#include <atomic>
#include <string>
#include <thread>

namespace bench {

/** Reads and drops all reports that arrive at the socket in a camera's directory. */
class ReportDrain {
public:
    /** @throws std::runtime_error if the socket cannot be made */
    explicit ReportDrain(const std::string &cameraDirectory);
    ~ReportDrain();
    ReportDrain(const ReportDrain &) = delete;
    ReportDrain &operator=(const ReportDrain &) = delete;

private:
    void drain() const;

    std::string path_;
    int socket_ = -1;
    std::atomic<bool> ended_{false};
    std::thread thread_;
};

} // namespace bench

#endif
