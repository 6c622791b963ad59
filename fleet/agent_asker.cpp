// SPDX-License-Identifier: Apache-2.0
#include "agent_asker.h"

#include <stdexcept>
#include <utility>

namespace fleet {

namespace {

namespace ip = boost::asio::ip;

ip::address_v4 sourceFor(const ip::address &agent) {
    return agent.is_loopback() ? ip::address_v4::loopback() : ip::address_v4::any();
}

} // namespace

AgentAsker::AgentAsker(boost::asio::io_context &io, const ip::address &agent, Handler handler)
    : socket_(io, ip::udp::endpoint(sourceFor(agent), 0)), handler_(std::move(handler)) {
    socket_.non_blocking(true);
    receive();
}

void AgentAsker::ask(const ip::udp::endpoint &agent, snmp::Message &request, std::uint32_t id) {
    const std::string_view octets = request.withId(id);
    boost::system::error_code ignored;
    socket_.send_to(boost::asio::buffer(octets.data(), octets.size()), agent, 0, ignored);
}

void AgentAsker::receive() {
    socket_.async_receive_from(boost::asio::buffer(buffer_), sender_,
                               [this](const boost::system::error_code &error, std::size_t size) {
                                   if (error == boost::asio::error::operation_aborted) {
                                       return;
                                   }
                                   // Other errors report an agent that does not listen yet.
                                   if (!error) {
                                       try {
                                           handler_(sender_, snmp::parse({buffer_.data(), size}));
                                       } catch (const std::runtime_error &) {
                                           // A malformed message counts as none.
                                       }
                                   }
                                   receive();
                               });
}

} // namespace fleet
