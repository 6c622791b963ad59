// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Reading of whole text files, and their atomic replacement.
 */
#ifndef QUARNSNMP_CAMERA_TEXT_FILE_H
#define QUARNSNMP_CAMERA_TEXT_FILE_H

#include <stdexcept>
#include <string>

namespace camera {

/** Error in a file. what() is one line with the file name, the place in the file and the expected contents. */
class FileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** Reads a file of at most 16 MiB. @throws FileError */
std::string readTextFile(const std::string &path);

/**
 * Replaces or creates a file atomically: after a power failure the file has either the old or the new contents.
 * Blocks until the data is on the disk.
 * @throws FileError
 */
void replaceFile(const std::string &path, const std::string &text);

} // namespace camera

#endif
