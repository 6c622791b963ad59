// SPDX-License-Identifier: Apache-2.0
#include "wire.h"

#include <cstdlib>

namespace wire {

std::string socketDirectory() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the environment does not change while threads run
    const char *directory = std::getenv("QUARNSNMP_CAMERA_DIR");
    return directory != nullptr && *directory != '\0' ? directory : "/run/quarnsnmp-camera";
}

std::string socketPath(const std::string &directory, std::string_view name) {
    return directory + "/" + std::string(name) + ".sock";
}

std::string encode(const nlohmann::json &message) {
    return message.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

nlohmann::json decode(std::string_view line) {
    return nlohmann::json::parse(line.begin(), line.end(), nullptr, false);
}

} // namespace wire
