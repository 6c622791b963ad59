// SPDX-License-Identifier: Apache-2.0
#include "load_generator.h"

#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>

#include <arpa/inet.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

namespace bench {

namespace {

constexpr std::chrono::seconds kDeadline{10};

// Somebody else who gets the processor may keep it for milliseconds; a busy agent answers before.
constexpr std::chrono::microseconds kPatience{20};

/** 24 bits of a request-id are ours. */
constexpr std::uint32_t kIdMask = 0xFFFFFF;

} // namespace

LoadGenerator::LoadGenerator(const std::vector<std::uint16_t> &ports)
    : socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    if (socket < 0) {
        throw std::system_error(errno, std::generic_category(), "socket");
    }
    for (const std::uint16_t port : ports) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        agents.push_back(address);
    }
}

LoadGenerator::~LoadGenerator() {
    ::close(socket);
}

Outcome LoadGenerator::run(Message message, std::size_t window, std::chrono::milliseconds duration) {
    Outcome outcome;
    const Clock::time_point start = Clock::now();
    const Clock::time_point end = start + duration;
    std::size_t underWay = 0;
    bool isSending = true;
    while (isSending || underWay > 0) {
        for (; isSending && underWay < window; ++underWay) {
            send(message);
        }
        outcome.microseconds.push_back(receive(message.variables()));
        --underWay;
        isSending = Clock::now() < end;
    }
    const std::chrono::duration<double> elapsed = Clock::now() - start;
    outcome.perSecond = static_cast<double>(outcome.microseconds.size()) / elapsed.count();
    return outcome;
}

void LoadGenerator::send(Message &message) {
    nextId = (nextId + 1) & kIdMask;
    Slot &slot = slots[nextId % kMostUnderWay];
    if (slot.isUsed) {
        throw std::runtime_error("an answer is missing");
    }
    slot = {nextId, true, Clock::now()};
    const std::string_view octets = message.with(nextId);
    const sockaddr_in &agent = agents[nextId % agents.size()];
    if (::sendto(socket, octets.data(), octets.size(), 0, reinterpret_cast<const sockaddr *>(&agent), sizeof agent) <
        0) {
        throw std::system_error(errno, std::generic_category(), "sendto");
    }
}

/** Waits for an answer and checks it. @return microseconds since its request */
double LoadGenerator::receive(std::size_t variables) {
    const Clock::time_point start = Clock::now();
    ssize_t length = -1;
    while ((length = ::recv(socket, buffer.data(), buffer.size(), MSG_DONTWAIT)) < 0) {
        if (errno != EAGAIN) {
            throw std::system_error(errno, std::generic_category(), "recv");
        }
        const Clock::duration waited = Clock::now() - start;
        if (waited > kDeadline) {
            throw std::runtime_error("an answer does not come");
        }
        if (waited > kPatience) {
            ::sched_yield();
        }
    }
    const Clock::time_point arrival = Clock::now();
    const Answer answer = parse({buffer.data(), static_cast<std::size_t>(length)});
    Slot &slot = slots[answer.id % kMostUnderWay];
    if (!slot.isUsed || slot.id != answer.id) {
        throw std::runtime_error("an answer that was not asked for");
    }
    if (answer.error != 0 || answer.variables != variables) {
        throw std::runtime_error("an answer with error-status " + std::to_string(answer.error) + " and " +
                                 std::to_string(answer.variables) + " values instead of " + std::to_string(variables));
    }
    slot.isUsed = false;
    return std::chrono::duration<double, std::micro>(arrival - slot.sent).count();
}

} // namespace bench
