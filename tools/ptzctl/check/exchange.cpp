// SPDX-License-Identifier: Apache-2.0
#include "exchange.h"

#include <algorithm>
#include <set>

#include <fmt/format.h>

#include "error_status.h"
#include "object_table.h"
#include "octets_text.h"
#include "oid_text.h"

namespace ptzctl::check {

namespace {

using snmp::Type;
using snmp::Varbind;

constexpr long kLastStatus = 18;

bool isKnown(Type type) {
    static const std::set<Type> known = {Type::Integer, Type::Octets,    Type::Oid,    Type::IpAddress, Type::Counter32,
                                         Type::Gauge32, Type::TimeTicks, Type::Opaque, Type::Counter64};
    return known.count(type) > 0;
}

bool isMissing(Type type) {
    return type == Type::NoSuchObject || type == Type::NoSuchInstance;
}

/** Tests for a problem of a message that is not the response. */
bool isStray(const Problem &problem) {
    return problem.violation == Violation::Malformed || problem.violation == Violation::WrongId ||
           problem.violation == Violation::Repeated || problem.violation == Violation::WrongKind;
}

/** Tests whether a response without an error may hold a type. */
bool mayHold(Verb verb, Type type) {
    switch (verb) {
    case Verb::Get:
        return isKnown(type) || isMissing(type);
    case Verb::GetNext:
    case Verb::GetBulk:
        return isKnown(type) || type == Type::EndOfMibView;
    case Verb::Set:
        break;
    }
    return isKnown(type);
}

/** Largest number of varbinds in a response. */
std::size_t mostVarbinds(const Request &request) {
    const std::size_t count = request.varbinds.size();
    if (request.verb != Verb::GetBulk) {
        return count;
    }
    const std::size_t single = std::min<std::size_t>(count, static_cast<std::size_t>(request.bulk.nonRepeaters));
    return single + (count - single) * static_cast<std::size_t>(request.bulk.maxRepetitions);
}

Problem wrongOid(const Varbind &received, const Varbind &asked) {
    return {Violation::WrongOid,
            fmt::format("{} instead of {}", snmp::withoutDot(received.oid), snmp::withoutDot(asked.oid))};
}

/** Checks that a response repeats the OIDs of a request. */
void compareOids(const Request &request, const snmp::Response &response, std::vector<Problem> &problems) {
    if (response.varbinds.size() != request.varbinds.size()) {
        problems.push_back({Violation::WrongCount, fmt::format("{} varbinds instead of {}", response.varbinds.size(),
                                                               request.varbinds.size())});
        return;
    }
    for (std::size_t i = 0; i < request.varbinds.size(); ++i) {
        if (response.varbinds[i].oid != request.varbinds[i].oid) {
            problems.push_back(wrongOid(response.varbinds[i], request.varbinds[i]));
            return;
        }
    }
}

void checkError(const Request &request, const snmp::Response &response, std::vector<Problem> &problems) {
    constexpr long kFirstOldStatus = 2;
    constexpr long kLastOldStatus = 4;
    const bool isOld = response.error >= kFirstOldStatus && response.error <= kLastOldStatus;
    if (response.error < 0 || response.error > kLastStatus || isOld) {
        problems.push_back(
            {Violation::WrongStatus, fmt::format("{} ({})", snmp::describeError(response.error).name, response.error)});
    }
    // The others concern the request as a whole, or may.
    static const std::set<long> withoutIndex = {snmp::kTooBig, 5, 15, snmp::kAuthorizationError};
    const bool lacksIndex = response.errorIndex == 0 && withoutIndex.count(response.error) == 0 && !isOld;
    const bool isOutside = response.errorIndex < 0 || response.errorIndex > static_cast<long>(request.varbinds.size());
    if (lacksIndex || isOutside) {
        problems.push_back({Violation::WrongIndex, fmt::format("error index {} in a request of {} varbinds",
                                                               response.errorIndex, request.varbinds.size())});
    }
    // A response that would be too big comes back without varbinds.
    if (response.error != snmp::kTooBig) {
        compareOids(request, response, problems);
    }
}

void checkValues(const Request &request, const snmp::Response &response, std::vector<Problem> &problems) {
    const auto wrong = std::find_if(response.varbinds.begin(), response.varbinds.end(),
                                    [&](const Varbind &varbind) { return !mayHold(request.verb, varbind.type); });
    if (wrong != response.varbinds.end()) {
        problems.push_back({Violation::WrongValue, fmt::format("{} as the value of {}", snmp::typeName(wrong->type),
                                                               snmp::withoutDot(wrong->oid))});
    }
}

const char *verbText(const Request &request) {
    switch (request.verb) {
    case Verb::Get:
        return "GET";
    case Verb::GetNext:
        return "GETNEXT";
    case Verb::GetBulk:
        return "GETBULK";
    case Verb::Set:
        break;
    }
    return "SET";
}

std::string nameOf(const Varbind &varbind) {
    return ptz::instanceAt(varbind.oid).name;
}

std::string typedText(const Varbind &varbind) {
    return snmp::hasValue(varbind.type) ? snmp::typeName(varbind.type) + " " + snmp::valueText(varbind)
                                        : snmp::typeName(varbind.type);
}

std::string joined(const std::vector<Varbind> &varbinds, bool withValues) {
    constexpr std::size_t kMost = 6;
    std::string text;
    for (std::size_t i = 0; i < varbinds.size(); ++i) {
        if (i == kMost) {
            return text + fmt::format(", and {} more", varbinds.size() - kMost);
        }
        text += (i == 0 ? "" : ", ") + nameOf(varbinds[i]);
        text += withValues ? " = " + typedText(varbinds[i]) : "";
    }
    return text;
}

/** Letter of a type for snmpset. */
char letterOf(const Varbind &varbind) {
    switch (varbind.type) {
    case Type::Integer:
        return 'i';
    case Type::Gauge32:
        return 'u';
    case Type::TimeTicks:
        return 't';
    case Type::Counter32:
        return 'c';
    case Type::Counter64:
        return 'C';
    case Type::IpAddress:
        return 'a';
    case Type::Oid:
        return 'o';
    case Type::Null:
        return 'n';
    default:
        return varbind.octets.empty() ? 's' : 'x';
    }
}

std::string argumentOf(const Varbind &varbind) {
    switch (varbind.type) {
    case Type::Null:
        return "''";
    case Type::IpAddress: {
        std::string text;
        for (const char octet : varbind.octets) {
            text += (text.empty() ? "" : ".") + std::to_string(static_cast<unsigned char>(octet));
        }
        return text;
    }
    case Type::Octets:
    case Type::Opaque: {
        std::string digits = snmp::hexText(varbind.octets);
        digits.erase(std::remove(digits.begin(), digits.end(), ' '), digits.end());
        return digits.empty() ? "''" : digits;
    }
    default:
        return snmp::valueText(varbind);
    }
}

} // namespace

bool Exchange::valid() const {
    return response.has_value() && std::all_of(problems.begin(), problems.end(), isStray);
}

std::vector<Problem> problemsOf(const Request &request, const snmp::Response &response) {
    std::vector<Problem> problems;
    if (response.error != 0) {
        checkError(request, response, problems);
        return problems;
    }
    if (response.errorIndex != 0) {
        problems.push_back(
            {Violation::WrongIndex, fmt::format("error index {} without an error", response.errorIndex)});
    }
    if (request.verb == Verb::Get || request.verb == Verb::Set) {
        compareOids(request, response, problems);
    } else {
        const std::size_t most = mostVarbinds(request);
        const std::size_t least = request.verb == Verb::GetNext ? most : std::min<std::size_t>(most, 1);
        if (response.varbinds.size() > most || response.varbinds.size() < least) {
            problems.push_back(
                {Violation::WrongCount, fmt::format("{} varbinds instead of {}", response.varbinds.size(), most)});
        }
    }
    checkValues(request, response, problems);
    return problems;
}

std::string describe(const Request &request) {
    std::string text = verbText(request);
    if (request.verb == Verb::GetBulk) {
        text += fmt::format("({}, {})", request.bulk.nonRepeaters, request.bulk.maxRepetitions);
    }
    return text + " " + joined(request.varbinds, request.verb == Verb::Set) +
           (request.withReadCommunity ? " with the read community" : "");
}

std::string describeResponse(const Exchange &exchange) {
    if (!exchange.response) {
        return exchange.problems.empty() ? "no response" : exchange.problems.front().text;
    }
    const snmp::Response &response = *exchange.response;
    std::string text = response.error != 0 ? fmt::format("{}, error index {}", snmp::describeError(response.error).name,
                                                         response.errorIndex)
                                           : joined(response.varbinds, true);
    for (const Problem &problem : exchange.problems) {
        text += (isStray(problem) ? "; beside it " : "; invalid: ") + problem.text;
    }
    return text;
}

std::string shellWord(const std::string &word) {
    const bool plain = !word.empty() && std::all_of(word.begin(), word.end(), [](unsigned char character) {
        return std::isalnum(character) != 0 ||
               std::string("-_./:@%+,=").find(static_cast<char>(character)) != std::string::npos;
    });
    if (plain) {
        return word;
    }
    std::string quoted = "'";
    for (const char character : word) {
        quoted += character == '\'' ? std::string("'\\''") : std::string(1, character);
    }
    return quoted + "'";
}

std::string repeatLine(const Request &request, const std::string &target) {
    std::string line;
    switch (request.verb) {
    case Verb::Get:
        line = "snmpget";
        break;
    case Verb::GetNext:
        line = "snmpgetnext";
        break;
    case Verb::GetBulk:
        line = fmt::format("snmpbulkget -Cn{} -Cr{}", request.bulk.nonRepeaters, request.bulk.maxRepetitions);
        break;
    case Verb::Set:
        line = "snmpset";
        break;
    }
    line += " -On -m '' " + target;
    for (const Varbind &varbind : request.varbinds) {
        line += " " + varbind.oid;
        if (request.verb == Verb::Set) {
            line += fmt::format(" {} {}", letterOf(varbind), argumentOf(varbind));
        }
    }
    return line;
}

} // namespace ptzctl::check
