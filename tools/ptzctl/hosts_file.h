// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Lists of cameras in files.
 */
#ifndef PTZCTL_HOSTS_FILE_H
#define PTZCTL_HOSTS_FILE_H

#include <istream>
#include <string>
#include <vector>

namespace ptzctl {

/**
 * Adds the hosts of a list, one in each line. A blank line has none, and `#` starts a comment. Ports are optional, and
 * 161 is the same as none.
 * @param name   of the list, for messages
 * @param hosts  those given before; none of them may be in the list
 * @throws std::invalid_argument with the number of the line for a malformed or repeated host, and for a list that
 *         cannot be read or has no host
 */
void addHosts(std::istream &list, const std::string &name, std::vector<std::string> &hosts);

/** Adds the hosts of a file as addHosts() does. @param path the file, or "-" for the standard input */
void addHostsOfFile(const std::string &path, std::vector<std::string> &hosts);

} // namespace ptzctl

#endif
