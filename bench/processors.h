// SPDX-License-Identifier: Apache-2.0
/** @file Which processor a process runs on, and for how long. */
#ifndef QUARNSNMP_BENCH_PROCESSORS_H
#define QUARNSNMP_BENCH_PROCESSORS_H

#include <sys/types.h>

namespace bench {

/**
 * The processor of the agents and of all that they ask: subagents, scripts, cameras. On a camera they share what there
 * is, too. The manager has another one.
 */
inline constexpr int kAgentProcessor = 0;
inline constexpr int kManagerProcessor = 1;

/**
 * Ties all threads of a process to a processor; on a machine with fewer, to the last one that this process may use.
 * Children of this process begin where it is itself.
 * @throws std::system_error when the kernel refuses
 */
void tie(pid_t process, int processor);

/**
 * Processor time of a process's main thread so far, in microseconds.
 * @throws std::runtime_error when the kernel does not tell it
 */
double processorTime(pid_t process);

} // namespace bench

#endif
