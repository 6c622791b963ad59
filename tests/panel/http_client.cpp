// SPDX-License-Identifier: Apache-2.0
#include "http_client.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <sstream>
#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "eventually.h"

namespace support {

nlohmann::json HttpResponse::json() const {
    const nlohmann::json value = nlohmann::json::parse(body, nullptr, false);
    return value.is_discarded() ? nlohmann::json() : value;
}

HttpConnection::HttpConnection(std::uint16_t port) : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(socket_, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
        close(socket_);
        throw std::runtime_error("cannot connect to port " + std::to_string(port));
    }
}

HttpConnection::~HttpConnection() {
    close(socket_);
}

void HttpConnection::limitBuffer() const {
    const int size = 4096;
    setsockopt(socket_, SOL_SOCKET, SO_RCVBUF, &size, sizeof size);
}

bool HttpConnection::send(const std::string &octets) const {
    return ::send(socket_, octets.data(), octets.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(octets.size());
}

bool HttpConnection::readMore() {
    pollfd ready = {socket_, POLLIN, 0};
    if (poll(&ready, 1, static_cast<int>(patient(kPatience).count())) <= 0) {
        return false;
    }
    std::array<char, 65536> chunk{};
    const ssize_t count = recv(socket_, chunk.data(), chunk.size(), 0);
    if (count <= 0) {
        return false;
    }
    input_.append(chunk.data(), static_cast<std::size_t>(count));
    return true;
}

std::optional<std::string> HttpConnection::readUntil(const std::string &text) {
    std::size_t place = input_.find(text);
    while (place == std::string::npos) {
        if (!readMore()) {
            return std::nullopt;
        }
        place = input_.find(text);
    }
    const std::string result = input_.substr(0, place + text.size());
    input_.erase(0, place + text.size());
    return result;
}

std::optional<std::string> HttpConnection::readOctets(std::size_t count) {
    while (input_.size() < count) {
        if (!readMore()) {
            return std::nullopt;
        }
    }
    const std::string result = input_.substr(0, count);
    input_.erase(0, count);
    return result;
}

bool HttpConnection::ends() {
    pollfd ready = {socket_, POLLIN, 0};
    std::array<char, 65536> chunk{};
    while (poll(&ready, 1, static_cast<int>(patient(kPatience).count())) > 0) {
        if (recv(socket_, chunk.data(), chunk.size(), 0) <= 0) {
            return true;
        }
    }
    return false;
}

HttpResponse HttpConnection::receive(bool hasBody) {
    HttpResponse response;
    const std::optional<std::string> head = readUntil("\r\n\r\n");
    if (!head) {
        return response;
    }
    std::istringstream lines(*head);
    std::string line;
    std::getline(lines, line);
    response.status = std::stoi(line.substr(line.find(' ') + 1));
    while (std::getline(lines, line) && line != "\r") {
        std::string name = line.substr(0, line.find(':'));
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
        const std::string value = line.substr(line.find(':') + 2);
        response.headers[name] = value.substr(0, value.find('\r'));
    }
    if (hasBody && response.headers.count("content-length") > 0) {
        response.body = readOctets(std::stoul(response.headers["content-length"])).value_or("");
    }
    return response;
}

HttpResponse httpRequest(std::uint16_t port, const std::string &octets) {
    HttpConnection connection(port);
    connection.send(octets);
    return connection.receive(octets.rfind("HEAD", 0) != 0);
}

HttpResponse httpGet(std::uint16_t port, const std::string &path) {
    return httpRequest(port, "GET " + path + " HTTP/1.1\r\nHost: localhost\r\n\r\n");
}

HttpResponse httpPost(std::uint16_t port, const std::string &path, const nlohmann::json &body) {
    const std::string text = body.dump();
    return httpRequest(port, "POST " + path +
                                 " HTTP/1.1\r\nHost: localhost\r\nX-Quarnsnmp-Panel: 1\r\nContent-Type: "
                                 "application/json\r\nContent-Length: " +
                                 std::to_string(text.size()) + "\r\n\r\n" + text);
}

EventStream::EventStream(std::uint16_t port, const std::string &query) : connection_(port) {
    connection_.send("GET /events" + query + " HTTP/1.1\r\nHost: localhost\r\n\r\n");
    connection_.readUntil("\r\n\r\n");
}

std::optional<ServerEvent> EventStream::next() {
    for (;;) {
        const std::optional<std::string> text = connection_.readUntil("\n\n");
        if (!text) {
            return std::nullopt;
        }
        ServerEvent event;
        std::istringstream lines(*text);
        std::string line;
        while (std::getline(lines, line)) {
            const std::string name = line.substr(0, line.find(':'));
            const std::string value = line.size() > name.size() + 2 ? line.substr(name.size() + 2) : "";
            if (name == "id") {
                event.id = value;
            } else if (name == "event") {
                event.name = value;
            } else if (name == "data") {
                event.data = nlohmann::json::parse(value, nullptr, false);
            }
        }
        if (!event.name.empty()) {
            return event; // not a comment
        }
    }
}

} // namespace support
