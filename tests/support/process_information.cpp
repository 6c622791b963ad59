// SPDX-License-Identifier: Apache-2.0
#include "process_information.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

#include <arpa/inet.h>

namespace support {

namespace {

constexpr int kHexadecimal = 16;

std::string procPath(pid_t pid, const std::string &name) {
    return "/proc/" + std::to_string(pid) + "/" + name;
}

/** Returns a line of the process's status without the field's name; empty if there is none. */
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

/** Decodes an address of the kernel's tables: 32-bit words in hexadecimal, each in the machine's byte order. */
std::string addressText(const std::string &words, int family) {
    constexpr std::size_t kDigitsOfAWord = 8;
    std::array<std::uint32_t, 4> address{};
    for (std::size_t i = 0; i * kDigitsOfAWord < words.size(); ++i) {
        address.at(i) = static_cast<std::uint32_t>(
            std::stoul(words.substr(i * kDigitsOfAWord, kDigitsOfAWord), nullptr, kHexadecimal));
    }
    std::array<char, INET6_ADDRSTRLEN> text{};
    inet_ntop(family, address.data(), text.data(), text.size());
    return text.data();
}

} // namespace

bool runs(pid_t pid) {
    const std::string state = statusField(pid, "State");
    return !state.empty() && state.find('Z') == std::string::npos;
}

std::size_t residentKilobytes(pid_t pid) {
    return statusNumber(pid, "VmRSS");
}

std::size_t peakKilobytes(pid_t pid) {
    return statusNumber(pid, "VmHWM");
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

std::vector<std::string> udpAddresses(std::uint16_t port) {
    std::vector<std::string> addresses;
    for (const auto &[table, family] : {std::pair{"/proc/net/udp", AF_INET}, std::pair{"/proc/net/udp6", AF_INET6}}) {
        std::ifstream stream(table);
        std::string header;
        std::getline(stream, header);
        for (std::string line; std::getline(stream, line);) {
            std::istringstream fields(line);
            std::string slot;
            std::string local;
            fields >> slot >> local;
            const std::size_t colon = local.find(':');
            if (std::stoul(local.substr(colon + 1), nullptr, kHexadecimal) == port) {
                addresses.push_back(addressText(local.substr(0, colon), family));
            }
        }
    }
    return addresses;
}

} // namespace support
