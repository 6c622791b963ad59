// SPDX-License-Identifier: Apache-2.0
#include "hostile_agent.h"

#include <array>
#include <cerrno>
#include <optional>
#include <system_error>
#include <utility>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace hostile {

namespace {

constexpr std::size_t kLargestMessage = 65536;
constexpr int kPollMilliseconds = 20;

sockaddr_in loopback() {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

} // namespace

Agent::Agent(Script script, Manner manner)
    : script_(std::move(script)), manner_(manner), socket_(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    const sockaddr_in address = loopback();
    if (socket_ < 0 || bind(socket_, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
        throw std::system_error(errno, std::generic_category(), "no socket for an agent");
    }
    thread_ = std::thread([this] { serve(); });
}

Agent::~Agent() {
    ends_ = true;
    thread_.join();
    close(socket_);
}

std::string Agent::host() const {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    getsockname(socket_, reinterpret_cast<sockaddr *>(&address), &size);
    return "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
}

void Agent::answer(const wrong::Request &request, const sockaddr_in &from) {
    const std::vector<std::string> messages = script_(request);
    do {
        for (const std::string &message : messages) {
            sendto(socket_, message.data(), message.size(), 0, reinterpret_cast<const sockaddr *>(&from), sizeof from);
        }
    } while (manner_ == Manner::Flood && !ends_);
}

void Agent::serve() {
    std::vector<char> buffer(kLargestMessage);
    while (!ends_) {
        pollfd watched{socket_, POLLIN, 0};
        if (poll(&watched, 1, kPollMilliseconds) <= 0) {
            continue;
        }
        sockaddr_in from{};
        socklen_t size = sizeof from;
        const ssize_t count =
            recvfrom(socket_, buffer.data(), buffer.size(), 0, reinterpret_cast<sockaddr *>(&from), &size);
        const std::optional<wrong::Request> request =
            count > 0 ? wrong::decode({buffer.data(), static_cast<std::size_t>(count)}) : std::nullopt;
        if (!request) {
            continue;
        }
        ++requests_;
        answer(*request, from);
    }
}

} // namespace hostile
