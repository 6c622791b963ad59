// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <cerrno>
#include <chrono>
#include <stdexcept>
#include <system_error>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include "agents.h"
#include "load_generator.h"
#include "object_oids.h"
#include "processors.h"
#include "statistics.h"
#include "suites.h"
#include "table.h"

namespace bench {

namespace {

/** A SET of this object makes the module's trap sender send as many traps as its value. */
constexpr const char *kBurst = ".1.3.6.1.4.1.99999.99.1.0";
constexpr int kTraps = 100; // fits into a socket buffer
constexpr int kBurstsPerRound = 20;

/** Receiver that counts traps. */
class TrapSink {
public:
    TrapSink() : socket_(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const timeval timeout{10, 0};
        if (socket_ < 0 || ::bind(socket_, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 ||
            ::setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout) != 0) {
            throw std::system_error(errno, std::generic_category(), "a socket for traps");
        }
    }
    ~TrapSink() {
        ::close(socket_);
    }
    TrapSink(const TrapSink &) = delete;
    TrapSink &operator=(const TrapSink &) = delete;

    /** Returns the directive that sends an agent's traps here. */
    std::string configurationLine() const {
        sockaddr_in address{};
        socklen_t length = sizeof address;
        ::getsockname(socket_, reinterpret_cast<sockaddr *>(&address), &length);
        return "trap2sink 127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + " public";
    }

    /** Waits for a number of traps. @throws std::runtime_error when one is missing after ten seconds */
    void await(int count) {
        std::array<char, 2048> buffer{};
        for (int i = 0; i < count; ++i) {
            if (::recv(socket_, buffer.data(), buffer.size(), 0) < 0) {
                throw std::runtime_error("a trap is missing");
            }
        }
    }

private:
    int socket_;
};

/** Returns the processor time of the agent's thread for the bursts of one round, including their SETs. */
double burstTime(const harness::Agent &agent, TrapSink &sink, int traps) {
    harness::Manager manager(agent.peer());
    const double before = processorTime(agent.pid());
    for (int i = 0; i < kBurstsPerRound; ++i) {
        if (!manager.set(kBurst, harness::Type::Integer, traps).ok()) {
            throw std::runtime_error("the agent rejects a burst");
        }
        sink.await(traps);
    }
    return processorTime(agent.pid()) - before;
}

/** Returns the processor time of the agent's thread for one GET. */
double getTime(const harness::Agent &agent, const Effort &effort) {
    const double before = processorTime(agent.pid());
    const Outcome outcome = LoadGenerator({agent.port()}).run(getRequest({oids::sysUpTime}), 1, effort.slice);
    return (processorTime(agent.pid()) - before) / static_cast<double>(outcome.microseconds.size());
}

} // namespace

void measureTraps(const Effort &effort) {
    pinToProcessor(::getpid(), kManagerProcessor);
    TrapSink sink;
    harness::AgentOptions options = agentOptions("");
    options.module = BENCH_TRAP_BURST;
    options.moduleName = "trapburst";
    options.configuration = {sink.configurationLine()};
    const std::unique_ptr<harness::Agent> agent = startAgent(options);
    sink.await(1); // the agent's own coldStart
    std::vector<double> traps;
    std::vector<double> gets;
    for (int round = 0; round < effort.rounds; ++round) {
        // A burst of no traps takes the time of the SETs alone.
        const double none = burstTime(*agent, sink, 0);
        traps.push_back((burstTime(*agent, sink, kTraps) - none) / (kTraps * kBurstsPerRound));
        gets.push_back(getTime(*agent, effort));
    }
    printHeading("Traps: time of the agent's thread", "relative to the GET");
    printRounds("GET sysUpTime.0", gets, "µs", 1, ratios(gets, gets));
    printRounds("trap, from the queue to the socket", traps, "µs", 1, ratios(traps, gets));
}

} // namespace bench
