// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A client of a simulated camera's sockets.
 */
#ifndef QUARNSNMP_SUPPORT_LINE_CLIENT_H
#define QUARNSNMP_SUPPORT_LINE_CLIENT_H

#include <cstddef>
#include <optional>
#include <string>

#include <boost/asio/local/stream_protocol.hpp>
#include <nlohmann/json.hpp>

namespace support {

/** A connection that sends lines and reads lines, each within kPatience. */
class LineClient {
public:
    /** Connects to a socket of a camera's directory; see connected(). */
    LineClient(const std::string &directory, const std::string &socket);

    bool connected() const;

    /** Sends octets. A connection that has ended discards them. */
    void send(const std::string &octets);

    /** Sends as many octets as the socket takes now. @return their number; nothing if the connection has ended */
    std::optional<std::size_t> sendWhatFits(const std::string &octets);

    /** Waits for the next line. @return nothing if the connection ends or stays silent */
    std::optional<std::string> readLine();

    /** Sends a line and waits for the answer; returns "no answer" without one. */
    std::string ask(const std::string &line);

    /** Sends a JSON text and waits for the answer; returns null without one. */
    nlohmann::json call(const nlohmann::json &request);

    /** Waits for the peer's end of the connection, and discards the octets before it. @return false in case of silence
     */
    bool ends();

    /** Returns true if there are octets to read, or the connection has ended. */
    bool readable();

    /** Ends the sending direction. */
    void finish();

private:
    /** Gives the next operation its time, also after an operation that has failed. */
    void renew();

    boost::asio::local::stream_protocol::iostream stream_;
    bool connected_;
};

} // namespace support

#endif
