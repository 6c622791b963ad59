// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Requests to many agents over one socket.
 */
#ifndef QUARNSNMP_FLEET_AGENT_ASKER_H
#define QUARNSNMP_FLEET_AGENT_ASKER_H

#include <array>
#include <cstdint>
#include <functional>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/udp.hpp>

#include "encoded_message.h"

namespace fleet {

/** Sends requests to agents and receives their responses. Not thread-safe. */
class AgentAsker {
public:
    /** Receives a response. The caller checks whether `from` is the agent that it asked. */
    using Handler =
        std::function<void(const boost::asio::ip::udp::endpoint &from, const snmp::DecodedResponse &response)>;

    /** @param agent  address of an agent, which decides whether the socket has a loopback address */
    AgentAsker(boost::asio::io_context &io, const boost::asio::ip::address &agent, Handler handler);
    AgentAsker(const AgentAsker &) = delete;
    AgentAsker &operator=(const AgentAsker &) = delete;

    /** Sends a request. A failure shows as a missing response. @param id  request-id, 24 bits */
    void ask(const boost::asio::ip::udp::endpoint &agent, snmp::Message &request, std::uint32_t id);

private:
    void receive();

    boost::asio::ip::udp::socket socket_;
    boost::asio::ip::udp::endpoint sender_;
    std::array<char, 1500> buffer_{};
    Handler handler_;
};

} // namespace fleet

#endif
