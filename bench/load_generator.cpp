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

// Yielding may cost the processor for milliseconds, and a busy agent responds sooner than that.
constexpr std::chrono::microseconds kPollTime{20};

/** Bits of the request-id that identify a request. */
constexpr std::uint32_t kIdMask = 0xFFFFFF;

sockaddr_in addressOf(std::uint32_t host, std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(host);
    return address;
}

int openSocket() {
    const int opened = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (opened < 0) {
        throw std::system_error(errno, std::generic_category(), "socket");
    }
    return opened;
}

} // namespace

LoadGenerator::LoadGenerator(const std::vector<std::uint16_t> &ports) : socket_(openSocket()) {
    for (const std::uint16_t port : ports) {
        agents_.push_back(addressOf(INADDR_LOOPBACK, port));
    }
}

LoadGenerator::LoadGenerator(std::uint16_t port, const std::vector<std::uint32_t> &hosts) : socket_(openSocket()) {
    for (const std::uint32_t host : hosts) {
        agents_.push_back(addressOf(host, port));
    }
}

LoadGenerator::~LoadGenerator() {
    ::close(socket_);
}

Outcome LoadGenerator::run(Message message, std::size_t window, std::chrono::milliseconds duration) {
    Outcome outcome;
    const Clock::time_point start = Clock::now();
    const Clock::time_point end = start + duration;
    std::size_t outstanding = 0;
    bool isSending = true;
    while (isSending || outstanding > 0) {
        for (; isSending && outstanding < window; ++outstanding) {
            send(message);
        }
        outcome.microseconds.push_back(receive(message.responseValues()));
        --outstanding;
        isSending = Clock::now() < end;
    }
    const std::chrono::duration<double> elapsed = Clock::now() - start;
    outcome.perSecond = static_cast<double>(outcome.microseconds.size()) / elapsed.count();
    return outcome;
}

void LoadGenerator::send(Message &message) {
    lastId_ = (lastId_ + 1) & kIdMask;
    Slot &slot = slots_[lastId_ % kMaximumWindow];
    if (slot.isUsed) {
        throw std::runtime_error("a response is missing");
    }
    slot = {lastId_, true, Clock::now()};
    const std::string_view octets = message.withId(lastId_);
    const sockaddr_in &agent = agents_[lastId_ % agents_.size()];
    if (::sendto(socket_, octets.data(), octets.size(), 0, reinterpret_cast<const sockaddr *>(&agent), sizeof agent) <
        0) {
        throw std::system_error(errno, std::generic_category(), "sendto");
    }
}

/** Receives and checks a response. @param values  expected number of values @return response time in microseconds */
double LoadGenerator::receive(std::size_t values) {
    const Clock::time_point start = Clock::now();
    ssize_t length = -1;
    while ((length = ::recv(socket_, buffer_.data(), buffer_.size(), MSG_DONTWAIT)) < 0) {
        if (errno != EAGAIN) {
            throw std::system_error(errno, std::generic_category(), "recv");
        }
        const Clock::duration waited = Clock::now() - start;
        if (waited > kDeadline) {
            throw std::runtime_error("a response is missing");
        }
        if (waited > kPollTime) {
            ::sched_yield();
        }
    }
    const Clock::time_point arrival = Clock::now();
    const snmp::DecodedResponse response = snmp::parse({buffer_.data(), static_cast<std::size_t>(length)});
    Slot &slot = slots_[response.id % kMaximumWindow];
    if (!slot.isUsed || slot.id != response.id) {
        throw std::runtime_error("a response does not match any request");
    }
    if (response.error != 0 || response.values != values) {
        throw std::runtime_error("a response has error-status " + std::to_string(response.error) + " and " +
                                 std::to_string(response.values) + " values instead of " + std::to_string(values));
    }
    slot.isUsed = false;
    return std::chrono::duration<double, std::micro>(arrival - slot.sent).count();
}

} // namespace bench
