// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A manager that is faster than an agent.
 */
#ifndef QUARNSNMP_BENCH_LOAD_GENERATOR_H
#define QUARNSNMP_BENCH_LOAD_GENERATOR_H

#include <chrono>
#include <cstdint>
#include <vector>

#include <netinet/in.h>

#include "message.h"

namespace bench {

/** How agents kept up with a load. */
struct Outcome {
    double perSecond = 0;             ///< answers
    std::vector<double> microseconds; ///< from each request to its answer
};

/**
 * Sends one message again and again. It does not sleep while it waits, so that agents need not wake it; when it
 * has waited for a while it lets others on its processor run. One thread only.
 */
class LoadGenerator {
public:
    /** @param ports of agents on the loopback interface, which get the messages in turn */
    explicit LoadGenerator(const std::vector<std::uint16_t> &ports);
    ~LoadGenerator();
    LoadGenerator(const LoadGenerator &) = delete;
    LoadGenerator &operator=(const LoadGenerator &) = delete;

    /**
     * Keeps a number of requests under way, and waits for the last answers at the end.
     * @param window    how many, at most kMostUnderWay
     * @param duration  how long to send; at least one request is sent
     * @throws std::runtime_error when an answer does not come, is an error, lacks variables or was not asked for
     */
    Outcome run(Message message, std::size_t window, std::chrono::milliseconds duration);

    static constexpr std::size_t kMostUnderWay = 256;

private:
    using Clock = std::chrono::steady_clock;

    /** A request that is under way. */
    struct Slot {
        std::uint32_t id = 0;
        bool isUsed = false;
        Clock::time_point sent;
    };

    void send(Message &message);
    double receive(std::size_t variables);

    int socket;
    std::vector<sockaddr_in> agents;
    std::vector<Slot> slots = std::vector<Slot>(kMostUnderWay); ///< by the low bits of the request-id
    std::uint32_t nextId = 0;
    std::vector<char> buffer = std::vector<char>(65536);
};

} // namespace bench

#endif
