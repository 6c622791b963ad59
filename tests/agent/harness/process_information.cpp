#include "process_information.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace harness {

namespace {

std::string procPath(pid_t pid, const std::string &name) {
    return "/proc/" + std::to_string(pid) + "/" + name;
}

/** A line of the process's status without the field's name; empty when there is none. */
std::string statusField(pid_t pid, const std::string &field) {
    std::ifstream stream(procPath(pid, "status"));
    for (std::string line; std::getline(stream, line);) {
        if (line.compare(0, field.size() + 1, field + ":") == 0) {
            return line.substr(field.size() + 1);
        }
    }
    return "";
}

std::size_t statusNumber(pid_t pid, const std::string &field) {
    const std::string text = statusField(pid, field);
    if (text.empty()) {
        throw std::runtime_error("process " + std::to_string(pid) + " has no " + field);
    }
    return std::stoul(text);
}

} // namespace

bool runs(pid_t pid) {
    const std::string state = statusField(pid, "State");
    return !state.empty() && state.find('Z') == std::string::npos;
}

std::size_t residentKilobytes(pid_t pid) {
    return statusNumber(pid, "VmRSS");
}

std::size_t threadCount(pid_t pid) {
    return statusNumber(pid, "Threads");
}

std::size_t descriptorCount(pid_t pid) {
    std::size_t count = 0;
    for (const auto &entry : std::filesystem::directory_iterator(procPath(pid, "fd"))) {
        static_cast<void>(entry);
        ++count;
    }
    return count;
}

bool mapsFile(pid_t pid, const std::string &path) {
    std::ifstream stream(procPath(pid, "maps"));
    if (!stream) {
        throw std::runtime_error("process " + std::to_string(pid) + " has no list of mapped files");
    }
    const std::string wanted = std::filesystem::weakly_canonical(path).string();
    for (std::string line; std::getline(stream, line);) {
        const std::size_t start = line.find('/');
        if (start != std::string::npos && line.compare(start, std::string::npos, wanted) == 0) {
            return true;
        }
    }
    return false;
}

} // namespace harness
