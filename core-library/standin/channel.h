// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A connection to one of the camera's sockets.
 */
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
#include "socket_descriptor.h"
#include "turn.h"
#include "zorva-core.h"

namespace standin {

/** Reads an answer (without its newline) and gives the status of the call; kBadAnswer ends the connection. */
using AnswerReader = std::function<zorva_core_status(std::string_view answer)>;

/**
 * The client's side of one socket: it connects when it is first used and again after the connection was lost. Any
 * number of threads may use it; one exchange takes place at a time.
 */
class Channel {
public:
    /**
     * @param path       path of the socket
     * @param logCookie  logging context that is told about connections made and lost (at level debug)
     */
    Channel(std::string path, void *logCookie);

    /**
     * Sends a request and reads its answer. A request that cannot have been processed is sent again, once; one that may
     * have been is not, because a move must not be made twice.
     * @param request   line with its newline
     * @param deadline  when to give up; the connection then ends, lest the late answer be taken for the next one
     * @param reader    called with the answer while no other exchange takes place
     * @return what `reader` returned, or why it was not called
     */
    zorva_core_status exchange(std::string_view request, const Deadline &deadline, const AnswerReader &reader);

    /**
     * Waits for an exchange under way, says goodbye if there is a connection, and ends the channel for good. The answer
     * to the goodbye is awaited for a tenth of a second at most, so that a hanging camera does not hold up the agent's
     * end once per service.
     */
    void leave(std::string_view farewell, const Deadline &deadline) noexcept;

    /** Ends the channel for good and at once; an exchange under way fails. */
    void abort() noexcept;

    /** True in a forked child, for a channel of its parent: it may be in the middle of anything and must be replaced.
     */
    bool isStale() const noexcept {
        return generation != SocketDescriptor::generation();
    }

    /** A new channel to the same socket. */
    std::shared_ptr<Channel> replacement() const {
        return std::make_shared<Channel>(path, logCookie);
    }

private:
    class Use;

    zorva_core_status transmit(std::string_view request, const Deadline &deadline);
    zorva_core_status connect(const Deadline &deadline);
    zorva_core_status send(std::string_view request, const Deadline &deadline) noexcept;
    zorva_core_status receive(const Deadline &deadline, std::string_view &line);
    void dropIfUnusable() noexcept;
    void drop(const char *reason) noexcept;

    const std::string path;
    void *const logCookie;
    const std::uint64_t generation;
    std::atomic<bool> ended{false};
    Turn turn;

    // What only the thread whose turn it is may touch.
    SocketDescriptor socket;
    std::vector<char> buffer;
    bool hasSurplus = false; ///< the peer sent more than the answer
};

} // namespace standin

#endif
