// SPDX-License-Identifier: Apache-2.0
#include "log_file.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

namespace support {

LogFile::LogFile(std::string path) : path_(std::move(path)) {}

const std::string &LogFile::path() const {
    return path_;
}

std::string LogFile::text() const {
    std::ifstream stream(path_, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

std::vector<std::string> LogFile::lines() const {
    const std::string content = text();
    std::vector<std::string> result;
    std::size_t start = 0;
    for (std::size_t end = content.find('\n'); end != std::string::npos; end = content.find('\n', start)) {
        result.push_back(content.substr(start, end - start));
        start = end + 1;
    }
    return result;
}

std::size_t LogFile::size() const {
    std::error_code error;
    const std::uintmax_t octets = std::filesystem::file_size(path_, error);
    return error ? 0 : static_cast<std::size_t>(octets);
}

std::size_t LogFile::count(const std::string &part, std::size_t start) const {
    std::ifstream stream(path_, std::ios::binary);
    stream.seekg(static_cast<std::streamoff>(start));
    std::size_t result = 0;
    for (std::string line; std::getline(stream, line) && !stream.eof();) {
        result += line.find(part) != std::string::npos ? 1U : 0U;
    }
    return result;
}

bool LogFile::waitFor(const std::string &part, std::chrono::milliseconds deadline) const {
    return eventually(deadline, [this, &part] { return count(part) > 0; });
}

std::string LogFile::awaitLine(std::size_t index) const {
    std::vector<std::string> all;
    const bool complete = eventually([&] {
        all = lines();
        return all.size() > index;
    });
    return complete ? all[index] : "";
}

std::string LogFile::tail(std::size_t lineCount) const {
    const std::vector<std::string> all = lines();
    std::string result;
    for (std::size_t i = all.size() - std::min(lineCount, all.size()); i < all.size(); ++i) {
        result += all[i] + "\n";
    }
    return result;
}

} // namespace support
