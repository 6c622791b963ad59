// SPDX-License-Identifier: Apache-2.0
#include "channel.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include <sched.h>
#include <sys/socket.h>
#include <sys/un.h>

#include "log.h"
#include "status.h"
#include "wire.h"

namespace standin {

namespace {

// An answer usually comes sooner than a sleeping thread could be woken, so the receiver stays awake this long.
constexpr std::chrono::microseconds kSpin{50};
constexpr std::chrono::milliseconds kFarewellLimit{100};
constexpr std::size_t kFirstBufferSize = 1024;

/** Makes the socket's next blocking receive or send end at the deadline. @return false when it has come already */
bool limitWait(int descriptor, int option, const Deadline &deadline) noexcept {
    timeval left{};
    return deadline.left(left) && ::setsockopt(descriptor, SOL_SOCKET, option, &left, sizeof left) == 0;
}

bool wouldBlock(int error) noexcept {
    return error == EAGAIN || error == EWOULDBLOCK;
}

} // namespace

/** The turn of one exchange. Unless the exchange is declared complete, the connection ends with it. */
class Channel::Use {
public:
    explicit Use(Channel &used) noexcept : channel(used) {}
    Use(const Use &) = delete;
    Use &operator=(const Use &) = delete;

    ~Use() {
        if (channel.socket.isOpen() && (!complete || channel.ended)) {
            channel.drop(reason);
        }
        channel.turn.giveBack();
    }

    void finish(zorva_core_status status) noexcept {
        complete = status == wire::kSuccess;
        reason = zorva::core::statusToString(status);
    }

private:
    Channel &channel;
    bool complete = false;
    const char *reason = "interrupted";
};

Channel::Channel(std::string socketPath, void *cookie)
    : path(std::move(socketPath)), logCookie(cookie), generation(SocketDescriptor::generation()),
      buffer(kFirstBufferSize) {}

zorva_core_status Channel::exchange(std::string_view request, const Deadline &deadline, const AnswerReader &reader) {
    if (!turn.take(deadline)) {
        return wire::kTimedOut;
    }
    Use use(*this);
    if (ended) {
        return wire::kInvalidHandle;
    }
    std::string_view line;
    zorva_core_status status = transmit(request, deadline);
    if (status == wire::kSuccess) {
        status = receive(deadline, line);
    }
    if (status != wire::kSuccess) {
        use.finish(status);
        return status;
    }
    const zorva_core_status outcome = reader(line);
    // A service's refusal is an answer like any other.
    use.finish(outcome == wire::kBadAnswer ? wire::kBadAnswer : wire::kSuccess);
    return outcome;
}

void Channel::leave(std::string_view farewell, const Deadline &deadline) noexcept {
    if (!turn.take(deadline)) {
        abort();
        return;
    }
    const Use use(*this);
    if (ended.exchange(true)) {
        return;
    }
    dropIfUnusable();
    const Deadline goodbye(kFarewellLimit);
    std::string_view line;
    if (socket.isOpen() && send(farewell, goodbye) == wire::kSuccess) {
        try {
            receive(goodbye, line);
        } catch (...) {
            // The answer to a goodbye changes nothing.
            return;
        }
    }
}

void Channel::abort() noexcept {
    ended = true;
    socket.shutDown();
    if (turn.tryTake()) {
        const Use use(*this);
    }
}

zorva_core_status Channel::transmit(std::string_view request, const Deadline &deadline) {
    zorva_core_status status = wire::kSuccess;
    for (int attempt = 0; attempt < 2; ++attempt) {
        dropIfUnusable();
        status = socket.isOpen() ? wire::kSuccess : connect(deadline);
        if (status == wire::kSuccess) {
            status = send(request, deadline);
        }
        if (status != wire::kConnectionLost) {
            return status;
        }
        drop("the peer has gone");
    }
    return status;
}

zorva_core_status Channel::connect(const Deadline &deadline) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        return wire::kUnreachable;
    }
    std::memcpy(address.sun_path, path.data(), path.size());
    if (!socket.open()) {
        return wire::kNoMemory;
    }
    hasSurplus = false;
    for (;;) {
        // A full backlog makes connect() wait, within the limit for sending.
        if (!limitWait(socket.number(), SO_SNDTIMEO, deadline)) {
            return wire::kTimedOut;
        }
        // The generic address type is how the socket interface spells every address.
        if (::connect(socket.number(), reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0) {
            log(logCookie, kDebug, "core library: connected to %s", path.c_str());
            return wire::kSuccess;
        }
        if (errno != EINTR) {
            const bool late = wouldBlock(errno);
            socket.close();
            return late ? wire::kTimedOut : wire::kUnreachable;
        }
    }
}

zorva_core_status Channel::send(std::string_view request, const Deadline &deadline) noexcept {
    std::size_t sent = 0;
    int flags = MSG_NOSIGNAL | MSG_DONTWAIT;
    while (sent < request.size()) {
        if ((flags & MSG_DONTWAIT) == 0 && !limitWait(socket.number(), SO_SNDTIMEO, deadline)) {
            return wire::kTimedOut;
        }
        const ssize_t count = ::send(socket.number(), request.data() + sent, request.size() - sent, flags);
        if (count >= 0) {
            sent += static_cast<std::size_t>(count);
        } else if (wouldBlock(errno)) {
            flags &= ~MSG_DONTWAIT;
        } else if (errno != EINTR) {
            return wire::kConnectionLost;
        }
    }
    return wire::kSuccess;
}

zorva_core_status Channel::receive(const Deadline &deadline, std::string_view &line) {
    const Instant spinEnd = now() + kSpin;
    std::size_t used = 0;
    int flags = MSG_DONTWAIT;
    for (;;) {
        if (used == buffer.size()) {
            if (used >= wire::kMaximumLine) {
                return wire::kBadAnswer;
            }
            buffer.resize(std::min(2 * used, wire::kMaximumLine));
        }
        if (flags == 0 && !limitWait(socket.number(), SO_RCVTIMEO, deadline)) {
            return wire::kTimedOut;
        }
        const ssize_t count = ::recv(socket.number(), buffer.data() + used, buffer.size() - used, flags);
        if (count > 0) {
            const char *const begin = buffer.data();
            const char *const end = begin + used + count;
            const char *const newline = std::find(begin + used, end, '\n');
            used += static_cast<std::size_t>(count);
            if (newline != end) {
                line = std::string_view(begin, static_cast<std::size_t>(newline - begin));
                hasSurplus = newline + 1 != end;
                return wire::kSuccess;
            }
        } else if (count == 0 || (errno != EINTR && !wouldBlock(errno))) {
            return wire::kConnectionLost;
        } else if (flags != 0 && now() < spinEnd) {
            ::sched_yield();
        } else {
            flags = 0;
        }
    }
}

/** Gives up a connection that the peer has closed, or on which something lies that nobody asked for. */
void Channel::dropIfUnusable() noexcept {
    if (!socket.isOpen()) {
        return;
    }
    char stray = 0;
    const ssize_t count = ::recv(socket.number(), &stray, sizeof stray, MSG_DONTWAIT);
    if (hasSurplus || count >= 0 || !wouldBlock(errno)) {
        drop(count == 0 ? "the peer has gone" : "the peer speaks out of turn");
    }
}

void Channel::drop(const char *reason) noexcept {
    socket.close();
    if (!ended) {
        log(logCookie, kDebug, "core library: disconnected from %s: %s", path.c_str(), reason);
    }
}

} // namespace standin
