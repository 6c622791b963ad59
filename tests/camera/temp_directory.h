// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Files of tests.
 */
#ifndef QUARNSNMP_TEST_TEMP_DIRECTORY_H
#define QUARNSNMP_TEST_TEMP_DIRECTORY_H

#include <string>
#include <vector>

namespace camera::test {

/** A directory of a test's own, removed with everything in it at the end. */
class TempDirectory {
public:
    TempDirectory();
    TempDirectory(const TempDirectory &) = delete;
    TempDirectory &operator=(const TempDirectory &) = delete;
    ~TempDirectory();

    const std::string &path() const {
        return path_;
    }
    /** Path of an entry, which need not exist. */
    std::string operator/(const std::string &name) const {
        return path_ + "/" + name;
    }

private:
    std::string path_;
};

/** Writes a file. */
void writeFile(const std::string &path, const std::string &text);

/** Names of a directory's entries. */
std::vector<std::string> entriesOf(const std::string &directory);

} // namespace camera::test

#endif
