// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * What the module reports about a request for one object.
 */
#ifndef QUARNSNMP_WATCH_OBSERVATION_H
#define QUARNSNMP_WATCH_OBSERVATION_H

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace watch {

/** The request for one object, with its outcome. docs/watch.md lists the texts of its members. */
struct Observation {
    std::chrono::system_clock::time_point time; ///< when the request reached the object
    std::chrono::nanoseconds duration{};        ///< within the object's handlers, over all phases of a SET
    std::string version;                        ///< of the message; empty if it came through another agent
    std::string principal;                      ///< community, or user of SNMPv3
    std::string sender;                         ///< address of the manager; empty if it is unknown
    std::string operation;                      ///< such as "SET"
    std::string phase;                          ///< in which the request ended, such as "commit"
    std::string oid;                            ///< of the answered object; otherwise as in the request
    std::string type;                           ///< of the value: the answer of a read, the wanted value of a SET
    std::optional<std::string> octets;          ///< value of a type that consists of octets
    std::optional<long long> number;            ///< value of a type that is a number
    std::string outcome;                        ///< such as "noError"
};

/** Largest number of octets of a value in a report. */
inline constexpr std::size_t kReportedOctets = 1024;

/**
 * Writes an observation as one line of JSON without a newline, the content of a datagram. Texts that are not UTF-8 get
 * replacement characters.
 * @param lost  number of reports that were lost before this one
 */
std::string observationText(const Observation &observation, std::size_t lost);

} // namespace watch

#endif
