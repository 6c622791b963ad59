// SPDX-License-Identifier: Apache-2.0
#include "log.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include "library.h"

namespace standin {

namespace {

constexpr std::array<std::string_view, 8> kLevelWords = {"emergency", "alert",  "critical", "error",
                                                         "warning",   "notice", "info",     "debug"};
constexpr std::string_view kCutMark = " [cut]";
constexpr std::int64_t kSecondsPerDay = 86400;

std::atomic<int> threshold{-1};

/** Keeps SIGPIPE from the thread that writes to a pipe nobody reads; the agent does not ignore that signal. */
class SigpipeShield {
public:
    SigpipeShield() noexcept {
        sigemptyset(&pipeSignal);
        sigaddset(&pipeSignal, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &pipeSignal, &before);
    }
    SigpipeShield(const SigpipeShield &) = delete;
    SigpipeShield &operator=(const SigpipeShield &) = delete;

    ~SigpipeShield() {
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
    }

    void discardRaised() const noexcept {
        const timespec noWait{};
        while (sigtimedwait(&pipeSignal, nullptr, &noWait) == SIGPIPE) {
        }
    }

private:
    sigset_t pipeSignal{};
    sigset_t before{};
};

/** Collects the octets of one line. */
class LineBuffer {
public:
    void append(std::string_view text, bool isComplete = true) noexcept {
        for (const char character : text) {
            if (cut || !appendCharacter(character)) {
                break;
            }
        }
        if (!isComplete) {
            markCut();
        }
    }

    std::string_view finish() noexcept {
        octets[used++] = '\n';
        return {octets.data(), used};
    }

private:
    static constexpr std::size_t kRoom = kMaximumLogLine - kCutMark.size() - 1;

    bool appendCharacter(char character) noexcept {
        // A control character could end the line, or act on the terminal that the log is read on.
        const auto code = static_cast<unsigned char>(character);
        if (code >= 0x20 && code != 0x7f) {
            return put({&character, 1});
        }
        if (character == '\n' || character == '\t' || character == '\r') {
            return put(character == '\n' ? "\\n" : character == '\t' ? "\\t" : "\\r");
        }
        constexpr std::string_view digits = "0123456789abcdef";
        const std::array<char, 4> escape = {'\\', 'x', digits[code >> 4U], digits[code & 0xfU]};
        return put({escape.data(), escape.size()});
    }

    bool put(std::string_view piece) noexcept {
        if (piece.size() > kRoom - used) {
            markCut();
            return false;
        }
        std::copy(piece.begin(), piece.end(), octets.begin() + used);
        used += piece.size();
        return true;
    }

    void markCut() noexcept {
        if (cut) {
            return;
        }
        cut = true;
        // Half a UTF-8 character must not stay; whether the last one is whole is not worth finding out.
        while (used > 0 && (static_cast<unsigned char>(octets[used - 1]) & 0xc0U) == 0x80U) {
            --used;
        }
        if (used > 0 && static_cast<unsigned char>(octets[used - 1]) >= 0xc0U) {
            --used;
        }
        std::copy(kCutMark.begin(), kCutMark.end(), octets.begin() + used);
        used += kCutMark.size();
    }

    std::array<char, kMaximumLogLine> octets;
    std::size_t used = 0;
    bool cut = false;
};

/** Appends the time. The C library's conversion takes a lock, which a fork could leave taken in the child. */
void appendTime(LineBuffer &line) noexcept {
    timespec time{};
    ::clock_gettime(CLOCK_REALTIME, &time);
    const std::int64_t secondOfDay = time.tv_sec % kSecondsPerDay;
    std::int64_t day = time.tv_sec / kSecondsPerDay;

    const auto isLeap = [](std::int64_t year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; };
    std::int64_t year = 1970;
    for (std::int64_t length = 365; day >= length; length = isLeap(year) ? 366 : 365) {
        day -= length;
        ++year;
    }
    const std::array<std::int64_t, 12> lengths = {31, isLeap(year) ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    std::size_t month = 0;
    while (day >= lengths[month]) {
        day -= lengths[month];
        ++month;
    }

    std::array<char, 64> text{};
    const int length =
        std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d.%06ld ", static_cast<int>(year),
                      static_cast<int>(month) + 1, static_cast<int>(day) + 1, static_cast<int>(secondOfDay / 3600),
                      static_cast<int>(secondOfDay / 60 % 60), static_cast<int>(secondOfDay % 60), time.tv_nsec / 1000);
    line.append({text.data(), static_cast<std::size_t>(std::max(length, 0))});
}

} // namespace

std::shared_ptr<LogSink> LogSink::open(const std::string &path, int &error) {
    int descriptor = -1;
    error = 0;
    if (!path.empty()) {
        // Not blocking, because a pipe that nobody reads must not hold up the agent.
        descriptor = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0600);
        error = descriptor < 0 ? errno : 0;
    }
    try {
        return std::make_shared<LogSink>(descriptor);
    } catch (...) {
        if (descriptor >= 0) {
            ::close(descriptor);
        }
        throw;
    }
}

LogSink::~LogSink() {
    if (descriptor >= 0) {
        ::close(descriptor);
    }
}

void LogSink::write(std::string_view line) const noexcept {
    const int target = descriptor >= 0 ? descriptor : STDERR_FILENO;
    const SigpipeShield shield;
    ssize_t written = -1;
    do {
        written = ::write(target, line.data(), line.size());
    } while (written < 0 && errno == EINTR);
    if (written < 0 && errno == EPIPE) {
        shield.discardRaised();
    }
}

void LogContext::write(int level, const char *format, va_list arguments) const noexcept {
    std::array<char, kMaximumLogLine> text; // NOLINT(cppcoreguidelines-pro-type-member-init): vsnprintf() fills it
    const int length = std::vsnprintf(text.data(), text.size(), format, arguments);
    const bool isComplete = length < static_cast<int>(text.size());

    LineBuffer line;
    appendTime(line);
    line.append(name);
    line.append(" ");
    line.append(kLevelWords[static_cast<std::size_t>(std::clamp(level, 0, static_cast<int>(kDebug)))]);
    line.append(" ");
    line.append(length < 0 ? std::string_view("[cannot be formatted]") : std::string_view(text.data()), isComplete);
    sink->write(line.finish());
}

int parseLevel(std::string_view text) noexcept {
    if (text.size() == 1 && text[0] >= '0' && text[0] <= '7') {
        return text[0] - '0';
    }
    const auto *const word = std::find(kLevelWords.begin(), kLevelWords.end(), text);
    return word != kLevelWords.end() ? static_cast<int>(word - kLevelWords.begin()) : -1;
}

void setLogThreshold(int level) noexcept {
    threshold.store(level, std::memory_order_relaxed);
}

bool isLogged(int level) noexcept {
    return level <= threshold.load(std::memory_order_relaxed);
}

void logArguments(void *logCookie, int level, const char *format, va_list arguments) noexcept {
    // A caller that logs on its way out of a failure may still need this.
    const int errorBefore = errno;
    const std::shared_ptr<const LogContext> context = format != nullptr ? library().findLog(logCookie) : nullptr;
    if (context != nullptr) {
        context->write(level, format, arguments);
    }
    errno = errorBefore;
}

void log(void *logCookie, int level, const char *format, ...) noexcept {
    if (!isLogged(level)) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    logArguments(logCookie, level, format, arguments);
    va_end(arguments);
}

} // namespace standin
