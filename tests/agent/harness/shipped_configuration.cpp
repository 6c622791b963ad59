// SPDX-License-Identifier: Apache-2.0
#include "shipped_configuration.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

#include "settings.h"

namespace harness {

namespace {

std::string contentOf(const std::string &path) {
    const std::ifstream stream(path);
    std::ostringstream content;
    content << stream.rdbuf();
    if (!stream || content.str().empty()) {
        throw std::runtime_error("cannot read " + path);
    }
    return content.str();
}

} // namespace

std::string shippedConfiguration(const std::string &name, const std::vector<Replacement> &replacements) {
    const std::string path = examplesDirectory() + "/" + name;
    std::string text = contentOf(path);
    for (const auto &[passage, with] : replacements) {
        const std::size_t start = text.find(passage);
        if (start == std::string::npos || text.find(passage, start + 1) != std::string::npos) {
            throw std::runtime_error(std::string(path).append(" does not have exactly once: ").append(passage));
        }
        text.replace(start, passage.size(), with);
    }
    return text;
}

} // namespace harness
