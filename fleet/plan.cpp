// SPDX-License-Identifier: Apache-2.0
#include "plan.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include <sys/un.h>
#include <unistd.h>

#include "camera_file.h"
#include "shipped_files.h"
#include "socket_directory.h"
#include "wire.h"

namespace fleet {

namespace {

/** A kind of camera. */
struct Kind {
    std::string name;
    std::string file;
    std::string serial; ///< empty without one
};

/** Characters that an agent takes for the end of a path in its configuration and its environment. */
constexpr const char *kUnusable = " \t\r\n,:#\"'\\";

bool isUsable(const std::string &path) {
    return path.find_first_of(kUnusable) == std::string::npos;
}

std::string digits(unsigned number) {
    constexpr std::size_t kWidth = 4; // of the largest number
    const std::string text = std::to_string(number);
    return std::string(kWidth - std::min(kWidth, text.size()), '0') + text;
}

std::string serialIn(const camera::CameraDescription &description) {
    const auto found = description.services.find("device_information");
    if (found == description.services.end() || found->second->targetCount() == 0) {
        return "";
    }
    const nlohmann::json serial = found->second->values(0).at("serial");
    return serial.is_string() ? serial.get<std::string>() : "";
}

Kind readKind(const std::string &nameOrPath) {
    const std::string file = camera::findShippedFile("camera", nameOrPath);
    const camera::CameraDescription description = camera::readCameraFile(file);
    return {description.name, std::filesystem::absolute(file).string(), serialIn(description)};
}

/** Returns the first path at which there is a file that this process may use in a way, as for access(). */
std::string firstFile(const std::string &what, const std::vector<std::string> &paths, int mode) {
    for (const std::string &path : paths) {
        if (std::filesystem::is_regular_file(path) && access(path.c_str(), mode) == 0) {
            return std::filesystem::canonical(path).string();
        }
    }
    throw std::runtime_error(what + " is missing: " + paths.back());
}

} // namespace

Programs findPrograms(const std::string &module) {
    const std::filesystem::path here = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the program has one thread
    const char *const agent = std::getenv("QUARNSNMP_SNMPD");
    constexpr const char *kModule = "libquarnsnmp_Morvek.so";
    const std::filesystem::path libraries = here.parent_path() / "lib";
    const std::vector<std::string> modules =
        module.empty() ? std::vector<std::string>{libraries / kModule, libraries / "quarnsnmp" / kModule}
                       : std::vector<std::string>{module};
    Programs programs = {firstFile("the simulated camera", {here / "quarnsnmp-camera"}, X_OK),
                         firstFile("the agent (package snmpd)", {agent != nullptr ? agent : "/usr/sbin/snmpd"}, X_OK),
                         firstFile("the agent's module (package quarnsnmp, or --module)", modules, R_OK)};
    if (!isUsable(programs.module)) {
        throw std::runtime_error("an agent's configuration cannot name the module " + programs.module +
                                 ", because of a character in its path; move it");
    }
    return programs;
}

std::vector<CameraPlan> planCameras(const Options &options, const std::string &directory) {
    std::vector<Kind> kinds;
    for (const Share &share : options.shares) {
        kinds.push_back(readKind(share.camera));
    }
    const std::vector<std::size_t> mixture = mixtureOf(options.shares, options.count);
    std::vector<CameraPlan> cameras;
    cameras.reserve(options.count);
    for (unsigned number = 1; number <= options.count; ++number) {
        const Kind &kind = kinds[mixture[number - 1]];
        CameraPlan plan;
        plan.number = number;
        plan.name = "camera-" + digits(number);
        plan.kind = kind.name;
        plan.file = kind.file;
        plan.serial = kind.serial.empty() ? "" : kind.serial + "-" + digits(number);
        plan.address = {options.addresses[number - 1], options.port};
        plan.directory = directory + "/" + digits(number);
        cameras.push_back(std::move(plan));
    }
    return cameras;
}

void checkPlaces(const std::vector<CameraPlan> &cameras) {
    if (!isUsable(cameras.front().directory)) {
        throw std::runtime_error("the agents cannot use " + cameras.front().directory +
                                 ", because of a character in the path; choose another --directory");
    }
    for (const std::string &name : camera::socketNames()) {
        constexpr std::size_t kLongest = sizeof(sockaddr_un::sun_path) - 1;
        const std::string path = wire::socketPath(cameras.front().directory, name);
        if (path.size() > kLongest) {
            throw std::runtime_error("the path " + path + " is too long for a socket, which has at most " +
                                     std::to_string(kLongest) + " octets; choose a shorter --directory");
        }
    }
    for (const CameraPlan &plan : cameras) {
        if (const std::optional<std::string> reason = reasonAgainst(plan.address)) {
            throw std::runtime_error(*reason);
        }
    }
}

} // namespace fleet
