// SPDX-License-Identifier: Apache-2.0
#include "library.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include <pthread.h>

#include "directory_check.h"
#include "response.h"
#include "status.h"
#include "wire.h"

namespace standin {

namespace {

constexpr std::array kServiceNames = {
#define ZORVA_SERVICE(service) #service,
#include "service_calls.def"
};

// Constants, because closing a handle must not allocate memory.
constexpr std::string_view kGreeting = "[\"initiator_init\",null]\n";
constexpr std::string_view kFarewell = "[\"initiator_deinit\",null]\n";

const char *nameOf(Service service) noexcept {
    return kServiceNames[static_cast<std::size_t>(service)];
}

/**
 * Storage whose instance is never destroyed, because a thread may still be in a call while the process exits. Static
 * destruction only closes everything; an empty library owns no memory.
 */
union Storage {
    Storage() noexcept : instance() {}
    ~Storage() {
        instance.closeAll();
    }
    Library instance;
};

Storage storage; // NOLINT(cert-err58-cpp)

void prepareFork() {
    library().lockForFork();
    SocketDescriptor::lockForFork();
}

void afterForkInParent() {
    SocketDescriptor::unlockInParent();
    library().unlockAfterFork();
}

void afterForkInChild() {
    SocketDescriptor::closeAllInChild();
    library().unlockAfterFork();
}

// Registered at load time, before any user can register handlers of its own: handlers run in the child in the order of
// their registration, so a user's handler may already call the library.
const int forkHandlerError = ::pthread_atfork(&prepareFork, &afterForkInParent, &afterForkInChild);

std::string environment(const char *name) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): read once, while the agent loads its modules and has no threads
    const char *const value = std::getenv(name);
    return value != nullptr ? value : "";
}

std::uintptr_t toHandle(void *cookie) noexcept {
    return reinterpret_cast<std::uintptr_t>(cookie);
}

void *toCookie(std::uintptr_t handle) noexcept {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a handle is a number, never dereferenced
    return reinterpret_cast<void *>(handle);
}

/** Sets up the log from the environment. */
std::shared_ptr<LogSink> openSink() {
    const std::string path = environment("QUARNSNMP_LOG_FILE");
    int error = 0;
    std::shared_ptr<LogSink> sink = LogSink::open(path, error);
    const LogContext context("zorva-core", sink);
    if (error != 0) {
        std::array<char, 128> text{};
        const char *const reason = ::strerror_r(error, text.data(), text.size());
        context.write(kError, "cannot open the log file %s: %s; logging to standard error", path.c_str(), reason);
    }
    const std::string word = environment("QUARNSNMP_LOG_LEVEL");
    const int level = word.empty() ? kInfo : parseLevel(word);
    if (level < 0) {
        context.write(kWarning, "QUARNSNMP_LOG_LEVEL is '%s', which is not a level; using info", word.c_str());
    }
    setLogThreshold(level < 0 ? kInfo : level);
    return sink;
}

} // namespace

Library &library() noexcept {
    return storage.instance;
}

zorva_core_status Library::start() {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (forkHandlerError != 0) {
        return wire::kNoMemory;
    }
    if (users_ == 0) {
        state_.directory = wire::socketDirectory();
        state_.directoryChannel = makeChannel(wire::kDirectorySocket, {});
        state_.sink = openSink();
        if (const std::optional<std::string> reason = wire::unsafeDirectory(state_.directory)) {
            LogContext("zorva-core", state_.sink).write(kError, "refusing the camera's sockets: %s", reason->c_str());
        }
    }
    ++users_;
    return wire::kSuccess;
}

zorva_core_status Library::stop() {
    State closing;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (users_ == 0) {
            return wire::kNotInitialised;
        }
        if (--users_ > 0) {
            return wire::kSuccess;
        }
        setLogThreshold(-1);
        std::swap(closing, state_);
    }
    abortChannels(closing);
    return wire::kSuccess;
}

void Library::closeAll() noexcept {
    State closing;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        users_ = 0;
        setLogThreshold(-1);
        std::swap(closing, state_);
    }
    abortChannels(closing);
}

void Library::abortChannels(const State &state) noexcept {
    for (const auto &[handle, open] : state.services) {
        // A thread that exists only in the parent may hold the lock of a stale channel.
        if (!open.channel->isStale()) {
            open.channel->abort();
        }
    }
    if (state.directoryChannel != nullptr && !state.directoryChannel->isStale()) {
        state.directoryChannel->abort();
    }
}

zorva_core_status Library::openLog(const char *name, void **cookie) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (users_ == 0) {
        return wire::kNotInitialised;
    }
    state_.logs.emplace(lastHandle_ + 1, std::make_shared<const LogContext>(name, state_.sink));
    *cookie = toCookie(++lastHandle_);
    return wire::kSuccess;
}

