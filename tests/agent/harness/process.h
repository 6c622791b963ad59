// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A program that a test starts, and that ends with the test whatever happens.
 */
#ifndef QUARNSNMP_HARNESS_PROCESS_H
#define QUARNSNMP_HARNESS_PROCESS_H

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace harness {

/** How a program ended: with an exit code, or by a signal. */
struct ExitStatus {
    int code = 0;   ///< exit code, 0 to 255; 0 when a signal ended it
    int signal = 0; ///< number of the signal that ended it; 0 when none did

    /** Whether it ended by itself with code 0. */
    bool clean() const;

    /** For a report, such as "exit code 1". */
    std::string describe() const;
};

/** What to start. */
struct Launch {
    std::vector<std::string> arguments; ///< the program, looked up in PATH if it has no slash, and its arguments
    std::map<std::string, std::string> environment; ///< added to the environment of the test
    std::string outputFile = "/dev/null";           ///< where standard output goes; emptied first
    std::string errorFile = "/dev/null";            ///< where standard error goes; emptied first
};

/**
 * A running program. The kernel ends it when the thread that started it ends, so a crashed test leaves nothing behind;
 * start it from a thread that lives as long as it is needed.
 */
class Process {
public:
    /** Starts a program. @throws std::runtime_error when it cannot be started */
    explicit Process(const Launch &launch);

    /** Ends the program if it still runs: with SIGTERM, after a deadline with SIGKILL. */
    ~Process();

    Process(const Process &) = delete;
    Process &operator=(const Process &) = delete;

    pid_t pid() const;

    /** Whether the program has not ended yet. */
    bool running();

    /** Sends a signal, if the program still runs. */
    void signal(int number);

    /** Waits for the end. @return how it ended; nothing when it still runs after the deadline */
    std::optional<ExitStatus> wait(std::chrono::milliseconds deadline);

    /** Ends the program: with SIGTERM, after a deadline with SIGKILL. @return how it ended, now or before */
    ExitStatus end(std::chrono::milliseconds deadline = std::chrono::seconds(5));

private:
    pid_t pid_;
    std::optional<ExitStatus> status_; ///< set when the program has ended and its number may belong to another one
};

/** What a command that has ended left behind. */
struct CommandResult {
    ExitStatus status;
    std::string output; ///< what it wrote to standard output
    std::string errors; ///< what it wrote to standard error
};

/**
 * Runs a command to its end.
 * @throws std::runtime_error when it cannot be started, or has not ended in time (it is ended then)
 */
CommandResult runCommand(const std::vector<std::string> &arguments,
                         const std::map<std::string, std::string> &environment = {},
                         std::chrono::milliseconds deadline = std::chrono::seconds(20));

} // namespace harness

#endif
