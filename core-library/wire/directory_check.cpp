// SPDX-License-Identifier: Apache-2.0
#include "directory_check.h"

#include <unistd.h>

namespace wire {

namespace {

constexpr uid_t kRoot = 0;

bool othersCanWrite(const struct stat &status) {
    return (status.st_mode & (S_IWGRP | S_IWOTH)) != 0;
}

} // namespace

std::optional<std::string> reasonToRefuse(const struct stat &directory, const struct stat &parent, uid_t user) {
    if (S_ISLNK(directory.st_mode)) {
        return "is a symbolic link; give the path of the directory itself";
    }
    if (!S_ISDIR(directory.st_mode)) {
        return "is not a directory";
    }
    if (othersCanWrite(directory)) {
        return "is writable by other users; run chmod go-w on it";
    }
    const bool placedByRoot = parent.st_uid == kRoot && !othersCanWrite(parent);
    if (directory.st_uid != user && directory.st_uid != kRoot && !(user == kRoot && placedByRoot)) {
        return "belongs to user " + std::to_string(directory.st_uid) +
               "; run the camera and the agent as the same user";
    }
    return std::nullopt;
}

std::optional<std::string> unsafeDirectory(const std::string &path) {
    // The kernel follows a symbolic link with a slash behind it.
    const std::string plain = path.substr(0, path.find_last_not_of('/') + 1);
    struct stat directory {};
    struct stat parent {};
    if (lstat(plain.c_str(), &directory) != 0) {
        return std::nullopt; // A missing directory has no sockets.
    }
    if (stat((plain + "/..").c_str(), &parent) != 0) {
        parent.st_mode = S_IRWXU | S_IRWXG | S_IRWXO;
    }
    if (std::optional<std::string> reason = reasonToRefuse(directory, parent, geteuid())) {
        return plain + " " + *reason;
    }
    return std::nullopt;
}

} // namespace wire
