// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A receiver of traps for one test.
 */
#ifndef QUARNSNMP_HARNESS_TRAP_RECEIVER_H
#define QUARNSNMP_HARNESS_TRAP_RECEIVER_H

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "log_file.h"
#include "process.h"
#include "recorded_values.h"
#include "reserved_port.h"
#include "temporary_directory.h"

namespace harness {

using namespace support;

/** One notification. */
struct Trap {
    std::string kind;              ///< the receiver's description, such as "TRAP2, SNMP v2c, community public"
    std::vector<Varbind> varbinds; ///< all varbinds, sysUpTime.0 and snmpTrapOID.0 included

    /** Returns the value of snmpTrapOID.0, or an empty text. */
    std::string notification() const;
};

/** Prints a notification for the test framework. */
std::ostream &operator<<(std::ostream &stream, const Trap &trap);

/** Net-SNMP's trap receiver. */
class TrapReceiver {
public:
    /** Transport of notifications. */
    enum class Transport {
        Datagram, ///< a free UDP port of the loopback interface
        Stream    ///< a local socket, of which nothing is lost when many come at once
    };

    /**
     * Starts it and waits until it is there.
     * @param configuration  further lines of its configuration, such as users
     * @param mibModules     shipped MIB modules with the names that it prints, separated by colons; traps() understands
     *                       numbers only, so with these there is only printed()
     * @throws std::runtime_error when it does not get there
     */
    explicit TrapReceiver(Transport transport = Transport::Datagram, const std::vector<std::string> &configuration = {},
                          const std::string &mibModules = "");

    /** The agent's address for notifications. */
    std::string peer() const;

    /** Line of the agent's configuration that makes it send SNMPv2c traps here. */
    std::string configurationLine() const;

    /** Returns the printed notifications so far, one in a line: the description, and after tabs the varbinds. */
    std::vector<std::string> printed() const;

    /** All notifications so far, oldest first. @throws std::runtime_error for a line that cannot be understood */
    std::vector<Trap> traps() const;

    /** Waits until a notification satisfies a predicate. @return the first one that does; nothing after the deadline */
    std::optional<Trap> waitFor(const std::function<bool(const Trap &)> &wanted,
                                std::chrono::milliseconds deadline = std::chrono::seconds(10)) const;

    /** Waits for a number of notifications. @return false after the deadline */
    bool waitForCount(std::size_t count, std::chrono::milliseconds deadline = std::chrono::seconds(10)) const;

private:
    LogFile log() const;
    std::string socketPath() const;
    bool isReachable() const;

    TemporaryDirectory directory_;
    std::unique_ptr<ReservedPort> port_; ///< null with a local socket
    std::unique_ptr<Process> process_;
};

} // namespace harness

#endif
