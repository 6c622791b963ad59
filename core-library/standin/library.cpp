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

#include "answer.h"
#include "status.h"
#include "wire.h"

namespace standin {

namespace {

constexpr std::array kServiceNames = {
#define ZORVA_SERVICE(service) #service,
#include "service_calls.def"
};

// Ready-made, so that a handle can be closed when memory has run out.
constexpr std::string_view kGreeting = "[\"initiator_init\",null]\n";
constexpr std::string_view kFarewell = "[\"initiator_deinit\",null]\n";

const char *nameOf(Service service) noexcept {
    return kServiceNames[static_cast<std::size_t>(service)];
}

/**
 * The library outlives its static destruction, because a thread may still be in a call while the process ends. What it
 * holds is closed then; an empty library owns no memory.
 */
union Storage {
    Storage() noexcept : instance() {}
    ~Storage() {
        instance.closeAll();
    }
    Library instance;
};

Storage storage; // NOLINT(cert-err58-cpp)

void holdForFork() {
    library().holdForFork();
    SocketDescriptor::holdForFork();
}

void resumeInParent() {
    SocketDescriptor::resumeInParent();
    library().resumeAfterFork();
}

void resumeInChild() {
    SocketDescriptor::resumeInChild();
    library().resumeAfterFork();
}

// Registered when the library is loaded, before whoever uses it can register handlers: a child then comes to ours
// first, and theirs may use the library.
const int forkWatchError = ::pthread_atfork(&holdForFork, &resumeInParent, &resumeInChild);

std::string environment(const char *name) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): read once, when the agent loads its modules and has no threads yet
    const char *const value = std::getenv(name);
    return value != nullptr ? value : "";
}

std::uintptr_t toHandle(void *cookie) noexcept {
    return reinterpret_cast<std::uintptr_t>(cookie);
}

void *toCookie(std::uintptr_t handle) noexcept {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): nothing lies there; the pointer is a number in disguise
    return reinterpret_cast<void *>(handle);
}

void writeNow(const LogContext &context, int level, const char *format, ...) ZORVA_CORE_PRINTF(3, 4);

void writeNow(const LogContext &context, int level, const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    context.write(level, format, arguments);
    va_end(arguments);
}

/** Sets up the log as the environment says. */
std::shared_ptr<LogSink> openSink() {
    const std::string path = environment("QUARNSNMP_LOG_FILE");
    int error = 0;
    std::shared_ptr<LogSink> sink = LogSink::open(path, error);
    const LogContext context("zorva-core", sink);
    if (error != 0) {
        std::array<char, 128> text{};
        const char *const reason = ::strerror_r(error, text.data(), text.size());
        writeNow(context, kError, "cannot open the log file %s: %s; logging to standard error", path.c_str(), reason);
    }
    const std::string word = environment("QUARNSNMP_LOG_LEVEL");
    const int level = word.empty() ? kInfo : parseLevel(word);
    if (level < 0) {
        writeNow(context, kWarning, "QUARNSNMP_LOG_LEVEL is '%s', which is not a level; using info", word.c_str());
    }
    setLogThreshold(level < 0 ? kInfo : level);
    return sink;
}

} // namespace

Library &library() noexcept {
    return storage.instance;
}

zorva_core_status Library::start() {
    const std::lock_guard<std::mutex> lock(mutex);
    if (forkWatchError != 0) {
        return wire::kNoMemory;
    }
    if (users == 0) {
        state.directory = wire::socketDirectory();
        state.directoryChannel = makeChannel(wire::kDirectorySocket, nullptr);
        state.sink = openSink();
    }
    ++users;
    return wire::kSuccess;
}

zorva_core_status Library::stop() {
    State closing;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (users == 0) {
            return wire::kNotInitialised;
        }
        if (--users > 0) {
            return wire::kSuccess;
        }
        setLogThreshold(-1);
        std::swap(closing, state);
    }
    abortChannels(closing);
    return wire::kSuccess;
}

void Library::closeAll() noexcept {
    State closing;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        users = 0;
        setLogThreshold(-1);
        std::swap(closing, state);
    }
    abortChannels(closing);
}

void Library::abortChannels(const State &state) noexcept {
    for (const auto &[handle, open] : state.services) {
        // A stale one may have been left in mid-call by a thread that exists in the parent only.
        if (!open.channel->isStale()) {
            open.channel->abort();
        }
    }
    if (state.directoryChannel != nullptr && !state.directoryChannel->isStale()) {
        state.directoryChannel->abort();
    }
}

