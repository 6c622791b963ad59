// SPDX-License-Identifier: Apache-2.0
#include "channel.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include <sched.h>
#include <sys/socket.h>
#include <sys/un.h>

#include "directory_check.h"
#include "status.h"
#include "wire.h"

namespace standin {

namespace {

// A response usually arrives sooner than a sleeping thread could be woken, so the receiver polls this long.
constexpr std::chrono::microseconds kSpin{50};
constexpr std::chrono::milliseconds kFarewellLimit{100};
constexpr std::size_t kInitialBufferSize = 1024;

/** Sets the time-out of the next blocking receive or send. @return false when the deadline has passed already */
bool limitWait(int descriptor, int option, const Deadline &deadline) noexcept {
    timeval timeout{};
    return deadline.remaining(timeout) && ::setsockopt(descriptor, SOL_SOCKET, option, &timeout, sizeof timeout) == 0;
}

bool wouldBlock(int error) noexcept {
    return error == EAGAIN || error == EWOULDBLOCK;
}

/** Returns the context if it is open and debug lines are logged, otherwise null. */
std::shared_ptr<const LogContext> debugLog(const std::weak_ptr<const LogContext> &log) noexcept {
    return isLogged(kDebug) ? log.lock() : nullptr;
}

} // namespace

/** Scope of one exchange, which holds the lock. Ends the connection unless the exchange was finished with success. */
class Channel::ExchangeScope {
public:
    /** Adopts the lock that the caller has taken. */
    explicit ExchangeScope(Channel &channel) noexcept : channel_(channel) {}
    ExchangeScope(const ExchangeScope &) = delete;
    ExchangeScope &operator=(const ExchangeScope &) = delete;

    ~ExchangeScope() {
        if (channel_.socket_.isOpen() && (!isComplete_ || channel_.isClosed_)) {
            channel_.disconnect(reason_);
        }
        channel_.lock_.unlock();
    }

    void finish(zorva_core_status status) noexcept {
        isComplete_ = status == wire::kSuccess;
        reason_ = zorva::core::statusToString(status);
    }

private:
    Channel &channel_;
    bool isComplete_ = false;
    const char *reason_ = "interrupted";
};

Channel::Channel(std::string path, std::weak_ptr<const LogContext> log)
    : path_(std::move(path)), log_(std::move(log)), generation_(SocketDescriptor::generation()),
      buffer_(kInitialBufferSize) {}

zorva_core_status Channel::exchange(std::string_view request, const Deadline &deadline, const ResponseReader &reader) {
    if (!lock_.lockUntil(deadline)) {
        return wire::kTimedOut;
    }
    ExchangeScope scope(*this);
    if (isClosed_) {
        return wire::kInvalidHandle;
    }
    std::string_view line;
    zorva_core_status status = transmit(request, deadline);
    if (status == wire::kSuccess) {
        status = receive(deadline, line);
    }
    if (status != wire::kSuccess) {
        scope.finish(status);
        return status;
    }
    const zorva_core_status result = reader(line);
    // An error status from the service is a valid response.
    scope.finish(result == wire::kBadResponse ? wire::kBadResponse : wire::kSuccess);
    return result;
}

void Channel::close(std::string_view farewell, const Deadline &deadline) noexcept {
    if (!lock_.lockUntil(deadline)) {
        abort();
        return;
    }
    const ExchangeScope scope(*this);
    if (isClosed_.exchange(true)) {
        return;
    }
    disconnectIfUnusable();
    const Deadline farewellDeadline(kFarewellLimit);
    std::string_view line;
    if (socket_.isOpen() && send(farewell, farewellDeadline) == wire::kSuccess) {
        try {
            receive(farewellDeadline, line);
        } catch (...) {
            // The response to a farewell has no effect.
            return;
        }
    }
}

void Channel::abort() noexcept {
    isClosed_ = true;
    socket_.shutDown();
    if (lock_.tryLock()) {
        const ExchangeScope scope(*this);
    }
}

zorva_core_status Channel::transmit(std::string_view request, const Deadline &deadline) {
    zorva_core_status status = wire::kSuccess;
    for (int attempt = 0; attempt < 2; ++attempt) {
        disconnectIfUnusable();
        status = socket_.isOpen() ? wire::kSuccess : connect(deadline);
        if (status == wire::kSuccess) {
            status = send(request, deadline);
        }
        if (status != wire::kConnectionLost) {
            return status;
        }
        disconnect("the peer has gone");
    }
    return status;
}

zorva_core_status Channel::connect(const Deadline &deadline) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path_.size() >= sizeof address.sun_path) {
        return wire::kUnreachable;
    }
    std::memcpy(address.sun_path, path_.data(), path_.size());
    if (const std::optional<std::string> reason = wire::unsafeDirectory(path_.substr(0, path_.rfind('/')))) {
        if (const auto log = debugLog(log_)) {
            log->write(kDebug, "core library: not connecting to %s: %s", path_.c_str(), reason->c_str());
        }
        return wire::kUnreachable;
    }
    if (!socket_.open()) {
        return wire::kNoMemory;
    }
    hasSurplus_ = false;
    for (;;) {
        // connect() waits while the backlog is full, limited by the send time-out.
        if (!limitWait(socket_.number(), SO_SNDTIMEO, deadline)) {
            return wire::kTimedOut;
        }
        if (::connect(socket_.number(), reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0) {
            if (const auto log = debugLog(log_)) {
                log->write(kDebug, "core library: connected to %s", path_.c_str());
            }
            return wire::kSuccess;
        }
        if (errno != EINTR) {
            const bool late = wouldBlock(errno);
            socket_.close();
            return late ? wire::kTimedOut : wire::kUnreachable;
        }
    }
}

