// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Reading a text file that another process is writing.
 */
#ifndef QUARNSNMP_SUPPORT_LOG_FILE_H
#define QUARNSNMP_SUPPORT_LOG_FILE_H

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "eventually.h"

namespace support {

/** A log. A file that does not exist (yet) reads as an empty one. */
class LogFile {
public:
    explicit LogFile(std::string path);

    const std::string &path() const;

    /** Returns the whole content. */
    std::string text() const;

    /** Returns the complete lines, without their newlines. A line that is still being written is left out. */
    std::vector<std::string> lines() const;

    /** Returns the size in octets. */
    std::size_t size() const;

    /**
     * Counts the complete lines that contain a text.
     * @param start  octet to begin at: with an earlier size(), only new lines are read
     */
    std::size_t count(const std::string &part, std::size_t start = 0) const;

    /** Waits until a complete line contains a text. @return true if one does */
    bool waitFor(const std::string &part, std::chrono::milliseconds deadline = kPatience) const;

    /** Waits until a line is complete. @param index from 0 @return the line; empty if there is none in kPatience */
    std::string awaitLine(std::size_t index) const;

    /** Returns the last lines, each with its newline, for a report. */
    std::string tail(std::size_t lineCount) const;

private:
    std::string path_;
};

} // namespace support

#endif
