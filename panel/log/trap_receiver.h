// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Receiver of the agents' traps, in a thread of its own.
 */
#ifndef QUARNSNMP_PANEL_TRAP_RECEIVER_H
#define QUARNSNMP_PANEL_TRAP_RECEIVER_H

#include <functional>
#include <memory>
#include <string>
#include <thread>

#include <boost/asio/io_context.hpp>

#include "notification_receiver.h"

namespace panel {

/** Receives SNMPv2c traps. A process has one receiver at a time. */
class TrapReceiver {
public:
    using Handler = std::function<void(const snmp::Received &trap)>;

    /**
     * Listens at an address.
     * @param handler  called in the thread of the io_context
     * @throws snmp::Failure when the address is not available
     */
    TrapReceiver(boost::asio::io_context &io, const std::string &address, Handler handler);
    ~TrapReceiver();
    TrapReceiver(const TrapReceiver &) = delete;
    TrapReceiver &operator=(const TrapReceiver &) = delete;

private:
    void work();

    int wakeUp_; ///< event descriptor that ends the thread
    std::unique_ptr<snmp::NotificationReceiver> receiver_;
    std::thread thread_;
};

} // namespace panel

#endif
