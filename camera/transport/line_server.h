// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * One Unix-domain socket that clients connect to, and its connections.
 */
#ifndef QUARNSNMP_CAMERA_LINE_SERVER_H
#define QUARNSNMP_CAMERA_LINE_SERVER_H

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include <boost/asio/io_context.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/steady_timer.hpp>

#include "line_connection.h"

namespace camera {

/**
 * Listens on a socket file, while it is open. The file is for its owner only: whoever can write to it commands the
 * camera.
 */
class LineServer {
public:
    /** Most clients at a time; more are turned away, so that one socket cannot use up the process's files. */
    static constexpr std::size_t kMostConnections = 48;

    /** @param onLine answers a line of a client */
    LineServer(boost::asio::io_context &io, std::string path, LineConnection::LineHandler onLine);
    LineServer(const LineServer &) = delete;
    LineServer &operator=(const LineServer &) = delete;

    /** Closes the server. */
    ~LineServer();

    /** Starts listening. @return what went wrong; nothing when the server is open */
    std::optional<std::string> open();

    /** Ends all connections, stops listening and removes the file. */
    void close();

    bool isOpen() const {
        return acceptor_.is_open();
    }

private:
    void accept();
    void accepted(boost::asio::local::stream_protocol::socket socket);
    void acceptLater();

    boost::asio::local::stream_protocol::acceptor acceptor_;
    boost::asio::steady_timer retryTimer_;
    std::string path_;
    LineConnection::LineHandler onLine_;
    std::set<std::shared_ptr<LineConnection>> connections_;
};

} // namespace camera

#endif