bool Library::isOpenLog(void *cookie) const {
    return state.logs.count(toHandle(cookie)) != 0;
}

zorva_core_status Library::openLog(const char *name, void **cookie) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (users == 0) {
        return wire::kNotInitialised;
    }
    state.logs.emplace(lastHandle + 1, std::make_shared<const LogContext>(name, state.sink));
    *cookie = toCookie(++lastHandle);
    return wire::kSuccess;
}

zorva_core_status Library::closeLog(void *cookie) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (users == 0) {
        return wire::kNotInitialised;
    }
    return state.logs.erase(toHandle(cookie)) != 0 ? wire::kSuccess : wire::kInvalidHandle;
}

std::shared_ptr<const LogContext> Library::findLog(void *cookie) noexcept {
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = state.logs.find(toHandle(cookie));
    return found != state.logs.end() ? found->second : nullptr;
}

zorva_core_status Library::openIpc(void *logCookie, void **cookie) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (users == 0) {
        return wire::kNotInitialised;
    }
    if (logCookie != nullptr && !isOpenLog(logCookie)) {
        return wire::kInvalidHandle;
    }
    state.communications.emplace(lastHandle + 1, logCookie);
    *cookie = toCookie(++lastHandle);
    return wire::kSuccess;
}

zorva_core_status Library::closeIpc(void *cookie) {
    State closing;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (users == 0) {
            return wire::kNotInitialised;
        }
        const Handle ipc = toHandle(cookie);
        if (state.communications.erase(ipc) == 0) {
            return wire::kInvalidHandle;
        }
        for (auto open = state.services.begin(); open != state.services.end();) {
            const auto next = std::next(open);
            if (open->second.ipc == ipc) {
                closing.services.insert(state.services.extract(open));
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
        const std::lock_guard<std::mutex> lock(mutex);
        if (users == 0) {
            return wire::kNotInitialised;
        }
        const auto communication = state.communications.find(ipc);
        if (communication == state.communications.end() || (logCookie != nullptr && !isOpenLog(logCookie))) {
            return wire::kInvalidHandle;
        }
        channel = makeChannel(nameOf(service), communication->second);
    }
    const zorva_core_status status =
        channel->exchange(kGreeting, deadline, [](std::string_view answer) { return readAnswer(answer, nullptr, 0); });
    if (status != wire::kSuccess) {
        return status;
    }
    const std::lock_guard<std::mutex> lock(mutex);
    // Another thread may have closed it meanwhile.
    if (state.communications.count(ipc) == 0) {
        return wire::kInvalidHandle;
    }
    state.services.emplace(lastHandle + 1, OpenService{service, ipc, std::move(channel)});
    *cookie = toCookie(++lastHandle);
    return wire::kSuccess;
}

zorva_core_status Library::closeService(Service service, void *cookie) {
    const Deadline deadline(kCallLimit);
    std::shared_ptr<Channel> channel;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (users == 0) {
            return wire::kNotInitialised;
        }
        const auto found = state.services.find(toHandle(cookie));
        if (found == state.services.end() || found->second.service != service) {
            return wire::kInvalidHandle;
        }
        channel = std::move(found->second.channel);
        state.services.erase(found);
    }
    if (!channel->isStale()) {
        channel->leave(kFarewell, deadline);
    }
    return wire::kSuccess;
}

zorva_core_status Library::findService(Service service, void *cookie, std::shared_ptr<Channel> &channel) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (users == 0) {
        return wire::kNotInitialised;
    }
    const auto found = state.services.find(toHandle(cookie));
    if (found == state.services.end() || found->second.service != service) {
        return wire::kInvalidHandle;
    }
    replaceIfStale(found->second.channel);
    channel = found->second.channel;
    return wire::kSuccess;
}

zorva_core_status Library::findDirectory(std::shared_ptr<Channel> &channel) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (users == 0) {
        return wire::kNotInitialised;
    }
    replaceIfStale(state.directoryChannel);
    channel = state.directoryChannel;
    return wire::kSuccess;
}

std::shared_ptr<Channel> Library::makeChannel(const char *name, void *logCookie) const {
    return std::make_shared<Channel>(wire::socketPath(state.directory, name), logCookie);
}

void Library::replaceIfStale(std::shared_ptr<Channel> &channel) {
    if (channel->isStale()) {
        channel = channel->replacement();
    }
}

void Library::holdForFork() noexcept {
    mutex.lock();
}

void Library::resumeAfterFork() noexcept {
    mutex.unlock();
}

} // namespace standin
