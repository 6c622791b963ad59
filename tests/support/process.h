// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Programs that run beside a test.
 */
#ifndef QUARNSNMP_SUPPORT_PROCESS_H
#define QUARNSNMP_SUPPORT_PROCESS_H

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "log_file.h"
#include "temporary_directory.h"

namespace support {

/** Searches a program in the directories of PATH. @return its path; the name itself if it has a slash or is missing */
std::string programPath(const std::string &program);

/** End of a program. */
struct ExitStatus {
    int code = 0;   ///< exit code; 128 plus the signal's number after a signal
    int signal = 0; ///< number of the signal that ended the program, else 0

    /** Returns true if the program ended by itself with exit code 0. */
    bool clean() const;

    /** Returns a text for a report, such as "exit code 1". */
    std::string describe() const;
};

/** A program to start. */
struct Launch {
    std::vector<std::string> arguments; ///< the program, searched in PATH if it has no slash, and its arguments
    std::map<std::string, std::string> environment = {}; ///< added to the environment of the test
    std::string outputFile = {}; ///< standard output, truncated first; empty for a file of the process's own
    std::string errorFile = {};  ///< standard error, truncated first; empty for a file of the process's own
    unsigned filesLimit = 0;     ///< limit of open files; 0 for the limit of the test
};

/** Result of a command that has ended. */
struct CommandResult {
    ExitStatus status;
    std::string output; ///< text of standard output
    std::string errors; ///< text of standard error
};

/**
 * A running program. The kernel kills it when the thread that started it ends, so a crashed test leaves nothing behind.
 * Start it in a thread that lives as long as the program.
 */
class Process {
public:
    /** Starts a program. @throws std::runtime_error if it cannot be started */
    explicit Process(Launch launch);

    /** Ends the program with end() if it still runs. */
    ~Process();

    Process(const Process &) = delete;
    Process &operator=(const Process &) = delete;

    pid_t pid() const;

    /** Returns true until the program has ended. */
    bool running();

    /** Sends a signal if the program still runs. */
    void signal(int number);

    /** Waits for the end. @return the status; nothing if the program still runs after the deadline */
    std::optional<ExitStatus> wait(std::chrono::milliseconds deadline);

    /** Ends the program with SIGTERM, after a deadline with SIGKILL. @return the status, also of an earlier end */
    ExitStatus end(std::chrono::milliseconds deadline = std::chrono::seconds(5));

    /** Waits for the end and reads the output. @throws std::runtime_error after the deadline; the program is ended */
    CommandResult result(std::chrono::milliseconds deadline = kPatience);

    /** Standard output and standard error. */
    LogFile output() const;
    LogFile errors() const;

private:
    TemporaryDirectory directory_;
    Launch launch_;
    pid_t pid_;
    std::optional<ExitStatus> status_; ///< set after the end, when the number may belong to another program
};

/**
 * Runs a command to its end.
 * @throws std::runtime_error if it cannot be started, or still runs after the deadline (it is ended then)
 */
CommandResult runCommand(const std::vector<std::string> &arguments,
                         const std::map<std::string, std::string> &environment = {},
                         std::chrono::milliseconds deadline = kPatience);

} // namespace support

#endif
