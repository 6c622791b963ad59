// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * One client's connection: lines in, lines out.
 */
#ifndef QUARNSNMP_CAMERA_LINE_CONNECTION_H
#define QUARNSNMP_CAMERA_LINE_CONNECTION_H

#include <array>
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/steady_timer.hpp>

namespace camera {

/** Most octets that wait for a client that does not read; with more its connection ends. */
inline constexpr std::size_t kMostPendingOutput = std::size_t{4} * 1024 * 1024;

/**
 * A connection. Lines are handed out one after the other; a client that sends many at once does not hold up the others,
 * and one whose line is too long, or who does not read, loses its connection.
 */
class LineConnection : public std::enable_shared_from_this<LineConnection> {
public:
    /** Takes a line, without its newline. */
    using LineHandler = std::function<void(LineConnection &, std::string_view line)>;
    /** Learns that the connection has ended; the last call that the connection makes. */
    using CloseHandler = std::function<void(const std::shared_ptr<LineConnection> &)>;

    LineConnection(boost::asio::local::stream_protocol::socket socket, LineHandler onLine, CloseHandler onClose);
    LineConnection(const LineConnection &) = delete;
    LineConnection &operator=(const LineConnection &) = delete;

    /** Starts reading. The connection lives on until it ends. */
    void start();

    /** Sends a line, newline included. */
    void send(std::string line);

    /** Sends a line after a time; further lines of this client wait until then, as answers come in order. */
    void sendLater(std::string line, std::chrono::milliseconds delay);

    /** Keeps something alive until the connection ends. */
    void keep(std::shared_ptr<void> companion);

    /** Ends the connection. */
    void close();

private:
    void read();
    void received(std::size_t count);
    void handleLines();
    void handleMoreLinesLater();
    void writePending();
    void watchForEnd();

    boost::asio::local::stream_protocol::socket socket_;
    boost::asio::steady_timer timer_;
    LineHandler onLine_;
    CloseHandler onClose_;
    std::shared_ptr<void> companion_;
    std::array<char, 4096> chunk_{};
    std::string input_;
    std::size_t handled_ = 0; ///< octets at the front of the input that are done with
    std::string output_;      ///< what the socket did not take at once
    bool waitingToWrite_ = false;
    bool paused_ = false;
    bool watched_ = false;
};

} // namespace camera

#endif
