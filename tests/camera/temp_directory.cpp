// SPDX-License-Identifier: Apache-2.0
#include "temp_directory.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace camera::test {

TempDirectory::TempDirectory() {
    std::string name = std::filesystem::temp_directory_path().string() + "/camera-test-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no temporary directory");
    }
    path_ = name;
}

TempDirectory::~TempDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

void writeFile(const std::string &path, const std::string &text) {
    std::ofstream(path) << text;
}

std::vector<std::string> entriesOf(const std::string &directory) {
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(directory)) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}

} // namespace camera::test
