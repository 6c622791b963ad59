// SPDX-License-Identifier: Apache-2.0
#include "trap_receiver.h"

#include <cstdint>
#include <stdexcept>
#include <utility>

#include <sys/eventfd.h>
#include <unistd.h>

#include <boost/asio/post.hpp>

#include "failure.h"

namespace panel {

TrapReceiver::TrapReceiver(boost::asio::io_context &io, const std::string &address, Handler handler)
    : wakeUp_(eventfd(0, EFD_CLOEXEC)) {
    if (wakeUp_ < 0) {
        throw snmp::Failure(snmp::Cause::BadResponse, "no descriptor for the receiver of traps");
    }
    try {
        receiver_ = std::make_unique<snmp::NotificationReceiver>(
            "quarnsnmp-panel", address, [&io, handler = std::move(handler)](const snmp::Received &trap) {
                boost::asio::post(io, [handler, trap] { handler(trap); });
                return true;
            });
        thread_ = std::thread([this] { work(); });
    } catch (...) {
        ::close(wakeUp_);
        throw;
    }
}

TrapReceiver::~TrapReceiver() {
    const std::uint64_t one = 1;
    // The counter of a new event descriptor always has room for one.
    static_cast<void>(::write(wakeUp_, &one, sizeof one));
    thread_.join();
    ::close(wakeUp_);
}

void TrapReceiver::work() {
    bool goesOn = true;
    while (goesOn) {
        try {
            goesOn = receiver_->wait(wakeUp_);
        } catch (const std::exception &) {
            goesOn = true; // a trap that memory did not suffice for
        }
    }
}

} // namespace panel
