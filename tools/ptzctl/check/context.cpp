// SPDX-License-Identifier: Apache-2.0
#include "context.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "error_status.h"
#include "interruption.h"
#include "message.h"
#include "move_guard.h"
#include "object_oids.h"

namespace ptzctl::check {

namespace {

using snmp::Failure;
using snmp::Patience;

/** Number of requests in a row without a valid response after which the camera is asked for its sysUpTime. */
constexpr int kMostLost = 3;

snmp::Operation operationOf(Verb verb) {
    switch (verb) {
    case Verb::Get:
        return snmp::Operation::Get;
    case Verb::Set:
        return snmp::Operation::Set;
    default:
        return snmp::Operation::GetNext;
    }
}

Request readRequest(Verb verb, const std::vector<std::string> &oids) {
    Request request;
    request.verb = verb;
    for (const std::string &oid : oids) {
        request.varbinds.push_back(snmp::nameOnly(oid));
    }
    return request;
}

Value firstOf(const snmp::Response &response, const std::string &oid) {
    return {response.varbinds.empty() ? snmp::nameOnly(oid) : response.varbinds.front(), response.error};
}

/** Number of messages with a request ID. */
struct Messages {
    int sent = 0;
    int received = 0;
};

} // namespace

/** Collects the messages of the exchange in progress. */
struct Context::Recorder {
    Exchange *current = nullptr;
    std::map<long, Messages> messages;
    int lost = 0; ///< requests in a row without a valid response

    void take(snmp::Direction direction, const std::string &octets) {
        if (current == nullptr) {
            return;
        }
        if (direction == snmp::Direction::Sent) {
            current->sent.push_back(octets);
            if (const auto header = headerOf(octets)) {
                ++messages[header->request].sent;
            }
            return;
        }
        current->received.push_back(octets);
        if (!isSecureMessage(octets)) {
            takeReceived(octets);
        }
    }

    void takeReceived(const std::string &octets) {
        const std::optional<MessageHeader> header = headerOf(octets);
        if (!header) {
            note({Violation::Malformed, "a message that cannot be read"});
            return;
        }
        const auto found = messages.find(header->request);
        if (header->command != kResponseTag) {
            note(
                {Violation::WrongKind, fmt::format("a message of type {:02X} instead of a response", header->command)});
        } else if (found == messages.end()) {
            note({Violation::WrongId, fmt::format("a response to request {}, which was not sent", header->request)});
        } else if (++found->second.received > found->second.sent) {
            note({Violation::Repeated, "a further response to the same request"});
        }
    }

    void note(Problem problem) const {
        current->problems.push_back(std::move(problem));
    }
};

bool Value::present() const {
    return error == 0 && snmp::hasValue(varbind.type);
}

bool Value::missing() const {
    return error == 0 && !snmp::hasValue(varbind.type);
}

Context::Context(const snmp::SessionOptions &session, const Options &options)
    : options_(options), session_(session), recorder_(std::make_unique<Recorder>()),
      moveNotes_(std::make_unique<MoveNotes>()) {
    session_.tap = [this](snmp::Direction direction, const std::string &octets) { recorder_->take(direction, octets); };
    own_ = std::make_unique<snmp::Session>(session_);
}

Context::~Context() {
    restore();
}

snmp::Session &Context::sessionFor(const Request &request) {
    if (!request.withReadCommunity) {
        return *own_;
    }
    if (!reading_) {
        snmp::SessionOptions wanted = session_;
        wanted.community = options_.readCommunity;
        reading_ = std::make_unique<snmp::Session>(wanted);
    }
    return *reading_;
}

Exchange &Context::transmit(const Request &request, int attempts) {
    snmp::Session &session = sessionFor(request);
    Exchange &exchange = exchanges_.emplace_back();
    exchange.request = request;
    addEvidence(exchange);
    recorder_->current = &exchange;
    const auto start = std::chrono::steady_clock::now();
    try {
        const Patience patience = {attempts, {}};
        exchange.response = request.verb == Verb::GetBulk
                                ? session.bulk(request.bulk, request.varbinds, patience)
                                : session.exchange(operationOf(request.verb), request.varbinds, patience);
    } catch (const Failure &failure) {
        exchange.failure = failure;
    }
    exchange.elapsed = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start);
    recorder_->current = nullptr;
    if (exchange.response) {
        const std::vector<Problem> more = problemsOf(request, *exchange.response);
        exchange.problems.insert(exchange.problems.end(), more.begin(), more.end());
    } else if (exchange.problems.empty() && !request.mayStaySilent) {
        exchange.problems.push_back({Violation::NoResponse, exchange.failure->what()});
    }
    recorder_->lost = exchange.response || request.mayStaySilent ? 0 : recorder_->lost + 1;
    return exchange;
}

