// SPDX-License-Identifier: Apache-2.0
#include "hosts_file.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <stdexcept>

namespace ptzctl {

namespace {

constexpr std::size_t kLongestLine = 1024;
constexpr const char *kBlanks = " \t\r";

/** Returns what a line has beside its comment and the blanks around it. */
std::string contentOf(std::string line) {
    const auto startsComment = [&](std::size_t at) { return at == 0 || std::strchr(kBlanks, line[at - 1]) != nullptr; };
    for (std::size_t at = line.find('#'); at != std::string::npos; at = line.find('#', at + 1)) {
        if (startsComment(at)) {
            line.erase(at);
            break;
        }
    }
    const std::size_t first = line.find_first_not_of(kBlanks);
    return first == std::string::npos ? "" : line.substr(first, line.find_last_not_of(kBlanks) + 1 - first);
}

bool isHostCharacter(char character) {
    return character > ' ' && character <= '~' && character != ',';
}

bool isPort(const std::string &text) {
    std::uint16_t port = 0;
    const char *const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, port);
    return error == std::errc() && last == end && port != 0;
}

/** Returns what is wrong with a host, or an empty text. */
std::string faultOf(const std::string &host) {
    if (!std::all_of(host.begin(), host.end(), isHostCharacter)) {
        return "a line has one host, of printable ASCII characters without blanks and commas";
    }
    if (host.front() == '-') {
        return "'" + host + "' is not a host";
    }
    const std::size_t colon = host.rfind(':');
    const std::string port = colon == std::string::npos ? "" : host.substr(colon + 1);
    const bool isNumber = port.find_first_not_of("0123456789") == std::string::npos;
    // Bare IPv6 addresses have several colons, and the last one need not stand before a port.
    if (colon != std::string::npos && host.find(':') == colon && isNumber && !isPort(port)) {
        return "'" + host + "' has no port from 1 to 65535 behind its colon";
    }
    return "";
}

/** Returns the text that is the same for all spellings of a host. */
std::string withoutDefaultPort(const std::string &host) {
    constexpr const char *kDefaultPort = ":161";
    const std::size_t colon = host.rfind(':');
    return colon != std::string::npos && host.substr(colon) == kDefaultPort && host.find(':') == colon
               ? host.substr(0, colon)
               : host;
}

/** Reads a line of limited length. @return false at the end of the list */
bool readLine(std::istream &list, std::string &line) {
    std::vector<char> buffer(kLongestLine);
    list.getline(buffer.data(), static_cast<std::streamsize>(buffer.size()));
    line = buffer.data();
    if (list.fail() && !list.bad() && !list.eof()) {
        throw std::invalid_argument("the line is too long");
    }
    if (list.gcount() > static_cast<std::streamsize>(line.size() + 1)) {
        throw std::invalid_argument("the line is not text");
    }
    return !list.fail();
}

/** Places where hosts were given, as texts for messages. */
using Places = std::map<std::string, std::string>;

/** Adds the host of a line, if it has one. */
void addLine(const std::string &line, const std::string &place, Places &places, std::vector<std::string> &hosts) {
    const std::string host = contentOf(line);
    if (host.empty()) {
        return;
    }
    const std::string fault = faultOf(host);
    if (!fault.empty()) {
        throw std::invalid_argument(fault);
    }
    const auto [earlier, isNew] = places.emplace(withoutDefaultPort(host), place);
    if (!isNew) {
        throw std::invalid_argument(host + " is given " + earlier->second + " already");
    }
    hosts.push_back(host);
}

} // namespace

void addHosts(std::istream &list, const std::string &name, std::vector<std::string> &hosts) {
    Places places;
    for (const std::string &host : hosts) {
        places.emplace(withoutDefaultPort(host), "before this list");
    }
    const std::size_t before = hosts.size();
    std::string line;
    int number = 1;
    try {
        for (; readLine(list, line); ++number) {
            constexpr const char *kByteOrderMark = "\xEF\xBB\xBF";
            const bool isMarked = number == 1 && line.rfind(kByteOrderMark, 0) == 0;
            addLine(line.substr(isMarked ? std::strlen(kByteOrderMark) : 0), "in line " + std::to_string(number),
                    places, hosts);
        }
    } catch (const std::invalid_argument &error) {
        throw std::invalid_argument(name + ":" + std::to_string(number) + ": " + error.what());
    }
    if (list.bad()) {
        throw std::invalid_argument(name + " cannot be read");
    }
    if (hosts.size() == before) {
        throw std::invalid_argument(name + " has no hosts");
    }
}

void addHostsOfFile(const std::string &path, std::vector<std::string> &hosts) {
    if (path == "-") {
        return addHosts(std::cin, "standard input", hosts);
    }
    std::ifstream file(path);
    if (!file) {
        const char *const reason = strerrordesc_np(errno);
        throw std::invalid_argument(path + " cannot be read: " + (reason != nullptr ? reason : "unknown error"));
    }
    addHosts(file, path, hosts);
}

} // namespace ptzctl
