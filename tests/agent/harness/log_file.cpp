#include "log_file.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <utility>

#include "eventually.h"

namespace harness {

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

std::size_t LogFile::count(const std::string &part) const {
    const std::vector<std::string> all = lines();
    return static_cast<std::size_t>(std::count_if(
        all.begin(), all.end(), [&part](const std::string &line) { return line.find(part) != std::string::npos; }));
}

bool LogFile::waitFor(const std::string &part, std::chrono::milliseconds deadline) const {
    return eventually(deadline, [this, &part] { return count(part) > 0; });
}

std::string LogFile::tail(std::size_t lineCount) const {
    const std::vector<std::string> all = lines();
    std::string result;
    for (std::size_t i = all.size() - std::min(lineCount, all.size()); i < all.size(); ++i) {
        result += all[i] + "\n";
    }
    return result;
}

} // namespace harness
