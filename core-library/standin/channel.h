// SPDX-License-Identifier: Apache-2.0
/** @file Connection to one of the camera's sockets. */
#ifndef QUARNSNMP_STANDIN_CHANNEL_H
#define QUARNSNMP_STANDIN_CHANNEL_H

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "deadline.h"
#include "log.h"
#include "socket_descriptor.h"
#include "timed_lock.h"
#include "zorva-core.h"

namespace standin {

/** Parses a response (without its newline) and returns the status of the call; kBadResponse ends the connection. */
using ResponseReader = std::function<zorva_core_status(std::string_view response)>;

/**
 * Client side of one socket. Connects at the first use, and again after a lost connection. Thread-safe; exchanges are
 * serialised.
 */
class Channel {
public:
    /**
     * @param path  path of the socket
     * @param log   context for messages about connecting and disconnecting, at level debug; used while it is open
     */
    Channel(std::string path, std::weak_ptr<const LogContext> log);

    /**
     * Sends a request and reads the response. Repeats the request once if the peer cannot have processed it. A request
     * that may have been processed is never repeated, because a move must not be executed twice.
     * @param request   line with its newline
     * @param deadline  time limit; an expired exchange ends the connection, so that a late response is not mistaken
     *                  for the next one
     * @param reader    called with the response, before any other exchange starts
     * @return the result of `reader`, or the reason why it was not called
     */
    zorva_core_status exchange(std::string_view request, const Deadline &deadline, const ResponseReader &reader);

    /**
     * Waits for a running exchange, sends a farewell if there is a connection, and closes the channel permanently.
     * Waits for the response no longer than a tenth of a second, so that a hanging camera does not delay the agent's
     * shutdown once per service.
     */
    void close(std::string_view farewell, const Deadline &deadline) noexcept;

    /** Closes the channel permanently and at once; a running exchange fails. */
    void abort() noexcept;

    /**
     * Detects, in a forked child, a channel of the parent. Such a channel may be in any state and must be replaced.
     */
    bool isStale() const noexcept {
        return generation_ != SocketDescriptor::generation();
    }

    /** Creates a new channel to the same socket. */
    std::shared_ptr<Channel> replacement() const {
        return std::make_shared<Channel>(path_, log_);
    }

private:
    class ExchangeScope;

    zorva_core_status transmit(std::string_view request, const Deadline &deadline);
    zorva_core_status connect(const Deadline &deadline);
    zorva_core_status send(std::string_view request, const Deadline &deadline) noexcept;
    zorva_core_status receive(const Deadline &deadline, std::string_view &line);
    void disconnectIfUnusable() noexcept;
    void disconnect(const char *reason) noexcept;

    const std::string path_;
    const std::weak_ptr<const LogContext> log_;
    const std::uint64_t generation_;
    std::atomic<bool> isClosed_{false};
    TimedLock lock_;

    // Protected by lock_; abort() may shut the socket down without it.
    SocketDescriptor socket_;
    std::vector<char> buffer_;
    bool hasSurplus_ = false; ///< the peer sent more than the response
};

} // namespace standin

#endif
