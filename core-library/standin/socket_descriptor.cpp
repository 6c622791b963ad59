// SPDX-License-Identifier: Apache-2.0
#include "socket_descriptor.h"

#include <atomic>
#include <mutex>

#include <sys/socket.h>
#include <unistd.h>

namespace standin {

namespace {

// Protects the list and every change of a descriptor, so that a fork finds each open socket in the list. No blocking
// operation runs while it is locked.
std::mutex listMutex;
SocketDescriptor *first = nullptr;
std::atomic<std::uint64_t> forks{0};

void closeNumber(int &descriptor) noexcept {
    if (descriptor >= 0) {
        ::close(descriptor);
        descriptor = -1;
    }
}

} // namespace

SocketDescriptor::SocketDescriptor() noexcept {
    const std::lock_guard<std::mutex> lock(listMutex);
    next_ = first;
    if (first != nullptr) {
        first->previous_ = this;
    }
    first = this;
}

SocketDescriptor::~SocketDescriptor() {
    const std::lock_guard<std::mutex> lock(listMutex);
    closeNumber(descriptor_);
    (previous_ != nullptr ? previous_->next_ : first) = next_;
    if (next_ != nullptr) {
        next_->previous_ = previous_;
    }
}

bool SocketDescriptor::open() noexcept {
    const std::lock_guard<std::mutex> lock(listMutex);
    closeNumber(descriptor_);
    descriptor_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    return descriptor_ >= 0;
}

void SocketDescriptor::close() noexcept {
    const std::lock_guard<std::mutex> lock(listMutex);
    closeNumber(descriptor_);
}

void SocketDescriptor::shutDown() noexcept {
    const std::lock_guard<std::mutex> lock(listMutex);
    if (descriptor_ >= 0) {
        ::shutdown(descriptor_, SHUT_RDWR);
    }
}

void SocketDescriptor::lockForFork() noexcept {
    listMutex.lock();
}

void SocketDescriptor::unlockInParent() noexcept {
    listMutex.unlock();
}

void SocketDescriptor::closeAllInChild() noexcept {
    for (SocketDescriptor *socket = first; socket != nullptr; socket = socket->next_) {
        closeNumber(socket->descriptor_);
    }
    forks.fetch_add(1, std::memory_order_relaxed);
    listMutex.unlock();
}

std::uint64_t SocketDescriptor::generation() noexcept {
    return forks.load(std::memory_order_relaxed);
}

} // namespace standin
