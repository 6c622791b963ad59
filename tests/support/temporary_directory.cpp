// SPDX-License-Identifier: Apache-2.0
#include "temporary_directory.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <system_error>

#include <gtest/gtest.h>

namespace support {

bool testHasFailed() {
    const testing::TestInfo *test = testing::UnitTest::GetInstance()->current_test_info();
    return test != nullptr && test->result()->Failed();
}

TemporaryDirectory::TemporaryDirectory()
    : path_((std::filesystem::temp_directory_path() / "quarnsnmp-XXXXXX").string()) {
    if (mkdtemp(path_.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "cannot create " + path_);
    }
    path_ = std::filesystem::canonical(path_).string();
}

TemporaryDirectory::~TemporaryDirectory() {
    if (testHasFailed()) {
        std::cerr << "The files of the failed test are kept in " << path_ << "\n";
        return;
    }
    std::error_code error;
    std::filesystem::remove_all(path_, error);
    if (error) {
        std::cerr << "Cannot remove " << path_ << ": " << error.message() << "\n";
    }
}

const std::string &TemporaryDirectory::path() const {
    return path_;
}

std::string TemporaryDirectory::file(const std::string &name) const {
    return path_ + "/" + name;
}

std::string TemporaryDirectory::write(const std::string &name, const std::string &content) const {
    writeFile(file(name), content);
    return file(name);
}

void writeFile(const std::string &path, const std::string &content) {
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream << content;
    stream.close();
    if (!stream) {
        throw std::runtime_error("cannot write " + path);
    }
}

std::vector<std::string> entriesOf(const std::string &directory) {
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(directory)) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}

} // namespace support
