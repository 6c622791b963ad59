// SPDX-License-Identifier: Apache-2.0
#include "line_server.h"

#include <algorithm>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace camera {

namespace asio = boost::asio;
using boost::system::error_code;
using Protocol = asio::local::stream_protocol;

namespace {

/** Restricts new files of the process to their owner during its lifetime. */
class OwnerOnly {
public:
    OwnerOnly() : before_(umask(S_IXUSR | S_IRWXG | S_IRWXO)) {}
    OwnerOnly(const OwnerOnly &) = delete;
    OwnerOnly &operator=(const OwnerOnly &) = delete;
    ~OwnerOnly() {
        umask(before_);
    }

private:
    mode_t before_;
};

} // namespace

LineServer::LineServer(asio::io_context &io, std::string path, LineConnection::LineHandler onLine)
    : acceptor_(io), retryTimer_(io), path_(std::move(path)), onLine_(std::move(onLine)) {}

LineServer::~LineServer() {
    try {
        close();
    } catch (...) {
        // The destructors of the members close the sockets; the next camera in the directory removes the file.
    }
}

std::optional<std::string> LineServer::open() {
    constexpr std::size_t kLongestPath = sizeof(sockaddr_un::sun_path) - 1;
    if (path_.size() > kLongestPath) {
        return "cannot listen on " + path_ + ": a socket's path has at most " + std::to_string(kLongestPath) +
               " octets";
    }
    error_code error;
    acceptor_.open(Protocol(), error);
    bool bound = false;
    if (!error) {
        const OwnerOnly ownerOnly;
        acceptor_.bind(Protocol::endpoint(path_), error);
        bound = !error;
    }
    if (!error) {
        acceptor_.listen(asio::socket_base::max_listen_connections, error);
    }
    if (error) {
        error_code ignored;
        acceptor_.close(ignored);
        if (bound) {
            unlink(path_.c_str());
        }
        return "cannot listen on " + path_ + ": " + error.message();
    }
    accept();
    return std::nullopt;
}

void LineServer::close() {
    if (!acceptor_.is_open()) {
        return;
    }
    error_code ignored;
    acceptor_.close(ignored);
    retryTimer_.cancel();
    unlink(path_.c_str());
    for (const auto &connection : std::exchange(connections_, {})) {
        connection->close();
    }
}

void LineServer::accept() {
    acceptor_.async_accept([this](const error_code &error, Protocol::socket socket) {
        if (error == asio::error::operation_aborted) {
            return;
        }
        if (error) {
            acceptLater();
            return;
        }
        accepted(std::move(socket));
        accept();
    });
}

void LineServer::accepted(Protocol::socket socket) {
    if (connections_.size() >= kMostConnections) {
        // A copy, because close() removes the connection from the set.
        const auto longestIdle =
            *std::min_element(connections_.begin(), connections_.end(),
                              [](const auto &a, const auto &b) { return a->lastUse() < b->lastUse(); });
        longestIdle->close();
    }
    const auto connection = std::make_shared<LineConnection>(
        std::move(socket), onLine_,
        [this](const std::shared_ptr<LineConnection> &closed) { connections_.erase(closed); });
    connections_.insert(connection);
    connection->start();
}

void LineServer::acceptLater() {
    // The usual error is a lack of file descriptors. The client stays in the queue, so immediate retries would fail
    // in a busy loop.
    constexpr std::chrono::milliseconds kPause{100};
    retryTimer_.expires_after(kPause);
    retryTimer_.async_wait([this](const error_code &error) {
        if (!error && acceptor_.is_open()) {
            accept();
        }
    });
}

} // namespace camera