zorva_core_status Library::closeLog(void *cookie) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (users_ == 0) {
        return wire::kNotInitialised;
    }
    return state_.logs.erase(toHandle(cookie)) != 0 ? wire::kSuccess : wire::kInvalidHandle;
}

std::shared_ptr<const LogContext> Library::findLog(void *cookie) noexcept {
    const std::lock_guard<std::mutex> lock(mutex_);
    return lookUpLog(cookie);
}

zorva_core_status Library::openIpc(void *logCookie, void **cookie) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (users_ == 0) {
        return wire::kNotInitialised;
    }
    const std::shared_ptr<const LogContext> log = lookUpLog(logCookie);
    if (logCookie != nullptr && log == nullptr) {
        return wire::kInvalidHandle;
    }
    state_.communications.emplace(lastHandle_ + 1, log);
    *cookie = toCookie(++lastHandle_);
    return wire::kSuccess;
}

zorva_core_status Library::closeIpc(void *cookie) {
    State closing;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (users_ == 0) {
            return wire::kNotInitialised;
        }
        const Handle ipc = toHandle(cookie);
        if (state_.communications.erase(ipc) == 0) {
            return wire::kInvalidHandle;
        }
        for (auto open = state_.services.begin(); open != state_.services.end();) {
            const auto next = std::next(open);
            if (open->second.ipc == ipc) {
                closing.services.insert(state_.services.extract(open));
            }
            open = next;
        }
    }
    abortChannels(closing);
    return wire::kSuccess;
}

zorva_core_status Library::openService(Service service, void *ipcCookie, void *logCookie, void **cookie) {
    const Deadline deadline(kCallLimit);
    const Handle ipc = toHandle(ipcCookie);
    std::shared_ptr<Channel> channel;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (users_ == 0) {
            return wire::kNotInitialised;
        }
        const auto communication = state_.communications.find(ipc);
        if (communication == state_.communications.end() || (logCookie != nullptr && lookUpLog(logCookie) == nullptr)) {
            return wire::kInvalidHandle;
        }
        channel = makeChannel(nameOf(service), communication->second);
    }
    const zorva_core_status status = channel->exchange(
        kGreeting, deadline, [](std::string_view response) { return readResponse(response, nullptr, 0); });
    if (status != wire::kSuccess) {
        return status;
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    // Another thread may have closed the communication in the meantime.
    if (state_.communications.count(ipc) == 0) {
        return wire::kInvalidHandle;
    }
    state_.services.emplace(lastHandle_ + 1, OpenService{service, ipc, std::move(channel)});
    *cookie = toCookie(++lastHandle_);
    return wire::kSuccess;
}

zorva_core_status Library::closeService(Service service, void *cookie) {
    const Deadline deadline(kCallLimit);
    std::shared_ptr<Channel> channel;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        OpenService *found = nullptr;
        const zorva_core_status status = lookUpService(service, cookie, found);
        if (status != wire::kSuccess) {
            return status;
        }
        channel = std::move(found->channel);
        state_.services.erase(toHandle(cookie));
    }
    if (!channel->isStale()) {
        channel->close(kFarewell, deadline);
    }
    return wire::kSuccess;
}

zorva_core_status Library::findService(Service service, void *cookie, std::shared_ptr<Channel> &channel) {
    const std::lock_guard<std::mutex> lock(mutex_);
    OpenService *found = nullptr;
    const zorva_core_status status = lookUpService(service, cookie, found);
    if (status == wire::kSuccess) {
        replaceIfStale(found->channel);
        channel = found->channel;
    }
    return status;
}

zorva_core_status Library::findDirectory(std::shared_ptr<Channel> &channel) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (users_ == 0) {
        return wire::kNotInitialised;
    }
    replaceIfStale(state_.directoryChannel);
    channel = state_.directoryChannel;
    return wire::kSuccess;
}

std::shared_ptr<const LogContext> Library::lookUpLog(void *cookie) const noexcept {
    const auto found = state_.logs.find(toHandle(cookie));
    return found != state_.logs.end() ? found->second : nullptr;
}

zorva_core_status Library::lookUpService(Service service, void *cookie, OpenService *&found) noexcept {
    if (users_ == 0) {
        return wire::kNotInitialised;
    }
    const auto open = state_.services.find(toHandle(cookie));
    if (open == state_.services.end() || open->second.service != service) {
        return wire::kInvalidHandle;
    }
    found = &open->second;
    return wire::kSuccess;
}

std::shared_ptr<Channel> Library::makeChannel(const char *name, const std::weak_ptr<const LogContext> &log) const {
    return std::make_shared<Channel>(wire::socketPath(state_.directory, name), log);
}

void Library::replaceIfStale(std::shared_ptr<Channel> &channel) {
    if (channel->isStale()) {
        channel = channel->replacement();
    }
}

void Library::lockForFork() noexcept {
    mutex_.lock();
}

void Library::unlockAfterFork() noexcept {
    mutex_.unlock();
}

} // namespace standin
