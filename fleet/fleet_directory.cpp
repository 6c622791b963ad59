// SPDX-License-Identifier: Apache-2.0
#include "fleet_directory.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

#include "agent_files.h"
#include "directory_check.h"
#include "wire.h"

namespace fleet {

namespace {

namespace fs = std::filesystem;

std::string makeTemporary() {
    std::string path = (fs::temp_directory_path() / "quarnsnmp-fleet.XXXXXX").string();
    if (mkdtemp(path.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "cannot make a directory " + path);
    }
    return path;
}

/** Returns an absolute path without a slash at its end. */
std::string plain(const std::string &path) {
    const std::string absolute = fs::absolute(path).lexically_normal().string();
    return absolute.substr(0, absolute.find_last_not_of('/') + 1);
}

} // namespace

FleetDirectory::FleetDirectory(const std::string &path)
    : isTemporary_(path.empty()), path_(isTemporary_ ? makeTemporary() : plain(path)) {
    reservation_.emplace(path_, "fleet");
}

FleetDirectory::~FleetDirectory() {
    std::error_code ignored;
    for (const std::string &directory : cameras_) {
        for (const std::string &name : camera::socketNames()) {
            unlink(wire::socketPath(directory, name).c_str());
        }
        unlink((directory + "/camera.lock").c_str());
    }
    reservation_.reset();
    if (isTemporary_) {
        fs::remove_all(path_, ignored);
    }
}

void FleetDirectory::add(const CameraPlan &camera) {
    for (const std::string &path : {camera.directory, persistentDirectory(camera)}) {
        if (mkdir(path.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
            throw std::system_error(errno, std::generic_category(), "cannot make the directory " + path);
        }
    }
    if (const std::optional<std::string> reason = wire::unsafeDirectory(camera.directory)) {
        throw std::runtime_error(*reason);
    }
    unlink(logPath(camera).c_str());
    cameras_.push_back(camera.directory);
}

} // namespace fleet
