// SPDX-License-Identifier: Apache-2.0
#include "control_client.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <thread>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "wire.h"

namespace camera {

namespace {

using Clock = std::chrono::steady_clock;

std::string describe(int error) {
    return std::generic_category().message(error);
}

} // namespace

ControlClient::ControlClient(const std::string &directory, const std::string &peer)
    : directory_(directory), peer_(peer + " in " + directory) {
    socket_ = socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (socket_ < 0) {
        throw ControlError("cannot make a socket: " + describe(errno));
    }
    try {
        connect(wire::socketPath(directory, wire::kControlSocket), peer);
    } catch (...) {
        close(socket_);
        throw;
    }
}

ControlClient::~ControlClient() {
    close(socket_);
}

void ControlClient::connect(const std::string &path, const std::string &peer) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        throw ControlError("no " + peer + " can run in " + directory_ + ": the path of its sockets is too long");
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    const Clock::time_point deadline = Clock::now() + kPatience;
    // The kernel offers no wait for a place in the queue of a Unix-domain socket, so this retries.
    while (::connect(socket_, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
        const int error = errno;
        if (error == EAGAIN && Clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        } else if (error != EINTR) {
            throw ControlError("no " + peer + " answers in " + directory_ + ": " + describe(error));
        }
    }
}

nlohmann::json ControlClient::execute(const nlohmann::json &command) {
    const Deadline deadline = Clock::now() + kPatience;
    sendAll(wire::encode(command), deadline);
    const std::optional<std::string> line = readLine(deadline);
    if (!line) {
        throw ControlError("the " + peer_ + " ended the connection without an answer");
    }
    nlohmann::json answer = wire::decode(*line);
    if (!answer.is_object()) {
        throw ControlError("the " + peer_ + " sent an answer that cannot be understood");
    }
    return answer;
}

std::optional<std::string> ControlClient::nextLine() {
    return readLine(std::nullopt);
}

void ControlClient::waitUntil(Clock::time_point time) const {
    // One poll cannot wait for the longest time of a scenario.
    constexpr std::chrono::milliseconds kLongest = std::chrono::hours(1);
    for (Clock::time_point now = Clock::now(); now < time; now = Clock::now()) {
        const auto left = std::min(std::chrono::ceil<std::chrono::milliseconds>(time - now), kLongest);
        pollfd entry{socket_, POLLIN, 0};
        if (poll(&entry, 1, static_cast<int>(left.count())) > 0) {
            throw ControlError("the " + peer_ + " has ended");
        }
    }
}

void ControlClient::sendAll(const std::string &text, const Deadline &deadline) {
    std::size_t sent = 0;
    while (sent < text.size()) {
        const ssize_t count = send(socket_, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
        if (count >= 0) {
            sent += static_cast<std::size_t>(count);
        } else if (errno == EAGAIN) {
            wait(POLLOUT, deadline);
        } else if (errno != EINTR) {
            throw ControlError("the " + peer_ + " cannot be reached: " + describe(errno));
        }
    }
}

std::optional<std::string> ControlClient::readLine(const Deadline &deadline) {
    char chunk[4096];
    for (;;) {
        const std::size_t end = input_.find('\n');
        if (end != std::string::npos) {
            std::string line = input_.substr(0, end);
            input_.erase(0, end + 1);
            return line;
        }
        const ssize_t count = recv(socket_, chunk, sizeof chunk, 0);
        if (count > 0) {
            input_.append(chunk, static_cast<std::size_t>(count));
        } else if (count == 0 || errno == ECONNRESET) {
            return std::nullopt;
        } else if (errno == EAGAIN) {
            wait(POLLIN, deadline);
        } else if (errno != EINTR) {
            throw ControlError("the " + peer_ + " cannot be reached: " + describe(errno));
        }
    }
}

void ControlClient::wait(short events, const Deadline &deadline) const {
    int milliseconds = -1;
    if (deadline) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(*deadline - Clock::now());
        milliseconds = std::max(0, static_cast<int>(left.count()));
    }
    pollfd entry{socket_, events, 0};
    if (poll(&entry, 1, milliseconds) == 0) {
        throw ControlError("the " + peer_ + " does not answer");
    }
}

} // namespace camera
