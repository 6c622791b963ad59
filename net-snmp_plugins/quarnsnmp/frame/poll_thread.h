// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The thread that polls the features which watch health values.
 */
#ifndef QUARNSNMP_POLL_THREAD_H
#define QUARNSNMP_POLL_THREAD_H

#include <boost/thread/thread.hpp>

/** Body of the poll thread: every 60 seconds polls each feature that is up and has a poll, until interrupted. */
void timer_thread_func();

/**
 * Starts the poll thread. It takes no signals: those are for the agent's main loop, which they wake.
 * @return the thread; a thread object without a thread when there is none to be had
 */
boost::thread StartPollThread() noexcept;

/**
 * Has `thread` replaced by a new poll thread in every child of the process. A fork takes only the calling thread along,
 * and the agent forks after it has loaded its modules when it becomes a daemon. Ends with the unloading of the module.
 */
void RestartPollThreadAfterFork(boost::thread &thread) noexcept;

#endif
