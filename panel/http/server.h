// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * HTTP server on an io_context, which one thread runs.
 */
#ifndef QUARNSNMP_PANEL_SERVER_H
#define QUARNSNMP_PANEL_SERVER_H

#include <chrono>
#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <string>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include "guard.h"
#include "http_request.h"
#include "http_response.h"

namespace panel {

class Connection;

/** Client of a stream. All functions belong to the thread of the io_context. */
class Watcher {
public:
    Watcher() = default;
    Watcher(const Watcher &) = delete;
    Watcher &operator=(const Watcher &) = delete;
    virtual ~Watcher() = default;

    /** Sends octets. A client that does not read them is dropped. */
    virtual void send(const SharedText &octets) = 0;

    /** Sends octets as soon as the client has read the previous ones, unless newer ones are offered before. */
    virtual void offer(const SharedText &octets) = 0;
};

/** Connects a watcher to its source. The result lives as long as the client stays. */
using StreamStart = std::function<std::shared_ptr<void>(const std::weak_ptr<Watcher> &watcher)>;

/** One request that waits for its answer. */
class Exchange {
public:
    Exchange() = default;
    Exchange(const Exchange &) = delete;
    Exchange &operator=(const Exchange &) = delete;
    virtual ~Exchange() = default;

    /** Answers, at once or later, in the thread of the io_context. */
    virtual void respond(const Response &response) = 0;

    /** Answers with a stream that ends with the connection. @param type  media type */
    virtual void stream(const std::string &type, const StreamStart &start) = 0;
};

using RequestHandler = std::function<void(const Request &request, const std::shared_ptr<Exchange> &exchange)>;

/** Limits of a server. Tests have shorter times. */
struct ServerLimits {
    std::size_t connections = 256; ///< a new one takes the place of the one that has idled for longest
    std::size_t streams = 64;      ///< further clients of streams are refused
    std::size_t unreadOctets = std::size_t{8} * 1024 * 1024; ///< of a stream; its first events may have half of it
    std::chrono::milliseconds request{10000};                ///< for the whole request, from its first octet
    std::chrono::milliseconds idle{30000};                   ///< between requests
    std::chrono::milliseconds write{10000};                  ///< without any progress of the client's reading
};

/** Accepts connections. */
class Server {
public:
    /**
     * Listens at an address.
     * @throws boost::system::system_error when it is not available
     */
    Server(boost::asio::io_context &io, const boost::asio::ip::tcp::endpoint &address, HostPolicy hosts,
           RequestHandler handler, const ServerLimits &limits = {});
    ~Server();
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    /** Returns the address with the port that was chosen for port 0. */
    boost::asio::ip::tcp::endpoint address() const;

    /** Closes the listener and all connections. */
    void close();

private:
    friend class Connection;

    void accept();
    void take(boost::asio::ip::tcp::socket socket);
    void dropOldestIdle();
    void watchTheClock();
    std::size_t streamCount() const;

    boost::asio::io_context &io_;
    boost::asio::ip::tcp::acceptor acceptor_;
    boost::asio::steady_timer clock_;
    boost::asio::steady_timer pause_; ///< after a failed accept, as without a free descriptor
    HostPolicy hosts_;
    RequestHandler handler_;
    ServerLimits limits_;
    std::list<std::shared_ptr<Connection>> connections_;
};

} // namespace panel

#endif
