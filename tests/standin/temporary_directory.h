// SPDX-License-Identifier: Apache-2.0
/** @file A directory for the sockets and files of one test. */
#ifndef QUARNSNMP_STANDIN_TEMPORARY_DIRECTORY_H
#define QUARNSNMP_STANDIN_TEMPORARY_DIRECTORY_H

#include <string>

/** A new directory that goes with its contents when the object goes. */
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory &) = delete;
    TemporaryDirectory &operator=(const TemporaryDirectory &) = delete;

    const std::string &path() const noexcept {
        return directory;
    }

    /** Path of a file in the directory. */
    std::string file(const std::string &name) const {
        return directory + "/" + name;
    }

private:
    std::string directory;
};

#endif
