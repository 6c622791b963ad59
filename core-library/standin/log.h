// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Log lines of the form `2026-11-20 19:06:13.123456 name level text`, in UTC.
 */
#ifndef QUARNSNMP_STANDIN_LOG_H
#define QUARNSNMP_STANDIN_LOG_H

#include <cstdarg>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "zorva-core.h"

namespace standin {

/** The severities of syslog that the library uses itself. */
enum Level { kError = 3, kWarning = 4, kInfo = 6, kDebug = 7 };

/** Longest line in octets, its newline included: what a pipe takes in one piece. */
inline constexpr std::size_t kMaximumLogLine = 4096;

/** Where the lines go. */
class LogSink {
public:
    /**
     * Opens a file for appending, readable by its owner only, and creates it if need be. A path that is empty or cannot
     * be opened gives standard error; `error` is then the errno, otherwise 0.
     */
    static std::shared_ptr<LogSink> open(const std::string &path, int &error);

    explicit LogSink(int ownedDescriptor) noexcept : descriptor(ownedDescriptor) {}
    ~LogSink();
    LogSink(const LogSink &) = delete;
    LogSink &operator=(const LogSink &) = delete;

    /** Writes one line with one write(2). A line that cannot be written is lost; that never raises SIGPIPE. */
    void write(std::string_view line) const noexcept;

private:
    const int descriptor; ///< -1 is standard error
};

/** A name and the sink that its lines go to. */
class LogContext {
public:
    LogContext(std::string contextName, std::shared_ptr<LogSink> contextSink)
        : name(std::move(contextName)), sink(std::move(contextSink)) {}

    /** Writes a line whatever its level. Control characters become escapes; what is too long is cut and marked. */
    void write(int level, const char *format, va_list arguments) const noexcept __attribute__((format(printf, 3, 0)));

private:
    const std::string name;
    const std::shared_ptr<LogSink> sink;
};

/** Reads a level: 0 to 7 or the word of a log line. @return -1 when it is neither */
int parseLevel(std::string_view text) noexcept;

/** Lines of a higher level are dropped; -1 drops all. Starts as -1. */
void setLogThreshold(int level) noexcept;

/** Says whether a line of this level is written. */
bool isLogged(int level) noexcept;

/** Writes a line to the context of a handle, as zorva_core_logging_log() does. */
void log(void *logCookie, int level, const char *format, ...) noexcept ZORVA_CORE_PRINTF(3, 4);

/** As log(), with the arguments of a variadic caller and without a look at the level. */
void logArguments(void *logCookie, int level, const char *format, va_list arguments) noexcept
    __attribute__((format(printf, 3, 0)));

} // namespace standin

#endif
