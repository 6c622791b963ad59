// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Requests of the check and what came back.
 */
#ifndef PTZCTL_CHECK_EXCHANGE_H
#define PTZCTL_CHECK_EXCHANGE_H

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "failure.h"
#include "request.h"
#include "session.h"

namespace ptzctl::check {

enum class Verb { Get, GetNext, GetBulk, Set };

/** A request. */
struct Request {
    Verb verb = Verb::Get;
    std::vector<snmp::Varbind> varbinds;
    snmp::Bulk bulk = {0, 0};       ///< of Verb::GetBulk
    bool withReadCommunity = false; ///< with Options::readCommunity instead of the credentials
    bool mayStaySilent = false;     ///< sent to a camera that restarts: no response is no deviation
};

/** Deviation of a response from the protocol. Each is judged by a rule of its own. */
enum class Violation {
    None,
    NoResponse,  ///< nothing arrived in time
    Malformed,   ///< a message that cannot be read
    WrongId,     ///< a response to no request
    Repeated,    ///< another response to the same request, or one that came too late
    WrongKind,   ///< a message that is not a response
    WrongCount,  ///< too many or too few varbinds
    WrongOid,    ///< an OID that was not asked for
    WrongValue,  ///< a type that this kind of response cannot have
    WrongStatus, ///< an error status that SNMPv2 does not have
    WrongIndex   ///< an error index that names no varbind
};

/** A deviation with its explanation. */
struct Problem {
    Violation violation = Violation::None;
    std::string text; ///< such as "2 varbinds instead of 1"
};

/** A request and everything that came back. */
struct Exchange {
    Request request;
    std::optional<snmp::Response> response; ///< the first one to the request, as received
    std::vector<Problem> problems;          ///< empty for a valid response
    std::optional<snmp::Failure> failure;   ///< without a response: the reason
    std::vector<std::string> sent;          ///< messages as octets
    std::vector<std::string> received;      ///< messages as octets, also those to no request
    std::chrono::microseconds elapsed = {};

    /** Tests whether the response answers the request. Messages beside it do not count. */
    bool valid() const;
};

/** Finds all deviations of a response from its request. */
std::vector<Problem> problemsOf(const Request &request, const snmp::Response &response);

/** Writes a request in one line, such as "SET timeoutPan = INTEGER 70000". */
std::string describe(const Request &request);

/** Writes a response in one line: the values, the error, or the reason why there is none. */
std::string describeResponse(const Exchange &exchange);

/**
 * Writes the command line that repeats a request with the Net-SNMP programs.
 * @param target  credentials as options of these programs, and the address
 */
std::string repeatLine(const Request &request, const std::string &target);

/** Quotes a word for a shell, if it needs quotes. */
std::string shellWord(const std::string &word);

} // namespace ptzctl::check

#endif
