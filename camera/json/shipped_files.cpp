// SPDX-License-Identifier: Apache-2.0
#include "shipped_files.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "text_file.h"
#include "values.h"

namespace camera {

namespace {

bool isPath(const std::string &nameOrPath) {
    return nameOrPath.find('/') != std::string::npos || std::filesystem::path(nameOrPath).extension() == ".json";
}

} // namespace

std::vector<NamedFile> namedFiles(const std::string &directory) {
    std::vector<NamedFile> files;
    std::error_code error;
    for (const auto &entry : std::filesystem::directory_iterator(directory, error)) {
        if (entry.path().extension() == ".json") {
            files.push_back({entry.path().stem().string(), entry.path().string()});
        }
    }
    std::sort(files.begin(), files.end(),
              [](const NamedFile &left, const NamedFile &right) { return left.name < right.name; });
    return files;
}

std::string findNamedFile(const std::string &kind, const std::string &nameOrPath, const std::string &directory) {
    if (isPath(nameOrPath)) {
        return nameOrPath;
    }
    std::vector<std::string> names;
    for (const NamedFile &file : namedFiles(directory)) {
        if (file.name == nameOrPath) {
            return file.path;
        }
        names.push_back(file.name);
    }
    throw FileError("no " + kind + " '" + nameOrPath + "' in " + directory + "; available: " + listed(names));
}

std::string shippedDirectory(const std::string &kind, const std::string &programLink) {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink(programLink, error);
    if (error) {
        throw FileError("cannot find the directory of the " + kind + ", because " + programLink +
                        " is unreadable: " + error.message() + "; mount /proc, or give the path of a file");
    }
    return (program.parent_path().parent_path() / "share/quarnsnmp" / kind).string();
}

std::string findShippedFile(const std::string &kind, const std::string &nameOrPath, const std::string &programLink) {
    return isPath(nameOrPath) ? nameOrPath : findNamedFile(kind, nameOrPath, shippedDirectory(kind + "s", programLink));
}

} // namespace camera
