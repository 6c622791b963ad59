// SPDX-License-Identifier: Apache-2.0
#include "addresses.h"

#include <stdexcept>

#include <boost/asio/io_context.hpp>

#include "numbers.h"

namespace fleet {

namespace {

namespace ip = boost::asio::ip;

constexpr std::uint32_t kFirstLoopback = 0x7F000001;
constexpr std::uint32_t kLastLoopback = 0x7FFFFFFE; // the address after it is for broadcasts
constexpr std::uint32_t kFirstUnicast = 0x01000000;
constexpr std::uint32_t kLastUnicast = 0xDFFFFFFF;

ip::address_v4 parseAddress(const std::string &text) {
    boost::system::error_code error;
    ip::address_v4 address = ip::make_address_v4(text, error);
    if (error) {
        throw std::invalid_argument("'" + text + "' is not an IPv4 address");
    }
    return address;
}

} // namespace

std::vector<ip::address_v4> consecutiveAddresses(const std::string &first, std::size_t count) {
    const std::uint32_t start = parseAddress(first).to_uint();
    const bool isLoopback = start >= kFirstLoopback && start <= kLastLoopback;
    if (!isLoopback && (start < kFirstUnicast || start > kLastUnicast || ip::address_v4(start).is_loopback())) {
        throw std::invalid_argument(first + " is not the address of a host");
    }
    const std::uint32_t limit = isLoopback ? kLastLoopback : start < kFirstLoopback ? kFirstLoopback - 2 : kLastUnicast;
    if (count > std::size_t{limit - start} + 1) {
        throw std::invalid_argument(std::to_string(count) + " addresses from " + first + " on go beyond " +
                                    ip::address_v4(limit).to_string());
    }
    std::vector<ip::address_v4> addresses;
    addresses.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        addresses.emplace_back(start + static_cast<std::uint32_t>(i));
    }
    return addresses;
}

std::optional<std::string> reasonAgainst(const ip::udp::endpoint &endpoint) {
    boost::asio::io_context io;
    ip::udp::socket socket(io);
    boost::system::error_code error;
    socket.open(ip::udp::v4(), error);
    if (!error) {
        socket.bind(endpoint, error);
    }
    if (!error) {
        return std::nullopt;
    }
    if (error == boost::asio::error::address_in_use) {
        return textOf(endpoint) + " is in use by another program; choose another --port or --base";
    }
    if (error == boost::system::errc::address_not_available) {
        return endpoint.address().to_string() +
               " is not an address of this machine; add it to an interface, or choose another --base";
    }
    return "no agent can listen at " + textOf(endpoint) + ": " + error.message();
}

ip::udp::endpoint parseEndpoint(const std::string &text) {
    constexpr unsigned kHighestPort = 65535;
    const std::size_t colon = text.rfind(':');
    const std::optional<unsigned> port =
        colon == std::string::npos ? std::nullopt : numberIn(text.substr(colon + 1), 1, kHighestPort);
    if (!port) {
        throw std::invalid_argument("'" + text + "' is not HOST:PORT with an IPv4 address and a port from 1 to 65535");
    }
    return {parseAddress(text.substr(0, colon)), static_cast<unsigned short>(*port)};
}

std::string textOf(const ip::udp::endpoint &endpoint) {
    return endpoint.address().to_string() + ":" + std::to_string(endpoint.port());
}

} // namespace fleet
