// SPDX-License-Identifier: Apache-2.0
#include "json_file.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "fields.h"
#include "json_text.h"

namespace camera {

namespace {

/** Closes a file descriptor in the end. */
class OpenFile {
public:
    OpenFile(const std::string &path, int flags) : file_(open(path.c_str(), flags | O_CLOEXEC, S_IRUSR | S_IWUSR)) {}
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;
    ~OpenFile() {
        if (file_ >= 0) {
            close(file_);
        }
    }

    int get() const {
        return file_;
    }

private:
    int file_;
};

bool writeAll(int file, const std::string &text) {
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = write(file, text.data() + written, text.size() - written);
        if (count < 0 && errno != EINTR) {
            return false;
        }
        written += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return true;
}

/** Writes a new file to the disk. @return whether it worked; errno says why not */
bool writeToDisk(const std::string &path, const std::string &text) {
    const OpenFile file(path, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW);
    return file.get() >= 0 && writeAll(file.get(), text) && fsync(file.get()) == 0;
}

std::string textExpected(std::size_t shortest) {
    const std::string longest = std::to_string(kLongestText) + " octets";
    return shortest > 0 ? "a text of " + std::to_string(shortest) + " to " + longest : "a text of at most " + longest;
}

} // namespace

ObjectReader::ObjectReader(const nlohmann::json &object, std::string path, const std::vector<std::string> &keys)
    : object_(object), path_(std::move(path)) {
    if (!object.is_object()) {
        fail("", mismatch("an object with " + listed(keys), object));
    }
    for (const auto &item : object.items()) {
        if (std::find(keys.begin(), keys.end(), item.key()) == keys.end()) {
            fail(item.key(), "unknown key; expected one of: " + listed(keys));
        }
    }
}

const nlohmann::json &ObjectReader::required(const std::string &key, const std::string &expected) const {
    const auto found = object_.find(key);
    if (found == object_.end()) {
        fail(key, "missing; expected " + expected);
    }
    return *found;
}

std::string ObjectReader::requiredText(const std::string &key) const {
    const nlohmann::json &value = required(key, textExpected(1));
    const std::optional<std::string> text = textIn(value, kLongestText);
    if (!text || text->empty()) {
        fail(key, mismatch(textExpected(1), value));
    }
    return *text;
}

std::string ObjectReader::optionalText(const std::string &key) const {
    const auto found = object_.find(key);
    if (found == object_.end()) {
        return {};
    }
    const std::optional<std::string> text = textIn(*found, kLongestText);
    if (!text) {
        fail(key, mismatch(textExpected(0), *found));
    }
    return *text;
}

void ObjectReader::fail(const std::string &key, const std::string &text) const {
    throw JsonTextError(toString({joinPath(path_, key), text}));
}

std::string readTextFile(const std::string &path) {
    constexpr std::uintmax_t kLargestFile = std::uintmax_t{16} * 1024 * 1024;
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (!std::filesystem::is_regular_file(status)) {
        throw FileError(path + ": " + (error ? error.message() : "not a regular file"));
    }
    if (std::filesystem::file_size(path, error) > kLargestFile || error) {
        throw FileError(path + ": larger than " + std::to_string(kLargestFile) + " octets");
    }
    std::ifstream file(path, std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (!file) {
        throw FileError(path + ": cannot be read");
    }
    return text;
}

void replaceFile(const std::string &path, const std::string &text) {
    const auto failWith = [&path](int error) {
        throw FileError(path + ": cannot be written: " + std::generic_category().message(error));
    };
    // One name for all attempts: what a killed camera left half written is overwritten by the next one.
    const std::string fresh = path + ".new";
    if (!writeToDisk(fresh, text) || rename(fresh.c_str(), path.c_str()) != 0) {
        const int error = errno;
        unlink(fresh.c_str());
        failWith(error);
    }
    // Without this the disk could still have the old entry after a power failure.
    const std::filesystem::path parent = std::filesystem::path(path).parent_path();
    const OpenFile directory(parent.empty() ? "." : parent.string(), O_RDONLY | O_DIRECTORY);
    // Not every file system has something to write there.
    if (directory.get() < 0 || (fsync(directory.get()) != 0 && errno != EINVAL)) {
        failWith(errno);
    }
}

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
    if (nameOrPath.find('/') != std::string::npos || std::filesystem::path(nameOrPath).extension() == ".json") {
        return nameOrPath;
    }
    std::vector<std::string> names;
    for (const NamedFile &file : namedFiles(directory)) {
        if (file.name == nameOrPath) {
            return file.path;
        }
        names.push_back(file.name);
    }
    throw FileError("no " + kind + " '" + nameOrPath + "' in " + directory + "; there are: " + listed(names));
}

std::string shippedDirectory(const std::string &kind) {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    return (program.parent_path().parent_path() / "share/quarnsnmp" / kind).string();
}

} // namespace camera
