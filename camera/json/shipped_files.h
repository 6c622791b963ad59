// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Lookup of the JSON files that come with the programs.
 */
#ifndef QUARNSNMP_CAMERA_SHIPPED_FILES_H
#define QUARNSNMP_CAMERA_SHIPPED_FILES_H

#include <string>
#include <vector>

namespace camera {

/** File with a short name for the command line. */
struct NamedFile {
    std::string name;
    std::string path;
};

/** Returns the files `NAME.json` of a directory in alphabetical order; none when the directory is unreadable. */
std::vector<NamedFile> namedFiles(const std::string &directory);

/**
 * Resolves a command-line value to the path of a file. A value with a slash or the suffix `.json` is a path already.
 * Any other value is the name of a file in the directory.
 * @param kind  kind of file for the error message, such as "camera"
 * @throws FileError when the directory has no file of this name
 */
std::string findNamedFile(const std::string &kind, const std::string &nameOrPath, const std::string &directory);

/**
 * Returns the directory of the files that come with the running program. Its place relative to the program is the same
 * in the build tree and after installation.
 * @param kind         name of the subdirectory, such as "cameras"
 * @param programLink  the kernel's link to the program
 * @throws FileError when the link is unreadable, as without /proc
 */
std::string shippedDirectory(const std::string &kind, const std::string &programLink = "/proc/self/exe");

/** Resolves a command-line value like findNamedFile(), with the files that come with the program. @throws FileError */
std::string findShippedFile(const std::string &kind, const std::string &nameOrPath,
                            const std::string &programLink = "/proc/self/exe");

} // namespace camera

#endif
