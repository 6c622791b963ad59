// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A directory for the files of one test.
 */
#ifndef QUARNSNMP_SUPPORT_TEMPORARY_DIRECTORY_H
#define QUARNSNMP_SUPPORT_TEMPORARY_DIRECTORY_H

#include <string>
#include <vector>

namespace support {

/** Returns true if the running test has failed so far; false outside a test. */
bool testHasFailed();

/**
 * A new directory in the environment's TMPDIR or /tmp. The destructor removes it with its content; after a failed test
 * it prints the path instead.
 */
class TemporaryDirectory {
public:
    /** @throws std::system_error if the directory cannot be created */
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory &) = delete;
    TemporaryDirectory &operator=(const TemporaryDirectory &) = delete;

    /** Returns the absolute path, short enough for Unix sockets in the directory unless TMPDIR is long. */
    const std::string &path() const;

    /** Returns the path of a file in the directory. */
    std::string file(const std::string &name) const;

    /** Writes a file in the directory. @return its path @throws std::runtime_error if it cannot be written */
    std::string write(const std::string &name, const std::string &content) const;

private:
    std::string path_;
};

/** Writes a file. @throws std::runtime_error if it cannot be written */
void writeFile(const std::string &path, const std::string &content);

/** Returns the names of a directory's entries, in no particular order. */
std::vector<std::string> entriesOf(const std::string &directory);

} // namespace support

#endif
