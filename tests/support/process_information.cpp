// SPDX-License-Identifier: Apache-2.0
#include "process_information.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <stdexcept>
#include <system_error>

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
    return family == AF_INET6 ? "[" + std::string(text.data()) + "]" : text.data();
}

/** Decodes an address with a port, such as "0100007F:0050". */
std::string endpointText(const std::string &field, int family) {
    const std::size_t colon = field.find(':');
    const unsigned long port = std::stoul(field.substr(colon + 1), nullptr, kHexadecimal);
    return addressText(field.substr(0, colon), family) + ":" + std::to_string(port);
}

/** A table of sockets in the kernel. */
struct SocketTable {
    const char *file;
    const char *kind;
    int family;              ///< AF_INET or AF_INET6 for a table with addresses in hexadecimal
    std::size_t nameColumn;  ///< column of the local address or path; absent in the row of a socket without a path
    std::size_t inodeColumn; ///< column of the number that identifies the socket
};

constexpr std::size_t kNoName = 99;

constexpr SocketTable kSocketTables[] = {
    {"tcp", "tcp", AF_INET, 1, 9},       {"tcp6", "tcp", AF_INET6, 1, 9}, {"udp", "udp", AF_INET, 1, 9},
    {"udp6", "udp", AF_INET6, 1, 9},     {"raw", "raw", AF_INET, 1, 9},   {"raw6", "raw", AF_INET6, 1, 9},
    {"packet", "packet", 0, kNoName, 8}, {"unix", "unix", 0, 7, 6},       {"netlink", "netlink", 0, kNoName, 9},
};

std::vector<std::string> fieldsOf(const std::string &line) {
    std::istringstream stream(line);
    return {std::istream_iterator<std::string>(stream), {}};
}

std::string socketText(const SocketTable &table, const std::vector<std::string> &fields) {
    if (table.nameColumn >= fields.size()) {
        return table.kind;
    }
    const std::string &name = fields[table.nameColumn];
    return std::string(table.kind) + " " + (table.family == 0 ? name : endpointText(name, table.family));
}

/** Describes all sockets of a process's network namespace. The keys are the targets of links to descriptors. */
std::map<std::string, std::string> describedSockets(pid_t pid) {
    std::map<std::string, std::string> sockets;
    for (const SocketTable &table : kSocketTables) {
        std::ifstream stream(procPath(pid, std::string("net/") + table.file));
        std::string line;
        std::getline(stream, line); // header
        while (std::getline(stream, line)) {
            const std::vector<std::string> fields = fieldsOf(line);
            sockets["socket:[" + fields.at(table.inodeColumn) + "]"] = socketText(table, fields);
        }
    }
    return sockets;
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

std::vector<std::string> sockets(pid_t pid) {
    // Before the tables, which then contain every socket found here.
    std::vector<std::string> links;
    for (const auto &entry : std::filesystem::directory_iterator(procPath(pid, "fd"))) {
        std::error_code gone;
        const std::string target = std::filesystem::read_symlink(entry, gone).string();
        if (target.rfind("socket:", 0) == 0) {
            links.push_back(target);
        }
    }
    const std::map<std::string, std::string> described = describedSockets(pid);
    std::vector<std::string> result;
    for (const std::string &link : links) {
        const auto found = described.find(link);
        result.push_back(found == described.end() ? "unknown" : found->second);
    }
    return result;
}

} // namespace support
