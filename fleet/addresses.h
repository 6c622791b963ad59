// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Addresses of the cameras.
 */
#ifndef QUARNSNMP_FLEET_ADDRESSES_H
#define QUARNSNMP_FLEET_ADDRESSES_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <boost/asio/ip/address_v4.hpp>
#include <boost/asio/ip/udp.hpp>

namespace fleet {

/**
 * Returns consecutive addresses. The last octet carries over to the octet before it: 127.1.1.0 follows 127.1.0.255.
 * @throws std::invalid_argument when the text is no IPv4 address, or the range leaves the loopback network in which it
 *     begins, or the range of unicast addresses
 */
std::vector<boost::asio::ip::address_v4> consecutiveAddresses(const std::string &first, std::size_t count);

/** Returns why no agent can listen at an address; nothing if one can. */
std::optional<std::string> reasonAgainst(const boost::asio::ip::udp::endpoint &endpoint);

/** A destination of traps, `HOST:PORT` with an IPv4 address. @throws std::invalid_argument */
boost::asio::ip::udp::endpoint parseEndpoint(const std::string &text);

/** Returns an address and a port as `HOST:PORT`. */
std::string textOf(const boost::asio::ip::udp::endpoint &endpoint);

} // namespace fleet

#endif
