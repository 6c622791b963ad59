// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * What the kernel tells about a running process. A function throws std::runtime_error when the process is gone or
 * belongs to somebody else, unless it says otherwise.
 */
#ifndef QUARNSNMP_HARNESS_PROCESS_INFORMATION_H
#define QUARNSNMP_HARNESS_PROCESS_INFORMATION_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <sys/types.h>

namespace harness {

/** Whether a process runs; false for one that has ended and only waits for its parent to take notice. Never throws. */
bool runs(pid_t pid);

/** Memory that is held in RAM, in kilobytes. */
std::size_t residentKilobytes(pid_t pid);

/** How many descriptors are open. */
std::size_t descriptorCount(pid_t pid);

/** How many threads run, the main one included. */
std::size_t threadCount(pid_t pid);

/** Whether a file is mapped, such as a loaded library. @param path the file; links are followed */
bool mapsFile(pid_t pid, const std::string &path);

/** Local IPv4 and IPv6 addresses at which a UDP port is bound, by whichever process, such as "127.0.0.1". Never throws.
 */
std::vector<std::string> udpAddresses(std::uint16_t port);

} // namespace harness

#endif
