// SPDX-License-Identifier: Apache-2.0
/** @file Processor affinity and processor time. */
#ifndef QUARNSNMP_BENCH_PROCESSORS_H
#define QUARNSNMP_BENCH_PROCESSORS_H

#include <sys/types.h>

namespace bench {

/**
 * The agents share one processor with subagents, scripts and cameras, as on a real camera. The manager runs on another
 * one.
 */
inline constexpr int kAgentProcessor = 0;
inline constexpr int kManagerProcessor = 1;

/**
 * Pins all threads of a process to a processor, or to the last available one on a machine with fewer processors.
 * Children of this process inherit its own processor.
 * @throws std::system_error when the kernel refuses
 */
void pinToProcessor(pid_t process, int processor);

/**
 * Returns the processor time that the main thread of a process has used, in microseconds.
 * @throws std::runtime_error when the kernel does not provide it
 */
double processorTime(pid_t process);

} // namespace bench

#endif