zorva_core_status Channel::send(std::string_view request, const Deadline &deadline) noexcept {
    std::size_t sent = 0;
    int flags = MSG_NOSIGNAL | MSG_DONTWAIT;
    while (sent < request.size()) {
        if ((flags & MSG_DONTWAIT) == 0 && !limitWait(socket_.number(), SO_SNDTIMEO, deadline)) {
            return wire::kTimedOut;
        }
        const ssize_t count = ::send(socket_.number(), request.data() + sent, request.size() - sent, flags);
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
        if (used == buffer_.size()) {
            if (used >= wire::kMaximumLine) {
                return wire::kBadResponse;
            }
            buffer_.resize(std::min(2 * used, wire::kMaximumLine));
        }
        if (flags == 0 && !limitWait(socket_.number(), SO_RCVTIMEO, deadline)) {
            return wire::kTimedOut;
        }
        const ssize_t count = ::recv(socket_.number(), buffer_.data() + used, buffer_.size() - used, flags);
        if (count > 0) {
            const char *const begin = buffer_.data();
            const char *const end = begin + used + count;
            const char *const newline = std::find(begin + used, end, '\n');
            used += static_cast<std::size_t>(count);
            if (newline != end) {
                line = std::string_view(begin, static_cast<std::size_t>(newline - begin));
                hasSurplus_ = newline + 1 != end;
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

/** Ends a connection that the peer has closed or that holds unrequested data. */
void Channel::disconnectIfUnusable() noexcept {
    if (!socket_.isOpen()) {
        return;
    }
    char stray = 0;
    const ssize_t count = ::recv(socket_.number(), &stray, sizeof stray, MSG_DONTWAIT);
    if (hasSurplus_ || count >= 0 || !wouldBlock(errno)) {
        disconnect(count == 0 ? "the peer has gone" : "the peer speaks out of turn");
    }
}

void Channel::disconnect(const char *reason) noexcept {
    socket_.close();
    const auto log = isClosed_ ? nullptr : debugLog(log_);
    if (log != nullptr) {
        log->write(kDebug, "core library: disconnected from %s: %s", path_.c_str(), reason);
    }
}

} // namespace standin
