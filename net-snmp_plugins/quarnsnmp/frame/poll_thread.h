// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The thread that polls the features with health values.
 */
#ifndef QUARNSNMP_POLL_THREAD_H
#define QUARNSNMP_POLL_THREAD_H

#include <boost/thread/thread.hpp>

/** Body of the poll thread. Polls all features that are up every 60 seconds, until the thread is interrupted. */
void timer_thread_func();

/**
 * Starts the poll thread. The thread blocks all signals, which must wake the agent's main loop.
 * @return the thread; an empty thread object if the system refuses a thread, which is logged
 */
boost::thread StartPollThread() noexcept;

/**
 * Replaces `thread` by a new poll thread in each child of the process. A fork copies only the calling thread, and an
 * agent that becomes a daemon forks after it has loaded its modules. The effect ends when the module is unloaded.
 */
void RestartPollThreadAfterFork(boost::thread &thread) noexcept;

#endif
