// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The kernel's information about a running process. The functions throw std::runtime_error if the process is gone or
 * belongs to another user, unless documented otherwise.
 */
#ifndef QUARNSNMP_SUPPORT_PROCESS_INFORMATION_H
#define QUARNSNMP_SUPPORT_PROCESS_INFORMATION_H

#include <cstddef>
#include <string>
#include <vector>

#include <sys/types.h>

namespace support {

/** Returns true if a process runs; a process that has ended and waits for its parent does not. Never throws. */
bool runs(pid_t pid);

/** Returns the memory held in RAM, in kilobytes. */
std::size_t residentKilobytes(pid_t pid);

/** Returns the most memory that was held in RAM at a time, in kilobytes. */
std::size_t peakKilobytes(pid_t pid);

/** Returns the number of open descriptors. */
std::size_t descriptorCount(pid_t pid);

/** Returns the number of threads, the main one included. */
std::size_t threadCount(pid_t pid);

/** Returns true if a file is mapped, such as a loaded library. @param path the file; links are followed */
bool mapsFile(pid_t pid, const std::string &path);

/**
 * Describes the open sockets of a process: "tcp 127.0.0.1:80", "udp [::1]:161" and "raw …" with the local address,
 * "unix PATH" or "unix" without a path, "packet", "netlink", and "unknown" for a socket in none of the kernel's tables,
 * such as one without an address.
 */
std::vector<std::string> sockets(pid_t pid);

} // namespace support

#endif
