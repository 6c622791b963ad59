// SPDX-License-Identifier: Apache-2.0
#include "reserved_port.h"

#include <cerrno>
#include <random>
#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace harness {

namespace {

/** Binds a socket of a type to a port of the loopback interface. @return its descriptor, or -1 when the port is taken
 */
int bound(int type, std::uint16_t number) {
    const int fd = socket(AF_INET, type | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        throw std::runtime_error("no socket to be had");
    }
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(number);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(fd, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
        close(fd);
        return -1;
    }
    return fd;
}

} // namespace

ReservedPort::ReservedPort() : marker_(-1), number_(0) {
    constexpr int kAttempts = 200;
    std::random_device source;
    std::uniform_int_distribution<int> range(20000, 31999);
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        const auto candidate = static_cast<std::uint16_t>(range(source));
        marker_ = bound(SOCK_STREAM, candidate);
        if (marker_ >= 0 && !isBound(candidate)) {
            number_ = candidate;
            return;
        }
        if (marker_ >= 0) {
            close(marker_);
        }
    }
    throw std::runtime_error("no free port found");
}

ReservedPort::~ReservedPort() {
    close(marker_);
}

std::uint16_t ReservedPort::number() const {
    return number_;
}

bool ReservedPort::isBound(std::uint16_t number) {
    const int fd = bound(SOCK_DGRAM, number);
    if (fd < 0) {
        return true;
    }
    close(fd);
    return false;
}

} // namespace harness
