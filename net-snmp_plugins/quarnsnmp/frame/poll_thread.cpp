// SPDX-License-Identifier: Apache-2.0
#include "poll_thread.h"

#include <csignal>
#include <cstring>
#include <new>

#include <dlfcn.h>
#include <pthread.h>

#include <boost/date_time/posix_time/posix_time_duration.hpp>

#include "core_utils.h"
#include "feature_modules.h"

namespace {

constexpr int kPollPeriodSeconds = 60;

boost::thread *gForkedThread = nullptr;

/**
 * Keeps Boost's thread library mapped after the module is unloaded. The library allocates a thread-specific key at its
 * first use and does not free it when it is unmapped. A process has 1024 keys, so a thousand reloads would use them up.
 */
void KeepThreadLibrary() noexcept {
    Dl_info library{};
    Dl_info own{};
    if (dladdr(reinterpret_cast<void *>(&boost::thread::hardware_concurrency), &library) == 0 ||
        dladdr(reinterpret_cast<void *>(&timer_thread_func), &own) == 0 ||
        std::strcmp(library.dli_fname, own.dli_fname) == 0) {
        // Boost is linked statically, and the module must be unmapped.
        return;
    }
    void *handle = dlopen(library.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
    if (handle != nullptr) {
        dlclose(handle);
    }
}

/**
 * Starts a new poll thread in the child of a fork. The old thread object refers to a thread of the parent: a join would
 * never return, and a detach would take a lock that may be held. So the old object is leaked.
 */
void RestartInChild() {
    if (gForkedThread == nullptr || !gForkedThread->joinable()) {
        return;
    }
    new (std::nothrow) boost::thread(std::move(*gForkedThread));
    *gForkedThread = StartPollThread();
}

} // namespace

void timer_thread_func() {
    try {
        for (;;) {
            boost::this_thread::sleep(boost::posix_time::seconds(kPollPeriodSeconds));
            for (const FeatureModule &feature : gFeatureModules) {
                if (feature.initialised && feature.poll != nullptr) {
                    feature.poll();
                }
            }
        }
    } catch (const boost::thread_interrupted &) {
        zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: LEAVING IN THREAD FUNC due to interruption", __func__);
    }
}

boost::thread StartPollThread() noexcept {
    KeepThreadLibrary();
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    if (pthread_sigmask(SIG_SETMASK, &all, &before) != 0) {
        return boost::thread();
    }
    boost::thread thread;
    try {
        thread = boost::thread(timer_thread_func);
    } catch (const std::exception &error) {
        // The module serves all objects without it.
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: %s", __func__, error.what());
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return thread;
}

void RestartPollThreadAfterFork(boost::thread &thread) noexcept {
    gForkedThread = &thread;
    const int error = pthread_atfork(nullptr, nullptr, RestartInChild);
    if (error != 0) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: pthread_atfork failed (%d)", __func__, error);
    }
}
