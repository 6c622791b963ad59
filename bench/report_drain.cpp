// SPDX-License-Identifier: Apache-2.0
#include "report_drain.h"

#include <array>
#include <stdexcept>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace bench {

namespace {

constexpr int kLookInterval = 100; ///< milliseconds between looks at the end

} // namespace

ReportDrain::ReportDrain(const std::string &cameraDirectory) : path_(cameraDirectory + "/watch.sock") {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path_.copy(&address.sun_path[0], sizeof address.sun_path - 1);
    socket_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (socket_ < 0 || bind(socket_, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
        throw std::runtime_error("cannot bind " + path_);
    }
    thread_ = std::thread([this] { drain(); });
}

ReportDrain::~ReportDrain() {
    ended_ = true;
    thread_.join();
    close(socket_);
    unlink(path_.c_str());
}

void ReportDrain::drain() const {
    std::array<char, 4096> report{};
    while (!ended_) {
        pollfd readable{socket_, POLLIN, 0};
        poll(&readable, 1, kLookInterval);
        while (recv(socket_, report.data(), report.size(), 0) >= 0) {
        }
    }
}

} // namespace bench
