// SPDX-License-Identifier: Apache-2.0
#include "text_file.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace camera {

namespace {

/** Owner of a file descriptor. */
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

/** Writes a new file to the disk. @return false on failure, with the reason in errno */
bool writeToDisk(const std::string &path, const std::string &text) {
    const OpenFile file(path, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW);
    return file.get() >= 0 && writeAll(file.get(), text) && fsync(file.get()) == 0;
}

} // namespace

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
    // A fixed name: the next camera overwrites the incomplete file of a killed one.
    const std::string fresh = path + ".new";
    if (!writeToDisk(fresh, text) || rename(fresh.c_str(), path.c_str()) != 0) {
        const int error = errno;
        unlink(fresh.c_str());
        failWith(error);
    }
    // Without this step, the old directory entry could come back after a power failure.
    const std::filesystem::path parent = std::filesystem::path(path).parent_path();
    const OpenFile directory(parent.empty() ? "." : parent.string(), O_RDONLY | O_DIRECTORY);
    // Some file systems reject the call, because they have nothing to write.
    if (directory.get() < 0 || (fsync(directory.get()) != 0 && errno != EINVAL)) {
        failWith(errno);
    }
}

} // namespace camera
