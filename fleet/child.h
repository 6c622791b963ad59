// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Start of child processes.
 */
#ifndef QUARNSNMP_FLEET_CHILD_H
#define QUARNSNMP_FLEET_CHILD_H

#include <string>
#include <vector>

#include <sys/types.h>

namespace fleet {

/** A program to start. */
struct Launch {
    std::vector<std::string> command;     ///< path of the program, and its arguments
    std::vector<std::string> environment; ///< `NAME=VALUE`
    std::string log;                      ///< file to which its errors are appended
    int output = -1;                      ///< descriptor of its standard output; -1 for the log
};

/**
 * Starts a program in a process group of its own, so that a Ctrl-C in the terminal reaches this process only. The
 * kernel kills it when the calling thread ends, also by SIGKILL.
 * @return its number
 * @throws std::system_error when this process cannot start another one, or the log cannot be opened
 */
pid_t startChild(const Launch &launch);

/** Returns a text about an end, from the status of waitpid(), such as "ended with status 1". */
std::string endText(int status);

/** Returns the environment of this process. */
std::vector<std::string> ownEnvironment();

} // namespace fleet

#endif
