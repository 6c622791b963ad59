// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Connection of a client that exchanges lines.
 */
#ifndef QUARNSNMP_CAMERA_LINE_CONNECTION_H
#define QUARNSNMP_CAMERA_LINE_CONNECTION_H

#include <any>
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

/** Limit of unsent octets for a client that does not read; beyond it, the connection ends. */
inline constexpr std::size_t kMostPendingOutput = std::size_t{4} * 1024 * 1024;

/**
 * Connection of a client. The handler receives the lines one by one, with pauses in favour of other clients. A line
 * beyond the maximum length, or a client that does not read, ends the connection. The connection drops the unhandled
 * lines of a client that has closed its end: a client that gave up a call has reported its failure already.
 */
class LineConnection : public std::enable_shared_from_this<LineConnection> {
public:
    /** Receives a line without its newline. */
    using LineHandler = std::function<void(LineConnection &, std::string_view line)>;
    /** Receives the end of the connection, after all lines. */
    using CloseHandler = std::function<void(const std::shared_ptr<LineConnection> &)>;

    LineConnection(boost::asio::local::stream_protocol::socket socket, LineHandler onLine, CloseHandler onClose);
    LineConnection(const LineConnection &) = delete;
    LineConnection &operator=(const LineConnection &) = delete;

    /** Starts reading. The connection keeps itself alive until its end. */
    void start();

    /** Sends a line. @param line  with its newline */
    void send(std::string line);

    /** Sends a line after a delay. Later lines of this client wait until then, because answers keep their order. */
    void sendLater(std::string line, std::chrono::milliseconds delay);

    /** Returns the server's own data about this connection; the connection destroys it at its end. */
    std::any &context() {
        return context_;
    }

    /** Returns the time of the last octets from or to the client, or of the start of the connection. */
    std::chrono::steady_clock::time_point lastUse() const {
        return lastUse_;
    }

    /** Closes the connection. */
    void close();

private:
    void read();
    void received(std::size_t count);
    void handleLines();
    bool clientIsGone();
    void handleMoreLinesLater();
    void writePending();
    void watchForEnd();

    boost::asio::local::stream_protocol::socket socket_;
    boost::asio::steady_timer timer_;
    LineHandler onLine_;
    CloseHandler onClose_;
    std::any context_;
    std::chrono::steady_clock::time_point lastUse_ = std::chrono::steady_clock::now();
    std::array<char, 4096> chunk_{};
    std::string input_;
    std::size_t handled_ = 0; ///< number of handled octets at the start of the input
    std::string output_;      ///< octets that the socket did not accept yet
    bool waitingToWrite_ = false;
    bool paused_ = false;
    bool watched_ = false;
};

} // namespace camera

#endif
