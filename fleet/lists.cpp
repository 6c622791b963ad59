// SPDX-License-Identifier: Apache-2.0
#include "lists.h"

#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <unistd.h>

#include <nlohmann/json.hpp>

#include "visible_text.h"

namespace fleet {

std::string hostsText(const std::vector<CameraPlan> &cameras) {
    std::string text;
    for (const CameraPlan &camera : cameras) {
        text += textOf(camera.address) + " # " + camera.name + " " + camera::visible(camera.kind) + "\n";
    }
    return text;
}

std::string targetsText(const std::vector<CameraPlan> &cameras) {
    nlohmann::ordered_json groups = nlohmann::ordered_json::array();
    for (const CameraPlan &camera : cameras) {
        groups.push_back({{"targets", {textOf(camera.address)}},
                          {"labels", {{"name", camera.name}, {"kind", camera.kind}, {"serial", camera.serial}}}});
    }
    constexpr int kIndent = 2;
    return groups.dump(kIndent, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

void checkWritable(const std::string &path) {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        throw std::runtime_error(path + ": not a regular file");
    }
    // The file is replaced as a whole, so what counts is its directory.
    const fs::path directory = fs::absolute(path).parent_path();
    if (access(directory.c_str(), W_OK | X_OK) != 0) {
        throw std::runtime_error(path + ": cannot be written: " + std::generic_category().message(errno));
    }
}

} // namespace fleet
