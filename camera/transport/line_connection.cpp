// SPDX-License-Identifier: Apache-2.0
#include "line_connection.h"

#include <utility>

#include <poll.h>
#include <sys/socket.h>

#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>

#include "wire.h"

namespace camera {

namespace asio = boost::asio;
using boost::system::error_code;

LineConnection::LineConnection(asio::local::stream_protocol::socket socket, LineHandler onLine, CloseHandler onClose)
    : socket_(std::move(socket)), timer_(socket_.get_executor()), onLine_(std::move(onLine)),
      onClose_(std::move(onClose)) {}

void LineConnection::start() {
    read();
}

void LineConnection::read() {
    if (!socket_.is_open()) {
        return;
    }
    socket_.async_read_some(asio::buffer(chunk_),
                            [self = shared_from_this()](const error_code &error, std::size_t count) {
                                if (error) {
                                    self->close();
                                } else {
                                    self->received(count);
                                }
                            });
}

void LineConnection::received(std::size_t count) {
    lastUse_ = std::chrono::steady_clock::now();
    input_.append(chunk_.data(), count);
    handleLines();
}

void LineConnection::handleLines() {
    // Serves any client that waits for its answers, and keeps the wait of the other clients short.
    constexpr int kLinesInOneGo = 16;
    for (int i = 0; socket_.is_open() && !paused_; ++i) {
        const std::size_t end = input_.find('\n', handled_);
        const std::size_t length = (end == std::string::npos ? input_.size() : end) - handled_;
        if (length >= wire::kMaximumLine) {
            close();
            return;
        }
        if (end == std::string::npos) {
            input_.erase(0, handled_);
            handled_ = 0;
            read();
            return;
        }
        if (i == kLinesInOneGo) {
            handleMoreLinesLater();
            return;
        }
        if (clientIsGone()) {
            close();
            return;
        }
        const std::string_view line(input_.data() + handled_, length);
        handled_ = end + 1;
        onLine_(*this, line);
    }
}

bool LineConnection::clientIsGone() {
    // POLLHUP means the end of both directions. A client that only ended its sending direction still reads answers.
    pollfd entry{socket_.native_handle(), 0, 0};
    return poll(&entry, 1, 0) == 1;
}

void LineConnection::handleMoreLinesLater() {
    asio::post(socket_.get_executor(), [self = shared_from_this()] { self->handleLines(); });
}

void LineConnection::send(std::string line) {
    if (!socket_.is_open()) {
        return;
    }
    std::size_t sent = 0;
    if (output_.empty()) {
        const ssize_t count = ::send(socket_.native_handle(), line.data(), line.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
        if (count > 0) {
            sent = static_cast<std::size_t>(count);
            lastUse_ = std::chrono::steady_clock::now();
        }
        if (sent == line.size()) {
            return;
        }
    }
    if (output_.size() + line.size() - sent > kMostPendingOutput) {
        close();
        return;
    }
    output_.append(line, sent, std::string::npos);
    writePending();
}

void LineConnection::writePending() {
    if (output_.empty() || waitingToWrite_) {
        return;
    }
    waitingToWrite_ = true;
    socket_.async_wait(asio::socket_base::wait_write, [self = shared_from_this()](error_code error) {
        self->waitingToWrite_ = false;
        if (!self->socket_.is_open()) {
            return;
        }
        std::string &output = self->output_;
        const std::size_t sent =
            error ? 0 : self->socket_.send(asio::buffer(output), MSG_DONTWAIT | MSG_NOSIGNAL, error);
        if (error && error != asio::error::would_block) {
            self->close();
            return;
        }
        output.erase(0, sent);
        self->writePending();
    });
}

void LineConnection::sendLater(std::string line, std::chrono::milliseconds delay) {
    paused_ = true;
    timer_.expires_after(delay);
    timer_.async_wait([self = shared_from_this(), line = std::move(line)](const error_code &error) mutable {
        if (error) {
            return;
        }
        self->paused_ = false;
        self->send(std::move(line));
        self->handleLines();
    });
    watchForEnd();
}

void LineConnection::watchForEnd() {
    // A paused connection does not read, so it would miss the end of its client. Connections of clients that give up
    // and reconnect would accumulate up to the limit.
    if (watched_) {
        return;
    }
    watched_ = true;
    socket_.async_wait(asio::socket_base::wait_error, [self = shared_from_this()](const error_code &error) {
        self->watched_ = false;
        if (!error && self->paused_) {
            self->close();
        }
    });
}

void LineConnection::close() {
    if (!socket_.is_open()) {
        return;
    }
    error_code ignored;
    socket_.close(ignored);
    timer_.cancel();
    context_.reset();
    if (const CloseHandler onClose = std::exchange(onClose_, nullptr)) {
        onClose(shared_from_this());
    }
}

} // namespace camera
