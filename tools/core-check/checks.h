// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The checks of a core library. None of them moves, stores or switches anything.
 */
#ifndef QUARNSNMP_CORE_CHECK_CHECKS_H
#define QUARNSNMP_CORE_CHECK_CHECKS_H

#include <string>

#include "trial.h"

namespace core_check {

/** Levels of log lines that the module writes, and that must be visible while a camera is being commissioned. */
inline constexpr int kMostSevereLevel = 3;
inline constexpr int kLeastSevereLevel = 7;

/** Returns the result of a look at the header of the file, which is not loaded: a library for this processor? */
Result checkFile(const std::string &file);

/**
 * Loads the library, looks for its functions, starts it, discovers each service and makes each request that only reads.
 * @param mark  text of the log lines
 */
void checkCalls(Trial &trial, const std::string &file, const std::string &mark);

/** Uses the library in a fork, as an agent does that becomes a daemon. */
void checkFork(Trial &trial, const std::string &file);

/** Loads and unloads the library three times, as an agent does at SIGHUP. */
void checkReload(Trial &trial, const std::string &file);

/** Looks for the log lines of checkCalls() in a file. */
Result checkLog(const std::string &logFile, const std::string &mark);

} // namespace core_check

#endif
