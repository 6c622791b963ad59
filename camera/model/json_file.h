// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Files that the camera's programs read and write, all of them JSON: finding them by name, reading them with clear
 * complaints, and replacing them safely.
 */
#ifndef QUARNSNMP_CAMERA_JSON_FILE_H
#define QUARNSNMP_CAMERA_JSON_FILE_H

#include <stdexcept>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "values.h"

namespace camera {

/** A file that cannot be used; what() is one line with the file, the place in it and what was expected. */
class FileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** Hands out the members of one JSON object that somebody wrote, and complains about what nobody asked for. */
class ObjectReader {
public:
    /**
     * @param object  must outlive the reader
     * @param path    where it is in its file
     * @param keys    all that it may have
     * @throws JsonTextError when it is no object, or has another key
     */
    ObjectReader(const nlohmann::json &object, std::string path, const std::vector<std::string> &keys);

    /** @throws JsonTextError when the key is missing; `expected` says what would be there */
    const nlohmann::json &required(const std::string &key, const std::string &expected) const;

    /** A text under a required key, not empty and of at most kLongestText octets. @throws JsonTextError */
    std::string requiredText(const std::string &key) const;

    /** A text of at most kLongestText octets; empty when the key is missing. @throws JsonTextError */
    std::string optionalText(const std::string &key) const;

    /** Complains about the value of a key. @throws JsonTextError */
    [[noreturn]] void fail(const std::string &key, const std::string &text) const;

private:
    const nlohmann::json &object_;
    std::string path_;
};

/** Reads a file of at most 16 MiB. @throws FileError */
std::string readTextFile(const std::string &path);

/**
 * Replaces a file, or makes it, so that whoever reads it finds either what was there or what is there now, whenever
 * the power fails. Takes as long as the disk does.
 * @throws FileError
 */
void replaceFile(const std::string &path, const std::string &text);

/** A file that can be chosen by its name. */
struct NamedFile {
    std::string name;
    std::string path;
};

/** The files of a directory, `NAME.json` each, in alphabetical order; none when it cannot be read. */
std::vector<NamedFile> namedFiles(const std::string &directory);

/**
 * Finds the file that somebody means: a value with a slash or the ending `.json` is a path, any other one the name of
 * a file in the directory.
 * @param kind  what the files are, as in "camera"
 * @throws FileError when there is no such file
 */
std::string findNamedFile(const std::string &kind, const std::string &nameOrPath, const std::string &directory);

/**
 * The directory of the files that come with the running program, the same relative to it in the build tree as after an
 * installation. @param kind as in "cameras"
 */
std::string shippedDirectory(const std::string &kind);

} // namespace camera

#endif
