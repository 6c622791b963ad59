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

namespace standin {

namespace {

constexpr std::array<std::string_view, 8> kLevelWords = {"emergency", "alert",  "critical", "error",
                                                         "warning",   "notice", "info",     "debug"};
constexpr std::string_view kCutMark = " [cut]";
constexpr std::int64_t kSecondsPerDay = 86400;

std::atomic<int> threshold{-1};

/** Blocks SIGPIPE in the current thread: the agent does not ignore it, and the log may be a pipe without a reader. */
class SigpipeBlocker {
public:
    SigpipeBlocker() noexcept {
        sigemptyset(&sigpipe_);
        sigaddset(&sigpipe_, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &sigpipe_, &previousMask_);
    }
    SigpipeBlocker(const SigpipeBlocker &) = delete;
    SigpipeBlocker &operator=(const SigpipeBlocker &) = delete;

    ~SigpipeBlocker() {
        pthread_sigmask(SIG_SETMASK, &previousMask_, nullptr);
    }

    /** Discards the pending signal of a failed write. */
    void discardPending() const noexcept {
        const timespec noWait{};
        while (sigtimedwait(&sigpipe_, nullptr, &noWait) == SIGPIPE) {
        }
    }

private:
    sigset_t sigpipe_{};
    sigset_t previousMask_{};
};

/** Buffer for one log line. */
class LineBuffer {
public:
    /** Appends a text. @param isComplete  false when the caller already had to truncate the text */
    void append(std::string_view text, bool isComplete = true) noexcept {
        for (const char character : text) {
            if (isCut_ || !appendCharacter(character)) {
                break;
            }
        }
        if (!isComplete) {
            markCut();
        }
    }

    /** Terminates the line and returns it. */
    std::string_view finish() noexcept {
        octets_[used_++] = '\n';
        return {octets_.data(), used_};
    }

private:
    static constexpr std::size_t kRoom = kMaximumLogLine - kCutMark.size() - 1;

    bool appendCharacter(char character) noexcept {
        // A raw control character could end the line or control the reader's terminal.
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
        if (piece.size() > kRoom - used_) {
            markCut();
            return false;
        }
        std::copy(piece.begin(), piece.end(), octets_.begin() + used_);
        used_ += piece.size();
        return true;
    }

    void markCut() noexcept {
        if (isCut_) {
            return;
        }
        isCut_ = true;
        // Drop the last UTF-8 character if it is a multi-byte one: it may be incomplete.
        while (used_ > 0 && (static_cast<unsigned char>(octets_[used_ - 1]) & 0xc0U) == 0x80U) {
            --used_;
        }
        if (used_ > 0 && static_cast<unsigned char>(octets_[used_ - 1]) >= 0xc0U) {
            --used_;
        }
        std::copy(kCutMark.begin(), kCutMark.end(), octets_.begin() + used_);
        used_ += kCutMark.size();
    }

    std::array<char, kMaximumLogLine> octets_;
    std::size_t used_ = 0;
    bool isCut_ = false;
};

/** Appends the time. Avoids gmtime_r(), whose lock a fork could leave locked in the child. */
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
        // O_NONBLOCK: a named pipe without a reader must not block the agent.
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
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

void LogSink::write(std::string_view line) const noexcept {
    const int target = descriptor_ >= 0 ? descriptor_ : STDERR_FILENO;
    const SigpipeBlocker blocker;
    ssize_t written = -1;
    do {
        written = ::write(target, line.data(), line.size());
    } while (written < 0 && errno == EINTR);
    if (written < 0 && errno == EPIPE) {
        blocker.discardPending();
    }
}

void LogContext::write(int level, const char *format, ...) const noexcept {
    va_list arguments;
    va_start(arguments, format);
    writeArguments(level, format, arguments);
    va_end(arguments);
}

void LogContext::writeArguments(int level, const char *format, va_list arguments) const noexcept {
    // The caller may report an error before it evaluates errno.
    const int savedErrno = errno;
    std::array<char, kMaximumLogLine> text; // NOLINT(cppcoreguidelines-pro-type-member-init): vsnprintf() fills it
    const int length = std::vsnprintf(text.data(), text.size(), format, arguments);
    const bool isComplete = length < static_cast<int>(text.size());

    LineBuffer line;
    appendTime(line);
    line.append(name_);
    line.append(" ");
    line.append(kLevelWords[static_cast<std::size_t>(std::clamp(level, 0, static_cast<int>(kDebug)))]);
    line.append(" ");
    line.append(length < 0 ? std::string_view("[cannot be formatted]") : std::string_view(text.data()), isComplete);
    sink_->write(line.finish());
    errno = savedErrno;
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

} // namespace standin
