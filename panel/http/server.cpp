// SPDX-License-Identifier: Apache-2.0
#include "server.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "connection.h"

namespace panel {

namespace asio = boost::asio;
using asio::ip::tcp;

Server::Server(asio::io_context &io, const tcp::endpoint &address, HostPolicy hosts, RequestHandler handler,
               const ServerLimits &limits)
    : io_(io), acceptor_(io, address), clock_(io), pause_(io), hosts_(std::move(hosts)), handler_(std::move(handler)),
      limits_(limits) {
    accept();
    watchTheClock();
}

Server::~Server() {
    try {
        close();
    } catch (const std::exception &) { // NOLINT(bugprone-empty-catch): the connections end with the process
    }
}

tcp::endpoint Server::address() const {
    return acceptor_.local_endpoint();
}

void Server::close() {
    boost::system::error_code ignored;
    acceptor_.close(ignored);
    clock_.cancel();
    pause_.cancel();
    for (const auto &connection : std::exchange(connections_, {})) {
        connection->close();
    }
}

void Server::accept() {
    acceptor_.async_accept([this](const boost::system::error_code &error, tcp::socket socket) {
        if (error == asio::error::operation_aborted || !acceptor_.is_open()) {
            return;
        }
        if (!error) {
            take(std::move(socket));
            accept();
            return;
        }
        // Without a free descriptor, the next attempt would fail at once and for ever.
        constexpr std::chrono::milliseconds kPause{100};
        dropOldestIdle();
        pause_.expires_after(kPause);
        pause_.async_wait([this](const boost::system::error_code &cancelled) {
            if (!cancelled) {
                accept();
            }
        });
    });
}

void Server::take(tcp::socket socket) {
    connections_.remove_if([](const auto &connection) { return connection->isClosed(); });
    if (connections_.size() >= limits_.connections) {
        dropOldestIdle();
    }
    if (connections_.size() >= limits_.connections) {
        return; // all of them are answered or watch
    }
    connections_.push_back(std::make_shared<Connection>(std::move(socket), *this));
    connections_.back()->start();
}

void Server::dropOldestIdle() {
    const auto oldest = std::min_element(connections_.begin(), connections_.end(), [](const auto &a, const auto &b) {
        return std::make_pair(!a->isIdle(), a->since()) < std::make_pair(!b->isIdle(), b->since());
    });
    if (oldest != connections_.end() && (*oldest)->isIdle()) {
        (*oldest)->close();
        connections_.erase(oldest);
    }
}

void Server::watchTheClock() {
    constexpr std::chrono::milliseconds kPeriod{250};
    clock_.expires_after(connections_.empty() ? kPeriod * 4 : kPeriod);
    clock_.async_wait([this](const boost::system::error_code &cancelled) {
        if (cancelled) {
            return;
        }
        const Connection::Clock::time_point now = Connection::Clock::now();
        for (const auto &connection : connections_) {
            connection->check(now);
        }
        connections_.remove_if([](const auto &connection) { return connection->isClosed(); });
        watchTheClock();
    });
}

std::size_t Server::streamCount() const {
    return static_cast<std::size_t>(std::count_if(connections_.begin(), connections_.end(),
                                                  [](const auto &connection) { return connection->isStreaming(); }));
}

} // namespace panel
