// SPDX-License-Identifier: Apache-2.0
/** @file State of the library between calls: the open handles and the objects behind them. */
#ifndef QUARNSNMP_STANDIN_LIBRARY_H
#define QUARNSNMP_STANDIN_LIBRARY_H

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "channel.h"
#include "deadline.h"
#include "log.h"
#include "zorva-core.h"

namespace standin {

/** Services, in the order of service_calls.def. */
enum class Service {
#define ZORVA_SERVICE(service) service,
#include "service_calls.def"
};

/**
 * State of the library. A handle is a number that is assigned once and looked up at every use, so a closed handle or
 * one of another kind is detected. A lookup shares ownership, because another thread may close the handle during the
 * call.
 */
class Library {
public:
    Library() = default;
    Library(const Library &) = delete;
    Library &operator=(const Library &) = delete;

    /** Adds a user. The first one reads the environment. */
    zorva_core_status start();

    /** Removes a user. The last one closes everything. */
    zorva_core_status stop();

    /** Opens a logging context. */
    zorva_core_status openLog(const char *name, void **cookie);

    /** Closes a logging context. */
    zorva_core_status closeLog(void *cookie);

    /** Finds a logging context. @return null when the handle is not an open one */
    std::shared_ptr<const LogContext> findLog(void *cookie) noexcept;

    /** Opens the communication. @param logCookie  context for its messages, or null */
    zorva_core_status openIpc(void *logCookie, void **cookie);

    /** Closes the communication and the service handles opened on it. */
    zorva_core_status closeIpc(void *cookie);

    /** Opens a service: connects to it and sends a greeting. @param logCookie  an open context or null; not used */
    zorva_core_status openService(Service service, void *ipcCookie, void *logCookie, void **cookie);

    /** Closes a service handle after a call in progress has ended. */
    zorva_core_status closeService(Service service, void *cookie);

    /** Finds the connection of an open service handle. */
    zorva_core_status findService(Service service, void *cookie, std::shared_ptr<Channel> &channel);

    /** Finds the connection to the camera's directory. */
    zorva_core_status findDirectory(std::shared_ptr<Channel> &channel);

    /** Closes everything, regardless of the number of users. Used when the library is unloaded. */
    void closeAll() noexcept;

    /** Keeps the state consistent during a fork; called before it. */
    void lockForFork() noexcept;

    /** Ends lockForFork() in the parent and in the child. */
    void unlockAfterFork() noexcept;

private:
    using Handle = std::uintptr_t;

    struct OpenService {
        Service service;
        Handle ipc;
        std::shared_ptr<Channel> channel;
    };

    struct State {
        std::string directory;
        std::shared_ptr<LogSink> sink;
        std::map<Handle, std::shared_ptr<const LogContext>> logs;
        std::map<Handle, std::weak_ptr<const LogContext>> communications; ///< with the logging context of each
        std::map<Handle, OpenService> services;
        std::shared_ptr<Channel> directoryChannel;
    };

    std::shared_ptr<Channel> makeChannel(const char *name, const std::weak_ptr<const LogContext> &log) const;
    std::shared_ptr<const LogContext> lookUpLog(void *cookie) const noexcept;
    zorva_core_status lookUpService(Service service, void *cookie, OpenService *&found) noexcept;
    static void replaceIfStale(std::shared_ptr<Channel> &channel);
    static void abortChannels(const State &state) noexcept;

    std::mutex mutex_;
    unsigned users_ = 0;
    Handle lastHandle_ = 0;
    State state_;
};

/** Returns the only instance. It stays valid while the library is loaded, even during static destruction. */
Library &library() noexcept;

} // namespace standin

#endif
