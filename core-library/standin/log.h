// SPDX-License-Identifier: Apache-2.0
/** @file Log lines of the form `2026-11-20 19:06:13.123456 name level text`, with the time in UTC. */
#ifndef QUARNSNMP_STANDIN_LOG_H
#define QUARNSNMP_STANDIN_LOG_H

#include <cstdarg>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "zorva-core.h"

namespace standin {

/** Syslog severities of the library's own messages. */
enum Level { kError = 3, kWarning = 4, kInfo = 6, kDebug = 7 };

/** Longest line in octets, including its newline: PIPE_BUF, so that a pipe takes a line as a whole. */
inline constexpr std::size_t kMaximumLogLine = 4096;

/** Destination of log lines: a file or standard error. */
class LogSink {
public:
    /**
     * Opens a file for appending, and creates it with permissions for its owner only if it does not exist. Falls back
     * to standard error when the path is empty or cannot be opened.
     * @param error  output: the errno of a failed open, otherwise 0
     */
    static std::shared_ptr<LogSink> open(const std::string &path, int &error);

    explicit LogSink(int ownedDescriptor) noexcept : descriptor_(ownedDescriptor) {}
    ~LogSink();
    LogSink(const LogSink &) = delete;
    LogSink &operator=(const LogSink &) = delete;

    /** Writes one line with one write(2). Drops a line that cannot be written; never raises SIGPIPE. */
    void write(std::string_view line) const noexcept;

private:
    const int descriptor_; ///< -1 is standard error
};

/** Named source of log lines. */
class LogContext {
public:
    LogContext(std::string name, std::shared_ptr<LogSink> sink) : name_(std::move(name)), sink_(std::move(sink)) {}

    /**
     * Writes a line regardless of the threshold, and preserves errno. Control characters are escaped; an overlong line
     * is cut and marked.
     */
    void write(int level, const char *format, ...) const noexcept ZORVA_CORE_PRINTF(3, 4);

    /** As write(), with the arguments of a variadic caller. */
    void writeArguments(int level, const char *format, va_list arguments) const noexcept
        __attribute__((format(printf, 3, 0)));

private:
    const std::string name_;
    const std::shared_ptr<LogSink> sink_;
};

/** Parses a level: a digit from 0 to 7, or the word used in log lines. @return -1 for any other text */
int parseLevel(std::string_view text) noexcept;

/** Sets the highest level that is logged. The initial value, -1, suppresses all lines. */
void setLogThreshold(int level) noexcept;

/** Tests a level against the threshold. */
bool isLogged(int level) noexcept;

} // namespace standin

#endif
