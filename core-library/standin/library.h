// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * What the library keeps between calls: the handles it has given out and what they stand for.
 */
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

/** The services, under their names. */
enum class Service {
#define ZORVA_SERVICE(service) service,
#include "service_calls.def"
};

/**
 * The state of the library. A handle is a number that is given out once and looked up at every use, so that one that
 * was closed, or belongs to something else, is recognised. Looking up gives shared ownership: another thread may close
 * the handle during the call.
 */
class Library {
public:
    Library() = default;
    Library(const Library &) = delete;
    Library &operator=(const Library &) = delete;

    /** Counts a user in; the first one makes the library read its environment. */
    zorva_core_status start();

    /** Counts a user out; the last one closes everything. */
    zorva_core_status stop();

    zorva_core_status openLog(const char *name, void **cookie);
    zorva_core_status closeLog(void *cookie);
    /** Finds a logging context; null when there is none. */
    std::shared_ptr<const LogContext> findLog(void *cookie) noexcept;

    zorva_core_status openIpc(void *logCookie, void **cookie);
    /** Closes the communication and with it the service handles that use it. */
    zorva_core_status closeIpc(void *cookie);

    /** Opens a service: connects and asks it. */
    zorva_core_status openService(Service service, void *ipcCookie, void *logCookie, void **cookie);
    zorva_core_status closeService(Service service, void *cookie);
    /** Finds the connection of an open service handle. */
    zorva_core_status findService(Service service, void *cookie, std::shared_ptr<Channel> &channel);

    /** Finds the connection to the camera's directory. */
    zorva_core_status findDirectory(std::shared_ptr<Channel> &channel);

    /** Closes everything, however many users there are: for the unloading of the library. */
    void closeAll() noexcept;

    void holdForFork() noexcept;
    void resumeAfterFork() noexcept;

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
        std::map<Handle, void *> communications; ///< with the logging context of each
        std::map<Handle, OpenService> services;
        std::shared_ptr<Channel> directoryChannel;
    };

    bool isOpenLog(void *cookie) const;
    std::shared_ptr<Channel> makeChannel(const char *name, void *logCookie) const;
    static void replaceIfStale(std::shared_ptr<Channel> &channel);
    static void abortChannels(const State &state) noexcept;

    std::mutex mutex;
    unsigned users = 0;
    Handle lastHandle = 0;
    State state;
};

/** The one library. It is there as long as the library is loaded, also while the process ends. */
Library &library() noexcept;

} // namespace standin

#endif
