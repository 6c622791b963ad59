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
#include "families.h"
#include "load_generator.h"
#include "objects.h"
#include "processors.h"
#include "statistics.h"
#include "table.h"

namespace bench {

namespace {

/** A SET of this object lets the trap sender of the module's frame send that many traps. */
constexpr const char *kBurst = ".1.3.6.1.4.1.99999.99.1.0";
constexpr int kTraps = 100; // fewer than a socket keeps
constexpr int kBurstsInARound = 20;

/** A place where traps are taken and counted. */
class TrapSink {
public:
    TrapSink() : socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const timeval patience{10, 0};
        if (socket < 0 || ::bind(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 ||
            ::setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience) != 0) {
            throw std::system_error(errno, std::generic_category(), "a socket for traps");
        }
    }
    ~TrapSink() {
        ::close(socket);
    }
    TrapSink(const TrapSink &) = delete;
    TrapSink &operator=(const TrapSink &) = delete;

    std::string configurationLine() const {
        sockaddr_in address{};
        socklen_t length = sizeof address;
        ::getsockname(socket, reinterpret_cast<sockaddr *>(&address), &length);
        return "trap2sink 127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + " public";
    }

    /** Takes traps. @throws std::runtime_error when one does not come */
    void take(int count) {
        std::array<char, 2048> buffer{};
        for (int i = 0; i < count; ++i) {
            if (::recv(socket, buffer.data(), buffer.size(), 0) < 0) {
                throw std::runtime_error("a trap does not come");
            }
        }
    }

private:
    int socket;
};

/** Processor time of the agent's thread for bursts of so many traps, those of SETs included. */
double burstTime(const harness::Agent &agent, TrapSink &sink, int traps) {
    harness::Manager manager(agent.peer());
    const double before = processorTime(agent.pid());
    for (int i = 0; i < kBurstsInARound; ++i) {
        if (!manager.set(kBurst, harness::Type::Integer, traps).ok()) {
            throw std::runtime_error("the agent does not take a burst");
        }
        sink.take(traps);
    }
    return processorTime(agent.pid()) - before;
}

double getTime(const harness::Agent &agent, const Effort &effort) {
    const double before = processorTime(agent.pid());
    const Outcome outcome = LoadGenerator({agent.port()}).run(Message(Pdu::Get, {{kSystemUpTime}}), 1, effort.slice);
    return (processorTime(agent.pid()) - before) / static_cast<double>(outcome.microseconds.size());
}

} // namespace

void measureTraps(const Effort &effort) {
    tie(::getpid(), kManagerProcessor);
    TrapSink sink;
    harness::AgentOptions options = agentOptions("");
    options.module = BENCH_TRAP_BURST;
    options.moduleName = "trapburst";
    options.configuration = {sink.configurationLine()};
    const std::unique_ptr<harness::Agent> agent = startAgent(options);
    sink.take(1); // coldStart, of the agent itself
    std::vector<double> traps;
    std::vector<double> gets;
    for (int round = 0; round < effort.rounds; ++round) {
        // What the SETs take is the same without traps.
        const double none = burstTime(*agent, sink, 0);
        traps.push_back((burstTime(*agent, sink, kTraps) - none) / (kTraps * kBurstsInARound));
        gets.push_back(getTime(*agent, effort));
    }
    printFamily("Traps: time of the agent's thread", "of the GET's");
    printRounds("GET sysUpTime.0", gets, "µs", 1, ratios(gets, gets));
    printRounds("a trap, from the queue to the socket", traps, "µs", 1, ratios(traps, gets));
}

} // namespace bench
