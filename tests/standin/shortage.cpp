// SPDX-License-Identifier: Apache-2.0
#include "shortage.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

#include <dlfcn.h>
#include <sys/socket.h>

namespace {

/** Per resource, the number of requests until the one that fails; negative when none does. */
thread_local std::array<int, 3> countdowns = {-1, -1, -1};
thread_local bool smallSendBuffers = false;

int &countdownOf(Resource resource) noexcept {
    return countdowns[static_cast<std::size_t>(resource)];
}

bool failsNow(Resource resource) noexcept {
    int &countdown = countdownOf(resource);
    return countdown >= 0 && countdown-- == 0;
}

} // namespace

Shortage::Shortage(Resource resource, int successes) noexcept : resource_(resource) {
    countdownOf(resource) = successes;
}

Shortage::~Shortage() {
    countdownOf(resource_) = -1;
}

bool Shortage::hasStruck() const noexcept {
    return countdownOf(resource_) < 0;
}

SmallSendBuffers::SmallSendBuffers() noexcept {
    smallSendBuffers = true;
}

SmallSendBuffers::~SmallSendBuffers() {
    smallSendBuffers = false;
}

void *operator new(std::size_t size) {
    void *const memory = failsNow(Resource::kAllocations) ? nullptr : std::malloc(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete(void *memory) noexcept {
    std::free(memory);
}

void operator delete(void *memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

extern "C" char *strdup(const char *text) noexcept {
    if (failsNow(Resource::kTextCopies)) {
        return nullptr;
    }
    const std::size_t size = std::strlen(text) + 1;
    void *const copy = std::malloc(size);
    return copy != nullptr ? static_cast<char *>(std::memcpy(copy, text, size)) : nullptr;
}

extern "C" int socket(int domain, int type, int protocol) noexcept {
    if (failsNow(Resource::kSockets)) {
        errno = EMFILE;
        return -1;
    }
    using Function = int (*)(int, int, int);
    static const auto original = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "socket"));
    const int descriptor = original(domain, type, protocol);
    if (descriptor >= 0 && smallSendBuffers) {
        const int size = 4096;
        ::setsockopt(descriptor, SOL_SOCKET, SO_SNDBUF, &size, sizeof size);
    }
    return descriptor;
}
