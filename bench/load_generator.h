// SPDX-License-Identifier: Apache-2.0
/** @file Manager that is faster than an agent. */
#ifndef QUARNSNMP_BENCH_LOAD_GENERATOR_H
#define QUARNSNMP_BENCH_LOAD_GENERATOR_H

#include <chrono>
#include <cstdint>
#include <vector>

#include <netinet/in.h>

#include "encoded_message.h"

namespace bench {

using snmp::getBulkRequest;
using snmp::getRequest;
using snmp::Message;
using snmp::setRequest;

/** Result of a load. */
struct Outcome {
    double perSecond = 0;             ///< responses
    std::vector<double> microseconds; ///< response time of each request
};

/**
 * Sends one message repeatedly. Polls its socket instead of sleeping, so that agents never have to wake it, and yields
 * its processor after a short time. Not thread-safe.
 */
class LoadGenerator {
public:
    /** @param ports  of agents on the loopback interface, which receive the messages in turn */
    explicit LoadGenerator(const std::vector<std::uint16_t> &ports);
    /** @param hosts  addresses of agents at the same port, as numbers */
    LoadGenerator(std::uint16_t port, const std::vector<std::uint32_t> &hosts);
    ~LoadGenerator();
    LoadGenerator(const LoadGenerator &) = delete;
    LoadGenerator &operator=(const LoadGenerator &) = delete;

    /**
     * Keeps a number of requests outstanding, and finally waits for the last responses.
     * @param window    number of outstanding requests, at most kMaximumWindow
     * @param duration  time to send; at least one request is sent
     * @throws std::runtime_error for a missing or unexpected response, or one with an error or too few values
     */
    Outcome run(Message message, std::size_t window, std::chrono::milliseconds duration);

    static constexpr std::size_t kMaximumWindow = 256;

private:
    using Clock = std::chrono::steady_clock;

    /** State of an outstanding request. */
    struct Slot {
        std::uint32_t id = 0;
        bool isUsed = false;
        Clock::time_point sent;
    };

    void send(Message &message);
    double receive(std::size_t values);

    int socket_;
    std::vector<sockaddr_in> agents_;
    std::vector<Slot> slots_ = std::vector<Slot>(kMaximumWindow); ///< indexed by the low bits of the request-id
    std::uint32_t lastId_ = 0;
    std::vector<char> buffer_ = std::vector<char>(65536);
};

} // namespace bench

#endif
