// SPDX-License-Identifier: Apache-2.0
#include "agent.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <system_error>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include "faults.h"
#include "netsnmp_types.h"
#include "oid_text.h"

namespace wrong {

using snmp::Varbind;

namespace {

constexpr std::size_t kMostOctets = 65507; ///< in a datagram
constexpr std::size_t kMostBulk = 200;     ///< varbinds in the response to a GETBULK

int listenAt(std::uint16_t port) {
    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (descriptor < 0 || bind(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot listen");
    }
    return descriptor;
}

bool isPrefix(const Numbers &prefix, const Numbers &numbers) {
    return prefix.size() <= numbers.size() && std::equal(prefix.begin(), prefix.end(), numbers.begin());
}

} // namespace

Agent::Agent(const Dialect &dialect, const std::string &fault, std::uint16_t port)
    : model_(dialect), socket_(listenAt(port)), ending_(eventfd(0, EFD_CLOEXEC)) {
    if (!fault.empty()) {
        faultNamed(fault).install(model_, behaviour_);
    }
    thread_ = std::thread([this] { serve(); });
}

Agent::~Agent() {
    eventfd_write(ending_, 1);
    thread_.join();
    close(socket_);
    close(ending_);
}

std::string Agent::host() const {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    getsockname(socket_, reinterpret_cast<sockaddr *>(&address), &size);
    return "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
}

void Agent::loseWhileMoving(bool loses) {
    const std::lock_guard<std::mutex> lock(mutex_);
    losesWhileMoving_ = loses;
}

bool Agent::isLost(const Request &request) {
    bool isMoving = false;
    for (std::size_t place = 0; place < ptz::kAxisCount; ++place) {
        isMoving = isMoving || model_.isMoving(place);
    }
    return (losesWhileMoving_ && isMoving) || (behaviour_.drops && behaviour_.drops(request));
}

std::vector<Request> Agent::requests() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return requests_;
}

void Agent::serve() {
    std::string buffer(kMostOctets, '\0');
    for (;;) {
        std::array<pollfd, 2> watched = {{{socket_, POLLIN, 0}, {ending_, POLLIN, 0}}};
        poll(watched.data(), watched.size(), -1);
        if (watched[1].revents != 0) {
            return;
        }
        sockaddr_in sender{};
        socklen_t size = sizeof sender;
        const ssize_t count =
            recvfrom(socket_, buffer.data(), buffer.size(), 0, reinterpret_cast<sockaddr *>(&sender), &size);
        const std::optional<Request> request =
            count > 0 ? decode({buffer.data(), static_cast<std::size_t>(count)}) : std::nullopt;
        if (!request) {
            continue;
        }
        Reply reply;
        reply.id = request->id;
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            const bool isKnown = request->community == kReadCommunity || request->community == kWriteCommunity;
            if (!isKnown) {
                continue;
            }
            requests_.push_back(*request);
            answer(*request, reply);
            if (isLost(*request)) {
                continue;
            }
        }
        std::string octets = encode(reply, request->community);
        if (behaviour_.mangle) {
            behaviour_.mangle(*request, octets);
        }
        const int copies = behaviour_.copies ? behaviour_.copies(*request) : 1;
        for (int i = 0; i < copies; ++i) {
            sendto(socket_, octets.data(), octets.size(), 0, reinterpret_cast<const sockaddr *>(&sender), size);
        }
    }
}

void Agent::answer(const Request &request, Reply &reply) {
    switch (request.command) {
    case Command::Get:
        get(request, reply);
        break;
    case Command::GetNext:
        std::transform(request.varbinds.begin(), request.varbinds.end(), std::back_inserter(reply.varbinds),
                       [this](const Varbind &varbind) { return next(varbind.oid); });
        break;
    case Command::GetBulk:
        bulk(request, reply);
        break;
    case Command::Set:
        set(request, reply);
        break;
    }
    if (behaviour_.distort) {
        behaviour_.distort(request, reply);
    }
}

void Agent::get(const Request &request, Reply &reply) {
    for (const Varbind &varbind : request.varbinds) {
        const Numbers numbers = snmp::parseOid(varbind.oid);
        const auto found = model_.instances.find(numbers);
        Varbind value;
        if (found != model_.instances.end()) {
            value = found->second.read();
        } else {
            const auto follower = model_.instances.upper_bound(numbers);
            const Numbers parent(numbers.begin(), numbers.end() - 1);
            const auto sibling = model_.instances.lower_bound(parent);
            const bool hasInstance = (follower != model_.instances.end() && isPrefix(numbers, follower->first)) ||
                                     (sibling != model_.instances.end() && isPrefix(parent, sibling->first));
            value.type = hasInstance ? snmp::Type::NoSuchInstance : snmp::Type::NoSuchObject;
        }
        value.oid = varbind.oid;
        reply.varbinds.push_back(value);
    }
}

Varbind Agent::next(const std::string &oid) {
    const auto found = model_.instances.upper_bound(snmp::parseOid(oid));
    if (found == model_.instances.end()) {
        return {oid, snmp::Type::EndOfMibView, 0, ""};
    }
    Varbind value = found->second.read();
    value.oid = snmp::oidText(found->first);
    if (behaviour_.follows) {
        behaviour_.follows(oid, value);
    }
    return value;
}

void Agent::bulk(const Request &request, Reply &reply) {
    std::vector<Varbind> last = request.varbinds;
    const auto singles = static_cast<std::size_t>(std::max(0L, request.nonRepeaters));
    for (std::size_t i = 0; i < std::min(singles, last.size()); ++i) {
        reply.varbinds.push_back(next(last[i].oid));
    }
    last.erase(last.begin(), last.begin() + static_cast<std::ptrdiff_t>(std::min(singles, last.size())));
    for (long i = 0; i < request.maxRepetitions && !last.empty() && reply.varbinds.size() < kMostBulk; ++i) {
        for (Varbind &varbind : last) {
            varbind = next(varbind.oid);
            reply.varbinds.push_back(varbind);
        }
    }
}

long Agent::check(const Varbind &varbind) {
    const auto found = model_.instances.find(snmp::parseOid(varbind.oid));
    if (found == model_.instances.end()) {
        return SNMP_ERR_NOCREATION;
    }
    return found->second.isWritable ? found->second.check(varbind) : SNMP_ERR_NOTWRITABLE;
}

void Agent::set(const Request &request, Reply &reply) {
    reply.varbinds = request.varbinds;
    const auto fail = [&reply](long error, std::size_t place) {
        if (reply.error == 0) {
            reply.error = error;
            reply.errorIndex = static_cast<long>(place) + 1;
        }
    };
    if (request.community != kWriteCommunity && !behaviour_.readersWrite) {
        fail(SNMP_ERR_NOACCESS, 0);
        return;
    }
    std::vector<long> errors;
    std::transform(request.varbinds.begin(), request.varbinds.end(), std::back_inserter(errors),
                   [this](const Varbind &varbind) { return check(varbind); });
    for (std::size_t i = 0; i < errors.size(); ++i) {
        if (errors[i] != SNMP_ERR_NOERROR) {
            fail(errors[i], i);
        }
    }
    for (std::size_t i = 0; i < errors.size(); ++i) {
        if (errors[i] == SNMP_ERR_NOERROR &&
            (reply.error == 0 || (behaviour_.appliesAnyway && behaviour_.appliesAnyway(request.varbinds[i])))) {
            model_.instances.at(snmp::parseOid(request.varbinds[i].oid)).write(request.varbinds[i]);
        }
    }
}

} // namespace wrong
