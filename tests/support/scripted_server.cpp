// SPDX-License-Identifier: Apache-2.0
#include "scripted_server.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace support {

namespace {

[[noreturn]] void fail(const std::string &what) {
    throw std::system_error(errno, std::generic_category(), what);
}

int listenAt(const std::string &path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        fail(path);
    }
    std::memcpy(address.sun_path, path.data(), path.size());
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listener < 0 || ::bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 ||
        ::listen(listener, 64) != 0) {
        fail(path);
    }
    return listener;
}

} // namespace

void Peer::send(std::string_view octets) const {
    while (!octets.empty()) {
        const ssize_t count = ::send(descriptor_, octets.data(), octets.size(), MSG_NOSIGNAL);
        if (count < 0) {
            return;
        }
        octets.remove_prefix(static_cast<std::size_t>(count));
    }
}

void Peer::hangUp() const {
    ::shutdown(descriptor_, SHUT_RDWR);
}

ScriptedServer::ScriptedServer(const std::string &directory, const std::string &name, Handler handler, Scope scope)
    : path_(directory + "/" + name + ".sock"), scope_(scope), listener_(listenAt(path_)),
      wakeUp_(::eventfd(0, EFD_CLOEXEC)), handler_(std::move(handler)) {
    if (wakeUp_ < 0) {
        fail("eventfd");
    }
    thread_ = std::thread([this] { run(); });
}

ScriptedServer::ScriptedServer(const std::string &directory, const std::string &name, const std::string &answer)
    : ScriptedServer(directory, name, [answer](Peer &peer, const std::string &) { peer.send(answer + "\n"); }) {}

ScriptedServer::~ScriptedServer() {
    const std::uint64_t one = 1;
    if (::write(wakeUp_, &one, sizeof one) != sizeof one) {
        ::abort();
    }
    thread_.join();
    ::unlink(path_.c_str());
    ::close(listener_);
    ::close(wakeUp_);
    for (const auto &[descriptor, pending] : connections_) {
        ::close(descriptor);
    }
}

std::vector<std::string> ScriptedServer::requests() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return received_;
}

unsigned ScriptedServer::greetings() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return greeted_;
}

unsigned ScriptedServer::farewells() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return left_;
}

unsigned ScriptedServer::connectionCount() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return accepted_;
}

std::size_t ScriptedServer::openConnections() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return connections_.size();
}

void ScriptedServer::forEachPeer(const std::function<void(Peer &peer)> &action) {
    const std::lock_guard<std::mutex> lock(mutex_);
    for (const auto &[descriptor, pending] : connections_) {
        Peer peer(descriptor);
        action(peer);
    }
}

void ScriptedServer::refuseInput() {
    const std::lock_guard<std::mutex> lock(mutex_);
    for (const auto &[descriptor, pending] : connections_) {
        refusing_.insert(descriptor);
        ::shutdown(descriptor, SHUT_RD);
    }
}

void ScriptedServer::setHandler(Handler handler) {
    const std::lock_guard<std::mutex> lock(mutex_);
    handler_ = std::move(handler);
}

void ScriptedServer::run() {
    for (;;) {
        std::vector<pollfd> waits = {{wakeUp_, POLLIN, 0}, {listener_, POLLIN, 0}};
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            for (const auto &[descriptor, pending] : connections_) {
                if (refusing_.count(descriptor) == 0) {
                    waits.push_back({descriptor, POLLIN, 0});
                }
            }
        }
        if (::poll(waits.data(), waits.size(), -1) < 0 && errno != EINTR) {
            return;
        }
        if (waits[0].revents != 0) {
            return;
        }
        for (std::size_t i = 2; i < waits.size(); ++i) {
            if (waits[i].revents != 0 && !receive(waits[i].fd)) {
                const std::lock_guard<std::mutex> lock(mutex_);
                connections_.erase(waits[i].fd);
                ::close(waits[i].fd);
            }
        }
        if (waits[1].revents != 0) {
            accept();
        }
    }
}

void ScriptedServer::accept() {
    const int descriptor = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (descriptor >= 0) {
        const std::lock_guard<std::mutex> lock(mutex_);
        connections_.emplace(descriptor, std::string());
        ++accepted_;
    }
}

bool ScriptedServer::receive(int descriptor) {
    std::array<char, 4096> octets{};
    const ssize_t count = ::recv(descriptor, octets.data(), octets.size(), 0);
    if (count <= 0) {
        const std::lock_guard<std::mutex> lock(mutex_);
        return refusing_.count(descriptor) != 0;
    }
    std::vector<std::string> lines;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        std::string &pending = connections_[descriptor];
        pending.append(octets.data(), static_cast<std::size_t>(count));
        for (std::size_t end = pending.find('\n'); end != std::string::npos; end = pending.find('\n')) {
            lines.push_back(pending.substr(0, end));
            pending.erase(0, end + 1);
        }
    }
    for (const std::string &line : lines) {
        handle(descriptor, line);
    }
    return true;
}

void ScriptedServer::handle(int descriptor, const std::string &line) {
    Peer peer(descriptor);
    Handler react;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        const bool isGreeting = line == R"(["initiator_init",null])";
        const bool isFarewell = line == R"(["initiator_deinit",null])";
        greeted_ += isGreeting ? 1 : 0;
        left_ += isFarewell ? 1 : 0;
        if (scope_ == Scope::kCalls && (isGreeting || isFarewell)) {
            react = [](Peer &initiator, const std::string &) { initiator.send("[0]\n"); };
        } else {
            received_.push_back(line);
            react = handler_;
        }
    }
    // Not under the mutex: a handler may wait for an action of the test.
    react(peer, line);
}

} // namespace support
