// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A directory for the files of one test.
 */
#ifndef QUARNSNMP_HARNESS_TEMPORARY_DIRECTORY_H
#define QUARNSNMP_HARNESS_TEMPORARY_DIRECTORY_H

#include <string>

namespace harness {

/** Whether the test that is running has failed so far; false outside of a test. */
bool testHasFailed();

/**
 * A new directory in the environment's TMPDIR or /tmp. It is removed with all it holds when the object ends, unless the
 * test has failed by then: its path is printed instead.
 */
class TemporaryDirectory {
public:
    /** @throws std::system_error when the directory cannot be made */
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory &) = delete;
    TemporaryDirectory &operator=(const TemporaryDirectory &) = delete;

    /** The directory's absolute path; short enough for Unix sockets in it when TMPDIR is not long. */
    const std::string &path() const;

    /** Path of a file in the directory. */
    std::string file(const std::string &name) const;

    /** Writes a file in the directory. @return its path @throws std::runtime_error when it cannot be written */
    std::string write(const std::string &name, const std::string &content) const;

private:
    std::string path_;
};

} // namespace harness

#endif
