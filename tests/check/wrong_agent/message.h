// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * SNMPv2c messages from the agent's side. The encoder writes any response, a wrong one included, which the SNMP library
 * would refuse.
 */
#ifndef QUARNSNMP_CHECK_MESSAGE_H
#define QUARNSNMP_CHECK_MESSAGE_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "varbind.h"

namespace wrong {

/** Kind of a request. The number is its tag. */
enum class Command : unsigned char { Get = 0xA0, GetNext = 0xA1, Set = 0xA3, GetBulk = 0xA5 };

/** A request as received. */
struct Request {
    std::string community;
    Command command = Command::Get;
    long id = 0;
    long nonRepeaters = 0;   ///< of a GETBULK
    long maxRepetitions = 0; ///< of a GETBULK
    std::vector<snmp::Varbind> varbinds;
};

/** A response to send. */
struct Reply {
    long id = 0;
    long error = 0;
    long errorIndex = 0;
    std::vector<snmp::Varbind> varbinds;
};

/** Decodes a message. @return nothing for a malformed one, another version and another kind of message */
std::optional<Request> decode(std::string_view octets);

/** Encodes a response. The octets of a value with an unknown type are sent as they are. */
std::string encode(const Reply &reply, const std::string &community);

} // namespace wrong

#endif
