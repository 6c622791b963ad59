// SPDX-License-Identifier: Apache-2.0
#include "socket_descriptor.h"

#include <atomic>
#include <mutex>

#include <sys/socket.h>
#include <unistd.h>

namespace standin {

namespace {

// Guards the list and every change of a descriptor, so that a fork finds each socket in the list exactly while it is
// open. Nothing that blocks happens under it.
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
    next = first;
    if (first != nullptr) {
        first->previous = this;
    }
    first = this;
}

SocketDescriptor::~SocketDescriptor() {
    const std::lock_guard<std::mutex> lock(listMutex);
    closeNumber(descriptor);
    (previous != nullptr ? previous->next : first) = next;
    if (next != nullptr) {
        next->previous = previous;
    }
}

bool SocketDescriptor::open() noexcept {
    const std::lock_guard<std::mutex> lock(listMutex);
    closeNumber(descriptor);
    descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    return descriptor >= 0;
}

void SocketDescriptor::close() noexcept {
    const std::lock_guard<std::mutex> lock(listMutex);
    closeNumber(descriptor);
}

void SocketDescriptor::shutDown() noexcept {
    const std::lock_guard<std::mutex> lock(listMutex);
    if (descriptor >= 0) {
        ::shutdown(descriptor, SHUT_RDWR);
    }
}

void SocketDescriptor::holdForFork() noexcept {
    listMutex.lock();
}

void SocketDescriptor::resumeInParent() noexcept {
    listMutex.unlock();
}

void SocketDescriptor::resumeInChild() noexcept {
    for (SocketDescriptor *socket = first; socket != nullptr; socket = socket->next) {
        closeNumber(socket->descriptor);
    }
    forks.fetch_add(1, std::memory_order_relaxed);
    listMutex.unlock();
}

std::uint64_t SocketDescriptor::generation() noexcept {
    return forks.load(std::memory_order_relaxed);
}

} // namespace standin
