// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Server on one Unix-domain socket.
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
 * Server on a socket file. Only the owner can access the file, because every client with write access controls the
 * camera.
 */
class LineServer {
public:
    /**
     * Limit of connections. It prevents one socket from using up the file descriptors of the process. A new client
     * beyond it takes the place of the connection that has been idle for the longest time.
     */
    static constexpr std::size_t kMostConnections = 48;

    /** @param onLine  handles the lines of all clients */
    LineServer(boost::asio::io_context &io, std::string path, LineConnection::LineHandler onLine);
    LineServer(const LineServer &) = delete;
    LineServer &operator=(const LineServer &) = delete;

    /** Closes the server. */
    ~LineServer();

    /** Starts listening. @return the error message on failure */
    std::optional<std::string> open();

    /** Stops listening, closes all connections and removes the file. */
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
