// SPDX-License-Identifier: Apache-2.0
/** @file Check of the directory of the camera's sockets. */
#ifndef QUARNSNMP_DIRECTORY_CHECK_H
#define QUARNSNMP_DIRECTORY_CHECK_H

#include <optional>
#include <string>

#include <sys/stat.h>

namespace wire {

/**
 * Checks that only trusted users can place sockets in a directory. It must be a real directory that nobody but its
 * owner can write, and belong to the present user or to root. Root also trusts the directory of another user if only
 * root can create directories beside it, because the agent loads its modules as root.
 * @return the reason for refusing the directory, with advice; nothing for a safe or missing directory
 */
std::optional<std::string> unsafeDirectory(const std::string &path);

/**
 * Decides about a directory for unsafeDirectory().
 * @param directory  status of the directory, without following a symbolic link
 * @param parent     status of its parent
 * @param user       effective user of the process
 * @return as unsafeDirectory(), without the path
 */
std::optional<std::string> reasonToRefuse(const struct stat &directory, const struct stat &parent, uid_t user);

} // namespace wire

#endif