const Exchange &Context::send(const Request &request) {
    if (interrupted()) {
        throw Ended("interrupted");
    }
    if (!end_.empty()) {
        throw Ended(end_);
    }
    // The agent that drops a request of a community without permission is not lost.
    const int attempts = request.verb == Verb::Set ? 1 : snmp::kReadPatience.attempts;
    const Exchange &exchange = transmit(request, attempts);
    if (recorder_->lost >= kMostLost && !request.withReadCommunity) {
        requireAnswers();
    }
    return exchange;
}

void Context::requireAnswers() {
    const Exchange &probe = transmit(getRequest({oids::sysUpTime}), snmp::kReadPatience.attempts);
    if (!probe.response) {
        end_ = probe.received.empty() ? "the camera does not answer any more" : "the camera gives no valid response";
        throw Ended(end_);
    }
}

const snmp::Response &Context::read(const Request &request) {
    const Exchange &exchange = send(request);
    if (!exchange.valid()) {
        throw Undecided(fmt::format("{}: {}", describe(request), describeResponse(exchange)));
    }
    return *exchange.response;
}

Value Context::get(const std::string &oid) {
    return firstOf(read(getRequest({oid})), oid);
}

const Value &Context::known(const Request &request) {
    const std::string &oid = request.varbinds.front().oid;
    const auto [place, isNew] = values_.try_emplace({request.verb, oid});
    if (isNew) {
        try {
            place->second.value = firstOf(read(request), oid);
            place->second.exchange = &exchanges_.back();
        } catch (const Undecided &error) {
            place->second.undecided = error.what();
            place->second.exchange = &exchanges_.back();
        } catch (...) {
            values_.erase(place);
            throw;
        }
    }
    addEvidence(*place->second.exchange);
    if (!place->second.undecided.empty()) {
        throw Undecided(place->second.undecided);
    }
    return place->second.value;
}

const Value &Context::value(const std::string &oid) {
    return known(getRequest({oid}));
}

const Value &Context::successor(const std::string &oid) {
    return known(getNextRequest({oid}));
}

std::vector<const Exchange *> Context::takeEvidence() {
    return std::exchange(evidence_, {});
}

void Context::addEvidence(const Exchange &exchange) {
    const bool known = std::find(evidence_.begin(), evidence_.end(), &exchange) != evidence_.end();
    if (!known) {
        evidence_.push_back(&exchange);
    }
}

const Exchange &Context::set(const std::vector<snmp::Varbind> &varbinds, bool withReadCommunity) {
    Request request;
    request.verb = Verb::Set;
    request.varbinds = varbinds;
    request.withReadCommunity = withReadCommunity;
    return send(request);
}

void Context::restoreLater(const snmp::Varbind &varbind) {
    const bool known = std::any_of(toRestore_.begin(), toRestore_.end(),
                                   [&](const snmp::Varbind &noted) { return noted.oid == varbind.oid; });
    if (!known) {
        toRestore_.push_back(varbind);
    }
}

void Context::restoreOne(const snmp::Varbind &before) {
    const auto isRestored = [&] {
        const Exchange &reading = transmit(getRequest({before.oid}), snmp::kReadPatience.attempts);
        return reading.valid() && reading.response->error == 0 && reading.response->varbinds.front() == before;
    };
    if (isRestored()) {
        return;
    }
    Request request;
    request.verb = Verb::Set;
    request.varbinds = {before};
    // Repeating this SET does no harm.
    const Exchange &written = transmit(request, snmp::kReadPatience.attempts);
    if (!isRestored()) {
        troubles_.push_back(fmt::format("{}: {}", describe(request), describeResponse(written)));
    }
}

void Context::restore() noexcept {
    for (const snmp::Varbind &before : std::exchange(toRestore_, {})) {
        try {
            restoreOne(before);
        } catch (const std::exception &) {
            recorder_->current = nullptr; // no memory, for a text either
        }
    }
}

std::vector<std::string> Context::takeTroubles() {
    std::vector<std::string> all = std::exchange(moveNotes_->troubles, {});
    all.insert(all.end(), troubles_.begin(), troubles_.end());
    troubles_.clear();
    return all;
}

Request getRequest(const std::vector<std::string> &oids) {
    return readRequest(Verb::Get, oids);
}

Request getNextRequest(const std::vector<std::string> &oids) {
    return readRequest(Verb::GetNext, oids);
}

Request getBulkRequest(const std::vector<std::string> &oids, int nonRepeaters, int maxRepetitions) {
    Request request = readRequest(Verb::GetBulk, oids);
    request.bulk = {nonRepeaters, maxRepetitions};
    return request;
}

} // namespace ptzctl::check
