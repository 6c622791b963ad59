// SPDX-License-Identifier: Apache-2.0
#include "line_client.h"

#include <cerrno>
#include <limits>

#include <sys/socket.h>

#include "eventually.h"
#include "wire.h"

namespace support {

using boost::asio::local::stream_protocol;

LineClient::LineClient(const std::string &directory, const std::string &socket) {
    renew();
    stream_.connect(stream_protocol::endpoint(wire::socketPath(directory, socket)));
    connected_ = stream_.good();
}

void LineClient::renew() {
    stream_.clear();
    stream_.expires_after(patient(kPatience));
}

bool LineClient::connected() const {
    return connected_;
}

void LineClient::send(const std::string &octets) {
    renew();
    stream_ << octets << std::flush;
}

std::optional<std::size_t> LineClient::sendWhatFits(const std::string &octets) {
    const ssize_t count =
        ::send(stream_.socket().native_handle(), octets.data(), octets.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count >= 0) {
        return static_cast<std::size_t>(count);
    }
    return errno == EAGAIN ? std::optional<std::size_t>(0) : std::nullopt;
}

std::optional<std::string> LineClient::readLine() {
    renew();
    std::string line;
    return std::getline(stream_, line) && !stream_.eof() ? std::optional(line) : std::nullopt;
}

std::string LineClient::ask(const std::string &line) {
    send(line + "\n");
    return readLine().value_or("no answer");
}

nlohmann::json LineClient::call(const nlohmann::json &request) {
    send(wire::encode(request));
    const std::optional<std::string> line = readLine();
    return line ? wire::decode(*line) : nlohmann::json();
}

bool LineClient::ends() {
    renew();
    stream_.ignore(std::numeric_limits<std::streamsize>::max());
    return stream_.error() != boost::asio::error::timed_out;
}

bool LineClient::readable() {
    char octet = 0;
    return stream_.rdbuf()->in_avail() > 0 ||
           ::recv(stream_.socket().native_handle(), &octet, 1, MSG_PEEK | MSG_DONTWAIT) >= 0;
}

void LineClient::finish() {
    boost::system::error_code ignored;
    stream_.socket().shutdown(stream_protocol::socket::shutdown_send, ignored);
}

} // namespace support
