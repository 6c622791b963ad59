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

#include "settings.h"

namespace harness {

bool testHasFailed() {
    const testing::TestInfo *test = testing::UnitTest::GetInstance()->current_test_info();
    return test != nullptr && test->result()->Failed();
}

TemporaryDirectory::TemporaryDirectory() : path_(environmentOr("TMPDIR", "/tmp") + "/quarnsnmp-XXXXXX") {
    if (mkdtemp(path_.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "cannot make " + path_);
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
    std::ofstream stream(file(name), std::ios::binary | std::ios::trunc);
    stream << content;
    stream.close();
    if (!stream) {
        throw std::runtime_error("cannot write " + file(name));
    }
    return file(name);
}

} // namespace harness
