// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Receiver of the watch module's reports.
 */
#ifndef QUARNSNMP_PANEL_WATCH_RECEIVER_H
#define QUARNSNMP_PANEL_WATCH_RECEIVER_H

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <sys/types.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/local/datagram_protocol.hpp>
#include <boost/asio/steady_timer.hpp>

#include "watch_report.h"

namespace panel {

/**
 * Receives reports at `watch.sock` in the directory of a camera. A camera that ends may remove its directory, so the
 * socket is made again when it is missing. All functions belong to the thread of the io_context.
 */
class WatchReceiver : public std::enable_shared_from_this<WatchReceiver> {
public:
    using Handler = std::function<void(const WatchReport &report)>;

    WatchReceiver(boost::asio::io_context &io, const std::string &directory, Handler handler);

    /** Opens the socket, now and whenever it is missing. */
    void start();

    /** Closes and removes the socket. */
    void stop();

    bool isListening() const;

    /** Returns why isListening() is false; may be empty. */
    const std::string &problem() const;

    /** Returns the number of reports so far, and of datagrams that were none. */
    std::uint64_t received() const;
    std::uint64_t malformed() const;

private:
    using Socket = boost::asio::local::datagram_protocol::socket;

    void check();
    void open();
    void close();
    bool isAtPath() const;
    void receive();
    void takeAll(Socket &socket);

    boost::asio::io_context &io_;
    std::string directory_;
    std::string path_;
    Handler handler_;
    boost::asio::steady_timer timer_;
    std::shared_ptr<Socket> socket_; ///< null while not listening
    ino_t inode_ = 0;                ///< of the socket
    std::string problem_;
    std::uint64_t received_ = 0;
    std::uint64_t malformed_ = 0;
    std::array<char, kLongestReport + 1> datagram_{};
};

} // namespace panel

#endif
