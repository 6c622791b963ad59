// SPDX-License-Identifier: Apache-2.0
#include "socket_directory.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "directory_check.h"
#include "service.h"
#include "wire.h"

namespace camera {

namespace {

/** Contents of the lock file in a directory that a camera created. */
constexpr char kCreatedMark = 'c';

[[noreturn]] void failWith(const std::string &what, int error) {
    throw TransportError(what + ": " + std::generic_category().message(error));
}

/** Returns true if the open file is still the one at the path: a camera removes it under its lock at its end. */
bool isStillThere(int file, const std::string &path) {
    struct stat opened {};
    struct stat named {};
    return fstat(file, &opened) == 0 && stat(path.c_str(), &named) == 0 && opened.st_ino == named.st_ino &&
           opened.st_dev == named.st_dev;
}

} // namespace

std::vector<std::string> socketNames() {
    std::vector<std::string> names = knownServices();
    names.emplace_back(wire::kDirectorySocket);
    names.emplace_back(wire::kControlSocket);
    return names;
}

SocketDirectory::SocketDirectory(std::string path, const std::string &user)
    : path_(std::move(path)), lockPath_(path_ + "/camera.lock") {
    const bool created = mkdir(path_.c_str(), S_IRWXU) == 0;
    if (!created && errno != EEXIST) {
        failWith("cannot create the directory " + path_, errno);
    }
    if (const std::optional<std::string> reason = wire::unsafeDirectory(path_)) {
        throw TransportError(*reason);
    }
    lock(user);
    noteOrigin(created);
    try {
        removeStaleSockets();
    } catch (...) {
        release();
        throw;
    }
}

SocketDirectory::~SocketDirectory() {
    release();
}

void SocketDirectory::release() {
    unlink(lockPath_.c_str());
    if (created_) {
        rmdir(path_.c_str());
    }
    close(lock_);
}

std::string SocketDirectory::socket(const std::string &name) const {
    return wire::socketPath(path_, name);
}

void SocketDirectory::lock(const std::string &user) {
    for (;;) {
        lock_ = open(lockPath_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
        if (lock_ < 0) {
            failWith("cannot open " + lockPath_, errno);
        }
        if (flock(lock_, LOCK_EX | LOCK_NB) != 0) {
            const int error = errno;
            close(lock_);
            if (error == EWOULDBLOCK) {
                throw TransportError("another " + user + " runs in " + path_);
            }
            failWith("cannot lock " + lockPath_, error);
        }
        if (isStillThere(lock_, lockPath_)) {
            return;
        }
        close(lock_);
    }
}

void SocketDirectory::noteOrigin(bool created) {
    char mark = 0;
    created_ = created || (pread(lock_, &mark, 1, 0) == 1 && mark == kCreatedMark);
    if (created && pwrite(lock_, &kCreatedMark, 1, 0) != 1) {
        // Without the mark, a camera that replaces a killed one does not remove the directory. That is harmless.
        created_ = true;
    }
}

void SocketDirectory::removeStaleSockets() const {
    for (const std::string &name : socketNames()) {
        const std::string path = socket(name);
        struct stat status {};
        if (lstat(path.c_str(), &status) != 0) {
            continue;
        }
        if (!S_ISSOCK(status.st_mode)) {
            throw TransportError(path + " is in the way: it is not a socket");
        }
        if (unlink(path.c_str()) != 0) {
            failWith("cannot remove " + path, errno);
        }
    }
}

} // namespace camera
