#include "poll_thread.h"

#include <csignal>
#include <new>

#include <pthread.h>

#include <boost/date_time/posix_time/posix_time_duration.hpp>

#include "core_utils.h"
#include "feature_modules.h"

namespace {

constexpr int kPollPeriodSeconds = 60;

boost::thread *gForkedThread = nullptr;

/**
 * In the child of a fork. The old thread object stands for a thread that is not here: joining it would wait for ever,
 * and its lock may be held, so it is given up as it is instead of being detached.
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
        // Without its polls the module still serves every object.
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
