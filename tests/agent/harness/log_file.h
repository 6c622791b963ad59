// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Reading a text file that another process is writing.
 */
#ifndef QUARNSNMP_HARNESS_LOG_FILE_H
#define QUARNSNMP_HARNESS_LOG_FILE_H

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace harness {

/** A log; a file that does not exist (yet) reads as an empty one. */
class LogFile {
public:
    explicit LogFile(std::string path);

    const std::string &path() const;

    /** All that has been written. */
    std::string text() const;

    /** The complete lines, without their newlines; a line that is still being written is left out. */
    std::vector<std::string> lines() const;

    /** How many octets have been written. */
    std::size_t size() const;

    /**
     * How many complete lines contain a text.
     * @param start  octet to begin at: with an earlier size(), a large file costs no more than what is new in it
     */
    std::size_t count(const std::string &part, std::size_t start = 0) const;

    /** Waits until a complete line contains a text. @return whether one does */
    bool waitFor(const std::string &part, std::chrono::milliseconds deadline) const;

    /** The last lines, each with its newline, for a report. */
    std::string tail(std::size_t lineCount) const;

private:
    std::string path_;
};

} // namespace harness

#endif
