// SPDX-License-Identifier: Apache-2.0
#include "watch_receiver.h"

#include <chrono>
#include <optional>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

#include "directory_check.h"
#include "wire.h"

namespace panel {

namespace asio = boost::asio;
using Protocol = asio::local::datagram_protocol;

namespace {

constexpr const char *kName = "watch";

/** Tests whether another process receives at a socket. */
bool isInUse(asio::io_context &io, const std::string &path) {
    Protocol::socket probe(io);
    boost::system::error_code error;
    probe.open(Protocol(), error);
    probe.connect(path, error);
    return !error;
}

} // namespace

WatchReceiver::WatchReceiver(asio::io_context &io, const std::string &directory, Handler handler)
    : io_(io), directory_(directory), path_(wire::socketPath(directory, kName)), handler_(std::move(handler)),
      timer_(io) {}

void WatchReceiver::start() {
    check();
}

void WatchReceiver::stop() {
    timer_.cancel();
    close();
}

bool WatchReceiver::isListening() const {
    return socket_ != nullptr;
}

const std::string &WatchReceiver::problem() const {
    return problem_;
}

std::uint64_t WatchReceiver::received() const {
    return received_;
}

std::uint64_t WatchReceiver::malformed() const {
    return malformed_;
}

void WatchReceiver::check() {
    constexpr std::chrono::seconds kPeriod{1};
    if (!socket_ || !isAtPath()) {
        close();
        open();
    }
    timer_.expires_after(kPeriod);
    timer_.async_wait([weak = weak_from_this()](const boost::system::error_code &cancelled) {
        const std::shared_ptr<WatchReceiver> self = weak.lock();
        if (!cancelled && self) {
            self->check();
        }
    });
}

bool WatchReceiver::isAtPath() const {
    struct stat status {};
    return stat(path_.c_str(), &status) == 0 && status.st_ino == inode_;
}

void WatchReceiver::open() {
    struct stat status {};
    if (stat(directory_.c_str(), &status) != 0) {
        problem_ = "there is no directory " + directory_;
        return;
    }
    if (const std::optional<std::string> reason = wire::unsafeDirectory(directory_)) {
        problem_ = *reason;
        return;
    }
    if (lstat(path_.c_str(), &status) == 0) {
        if (!S_ISSOCK(status.st_mode) || isInUse(io_, path_)) {
            problem_ = path_ + " is in use, perhaps by another panel";
            return;
        }
        unlink(path_.c_str()); // of a panel that was killed
    }
    const auto socket = std::make_shared<Socket>(io_);
    boost::system::error_code error;
    socket->open(Protocol(), error);
    if (!error) {
        socket->bind(path_, error);
    }
    if (error || chmod(path_.c_str(), S_IRUSR | S_IWUSR) != 0 || stat(path_.c_str(), &status) != 0) {
        problem_ = "cannot open " + path_;
        return;
    }
    socket->non_blocking(true, error);
    problem_.clear();
    inode_ = status.st_ino;
    socket_ = socket;
    receive();
}

void WatchReceiver::close() {
    if (!socket_) {
        return;
    }
    if (isAtPath()) {
        unlink(path_.c_str());
    }
    boost::system::error_code ignored;
    socket_->close(ignored);
    socket_.reset();
}

void WatchReceiver::receive() {
    socket_->async_wait(Socket::wait_read, [weak = weak_from_this(), socket = socket_](const auto &error) {
        const std::shared_ptr<WatchReceiver> self = weak.lock();
        if (!self || error || socket != self->socket_) {
            return;
        }
        self->takeAll(*socket);
        if (socket == self->socket_) {
            self->receive();
        }
    });
}

void WatchReceiver::takeAll(Socket &socket) {
    // The kernel keeps ten datagrams only, so all are taken at once, but not for ever: the page waits meanwhile.
    constexpr int kMost = 256;
    boost::system::error_code error;
    for (int i = 0; i < kMost; ++i) {
        const std::size_t size = socket.receive(asio::buffer(datagram_), 0, error);
        if (error) {
            return;
        }
        const std::optional<WatchReport> report = parseWatchReport({datagram_.data(), size});
        if (report) {
            ++received_;
            handler_(*report);
        } else {
            ++malformed_;
        }
    }
}

} // namespace panel
