// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A panel for one test.
 */
#ifndef QUARNSNMP_PANEL_RUNNING_PANEL_H
#define QUARNSNMP_PANEL_RUNNING_PANEL_H

#include <cstdint>
#include <string>
#include <vector>

#include "process.h"

namespace support {

/** A running panel on a free port. */
class RunningPanel {
public:
    /**
     * Starts a panel and waits until it serves its page.
     * @param arguments  all but the address of the page
     * @throws std::runtime_error if it does not start; the text has its output
     */
    explicit RunningPanel(std::vector<std::string> arguments);

    /** Ends the panel. The test fails if it ended by itself or does not end cleanly. */
    ~RunningPanel();

    RunningPanel(const RunningPanel &) = delete;
    RunningPanel &operator=(const RunningPanel &) = delete;

    /** Port of the page on the loopback interface. */
    std::uint16_t port() const {
        return port_;
    }

private:
    Process process_;
    std::uint16_t port_ = 0;
};

} // namespace support

#endif
