// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * One connection of the HTTP server.
 */
#ifndef QUARNSNMP_PANEL_CONNECTION_H
#define QUARNSNMP_PANEL_CONNECTION_H

#include <array>
#include <chrono>
#include <cstddef>
#include <deque>
#include <memory>
#include <string>

#include "server.h"

namespace panel {

/** Answers one request after the other. */
class Connection : public Exchange, public Watcher, public std::enable_shared_from_this<Connection> {
public:
    using Clock = std::chrono::steady_clock;

    Connection(boost::asio::ip::tcp::socket socket, Server &server);

    /** Reads the first request. */
    void start();

    void respond(const Response &response) override;
    void stream(const std::string &type, const StreamStart &start) override;
    void send(const SharedText &octets) override;
    void offer(const SharedText &octets) override;

    /** Closes a connection that has exceeded a limit of time. */
    void check(Clock::time_point now);

    /** Closes the socket; the server forgets the connection. */
    void close();

    bool isClosed() const;
    bool isStreaming() const;

    /** Tests whether the connection can be closed for a new one: it has no complete request. */
    bool isIdle() const;

    /** Returns the time of the last progress. */
    Clock::time_point since() const;

private:
    enum class Phase { Waiting, Reading, Answering, Streaming, Ending, Closed };

    void enter(Phase phase);
    void readMore();
    void processInput();
    void dispatch(const Request &request);
    void refuse(const HttpError &error);
    void write();
    void written(std::size_t octets);
    void finishResponse();

    boost::asio::ip::tcp::socket socket_;
    Server &server_;
    Phase phase_ = Phase::Waiting;
    Clock::time_point since_ = Clock::now();
    std::unique_ptr<RequestReader> reader_ = std::make_unique<RequestReader>();
    std::array<char, 4096> chunk_{};
    std::string input_;
    bool isReading_ = false;
    bool isHead_ = false;
    bool keepsAlive_ = false;
    std::deque<SharedText> queue_; ///< octets to write; the first ones are being written
    std::size_t queuedOctets_ = 0;
    bool isWriting_ = false;
    Clock::time_point writingSince_{};
    SharedText newest_; ///< offered octets that wait for the client
    std::shared_ptr<void> source_;
};

} // namespace panel

#endif
